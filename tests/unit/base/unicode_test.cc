#include "base/unicode.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstdint>
#include <string>
#include <vector>

#include "base/bytes16.h"
#include "tests/reference/reference_utf8.h"
#include "tests/support/property.h"

namespace zqv::base {
namespace {

bool IsUtf8(const std::string& bytes) { return is_utf8(bytes.data(), bytes.size()); }

std::string Bytes(std::initializer_list<int> bytes) {
  std::string text;
  for (const int byte : bytes) text += static_cast<char>(byte);
  return text;
}

TEST(LengthOfAsciiText, EndsAtANulAndAtAHighByte) {
  EXPECT_EQ(base::LengthOfAsciiText(""), 0U);
  for (std::size_t length = 1; length < 200; ++length) {
    const std::string plain(length, '\x7F');
    ASSERT_EQ(base::LengthOfAsciiText(plain), length);
    for (std::size_t at = 0; at < length; ++at) {
      for (const char end : {'\0', '\x80', '\xFF'}) {
        std::string bytes = plain;
        bytes[at] = end;
        bytes.back() = at == length - 1 ? end : '\0';
        ASSERT_EQ(base::LengthOfAsciiText(bytes), at) << length;
      }
    }
  }
}

TEST(BitsOf64, HasABitForEachByte) {
  std::string bytes(64, 'a');
  const auto is_b = [](base::Bytes16 c) { return c == 'b'; };
  EXPECT_EQ(base::BitsOf64(bytes.data(), is_b), 0U);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = 'b';
    EXPECT_EQ(base::BitsOf64(bytes.data(), is_b), std::uint64_t{1} << i);
    bytes[i] = 'a';
  }
  EXPECT_EQ(base::BitsOf64(std::string(64, 'b').data(), is_b), ~std::uint64_t{0});
}

TEST(IsAscii, TestsEveryByte) {
  EXPECT_TRUE(IsAscii(""));
  for (std::size_t length = 1; length <= 150; ++length) {
    EXPECT_TRUE(IsAscii(std::string(length, '\x7F')));
    for (std::size_t i = 0; i < length; ++i) {
      std::string bytes(length, '\0');
      bytes[i] = '\x80';
      EXPECT_FALSE(IsAscii(bytes)) << i << " of " << length;
    }
  }
}

TEST(IsUtf8, AcceptsEmptyText) { EXPECT_TRUE(is_utf8(nullptr, 0)); }

TEST(IsUtf8, RejectsControlCharacters) {
  for (int byte = 0; byte < 0x80; ++byte) {
    const bool is_text =
        byte == '\t' || byte == '\n' || byte == '\r' || (byte >= 0x20 && byte < 0x7F);
    EXPECT_EQ(IsUtf8(Bytes({byte})), is_text) << byte;
  }
}

// Eight bytes are read at once, so every byte is tested at every position of 24 bytes, and again
// before a character of two bytes.
TEST(IsUtf8, TestsEveryByte) {
  for (int byte = 0; byte < 0x100; ++byte) {
    for (std::size_t at = 0; at < 24; ++at) {
      std::string bytes(24, ' ');
      bytes[at] = static_cast<char>(byte);
      for (const std::string& text : {bytes, bytes + "\xC3\xA9", "\xC3\xA9" + bytes}) {
        ASSERT_EQ(IsUtf8(text), reference::IsUtf8(text)) << byte << " at " << at;
      }
    }
  }
}

TEST(IsUtf8, FormFeedAndDelAreNotText) {
  EXPECT_FALSE(IsUtf8("a\fb"));
  EXPECT_FALSE(IsUtf8("a\x7F"));
  EXPECT_FALSE(IsUtf8("\xC3\xA9\f"));
}

TEST(IsUtf8, AcceptsFirstAndLastOfEachLength) {
  for (const char* text : {"\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
                           "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
    EXPECT_TRUE(IsUtf8(text)) << text;
}

TEST(IsUtf8, RejectsOverlongFormsSurrogatesAndTooLargeCodePoints) {
  for (const char* text :
       {"\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", "\xED\xA0\x80", "\xED\xBF\xBF",
        "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xF8\x88\x80\x80\x80", "\xFF"})
    EXPECT_FALSE(IsUtf8(text));
}

TEST(IsUtf8, RejectsCutAndStrayBytes) {
  for (const char* text : {"\xC3", "\xE2\x82", "\xF0\x9F\x98", "\x80", "a\xBF", "\xC3(",
                           "\xE2(\x82", "\xE2\x82(", "\xF0\x9F\x98(", "\xC3\xA9\xA9"})
    EXPECT_FALSE(IsUtf8(text));
}

TEST(IsUtf8, ReadsNoByteAfterTheGivenLength) {
  EXPECT_FALSE(is_utf8("\xC3\xA9", 1));
  EXPECT_FALSE(is_utf8("\xE2\x82\xAC", 2));
  EXPECT_TRUE(is_utf8("\xE2\x82\xAC\x80", 3));
}

TEST(IsUtf8, AgreesWithTheReferenceOnEveryPairOfBytes) {
  for (int first = 0; first < 256; ++first) {
    for (int second = 0; second < 256; ++second) {
      const std::string bytes = Bytes({first, second});
      ASSERT_EQ(IsUtf8(bytes), reference::IsUtf8(bytes)) << first << " " << second;
    }
  }
}

// The bytes at the limits of the ranges in RFC 3629, section 4, and their neighbours.
const std::vector<int>& Borders() {
  static const std::vector<int> borders = {0x00, 0x08, 0x09, 0x0A, 0x0D, 0x1F, 0x20, 0x41,
                                           0x7E, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF,
                                           0xC0, 0xC1, 0xC2, 0xDF, 0xE0, 0xE1, 0xEC, 0xED,
                                           0xEE, 0xEF, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5, 0xFF};
  return borders;
}

TEST(IsUtf8, AgreesWithTheReferenceOnThreeAndFourBytesAtTheBorders) {
  for (const int a : Borders()) {
    for (const int b : Borders()) {
      for (const int c : Borders()) {
        const std::string three = Bytes({a, b, c});
        ASSERT_EQ(IsUtf8(three), reference::IsUtf8(three));
        if (a < 0xF0) continue;
        for (const int d : Borders()) {
          const std::string four = Bytes({a, b, c, d});
          ASSERT_EQ(IsUtf8(four), reference::IsUtf8(four));
        }
      }
    }
  }
}

rc::Gen<std::string> AnyBytes() {
  return rc::gen::map(rc::gen::container<std::vector<int>>(rc::gen::elementOf(Borders())),
                      [](const std::vector<int>& values) {
                        std::string bytes;
                        for (const int value : values) bytes += static_cast<char>(value);
                        return bytes;
                      });
}

// A text of mostly complete sequences, so that long valid texts occur too.
rc::Gen<std::string> MostlyLegal() {
  const std::vector<std::string> pieces = {"a",
                                           "\n",
                                           "\xC3\xA9",
                                           "\xE2\x82\xAC",
                                           "\xF0\x9F\x98\x80",
                                           "\xEF\xBB\xBF",
                                           "\xEF\xBF\xBE",
                                           "\xE2\x82",
                                           "\x80"};
  return rc::gen::map(
      rc::gen::container<std::vector<std::string>>(rc::gen::weightedOneOf<std::string>(
          {{20, rc::gen::elementOf(std::vector<std::string>(pieces.begin(), pieces.begin() + 7))},
           {1, rc::gen::elementOf(pieces)}})),
      [](const std::vector<std::string>& chosen) {
        std::string bytes;
        for (const std::string& piece : chosen) bytes += piece;
        return bytes;
      });
}

TEST(IsUtf8, AgreesWithTheReference) {
  EXPECT_TRUE(test::Holds("any bytes", [] {
    const std::string bytes = *AnyBytes();
    RC_ASSERT(IsUtf8(bytes) == reference::IsUtf8(bytes));
  }));
  EXPECT_TRUE(test::Holds("mostly legal bytes", [] {
    const std::string bytes = *MostlyLegal();
    RC_ASSERT(IsUtf8(bytes) == reference::IsUtf8(bytes));
  }));
}

TEST(DetectEncoding, IsAsciiUtf8OrElseMacRoman) {
  EXPECT_EQ(DetectEncoding(""), abi::kAscii);
  EXPECT_EQ(DetectEncoding("abc\f\x7F"), abi::kAscii);
  EXPECT_EQ(DetectEncoding("Caf\xC3\xA9"), abi::kUtf8);
  EXPECT_EQ(DetectEncoding("Caf\xE9"), abi::kMacRoman);
  EXPECT_EQ(DetectEncoding("Caf\xC3\xA9\f"), abi::kMacRoman);
  EXPECT_EQ(DetectEncoding("Caf\xC3\xA9\x7F"), abi::kMacRoman);
}

TEST(Utf8SequenceLength, IsWhatTheLeadByteAsksFor) {
  const std::vector<std::pair<int, std::size_t>> lasts = {{0xBF, 1}, {0xDF, 2}, {0xEF, 3},
                                                          {0xF7, 4}, {0xFB, 5}, {0xFF, 6}};
  int byte = 0;
  for (const auto& [last, length] : lasts) {
    for (; byte <= last; ++byte)
      EXPECT_EQ(Utf8SequenceLength(static_cast<char>(byte)), length) << byte;
  }
}

TEST(IsLegalUTF8, NeedsTheLengthThatTheLeadByteAsksFor) {
  EXPECT_TRUE(IsLegalUTF8("a", 1));
  EXPECT_TRUE(IsLegalUTF8(
      "\f", 1));  // legal in UTF-8, although is_utf8 rejects text with control characters
  EXPECT_TRUE(IsLegalUTF8("\x7F", 1));
  EXPECT_FALSE(IsLegalUTF8("\x80", 1));
  EXPECT_FALSE(IsLegalUTF8("ab", 2));
  EXPECT_TRUE(IsLegalUTF8("\xC3\xA9", 2));
  EXPECT_FALSE(IsLegalUTF8("\xC3\xA9", 1));
  EXPECT_FALSE(IsLegalUTF8("\xC3\xA9\x80", 3));
  EXPECT_TRUE(IsLegalUTF8("\xF0\x9F\x98\x80", 4));
  EXPECT_FALSE(IsLegalUTF8("\xF8\x88\x80\x80\x80", 5));
  EXPECT_FALSE(IsLegalUTF8("\xFC\x84\x80\x80\x80\x80", 6));
}

struct Decoded {
  std::u32string text;
  Conversion conversion;
};

Decoded FromUtf8(std::string_view bytes) {
  std::u32string out(bytes.size() + 1, U'#');
  const Conversion conversion = Utf8ToUtf32(bytes, out.data());
  EXPECT_EQ(out.back(), U'#');
  out.resize(conversion.written);
  return {out, conversion};
}

TEST(Utf8ToUtf32, DecodesEachLength) {
  const Decoded decoded = FromUtf8("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(decoded.text, U"a\u00E9\u20AC\U0001F600");
  EXPECT_TRUE(decoded.conversion.legal);
  EXPECT_EQ(decoded.conversion.stopped, 10u);
}

TEST(Utf8ToUtf32, DropsByteOrderMarks) {
  EXPECT_EQ(FromUtf8("\xEF\xBB\xBF"
                     "a\xEF\xBF\xBE"
                     "b\xEF\xBB\xBF")
                .text,
            U"ab");
  EXPECT_EQ(FromUtf8("\xEF\xBF\xBD\xEF\xBF\xBF").text, U"\uFFFD\uFFFF");
}

TEST(Utf8ToUtf32, StopsAtTheFirstIllegalSequence) {
  for (const char* text :
       {"ab\xC3(", "ab\xE2\x82", "ab\x80z", "ab\xED\xA0\x80", "ab\xF8\x88\x80\x80\x80"}) {
    const Decoded decoded = FromUtf8(text);
    EXPECT_EQ(decoded.text, U"ab");
    EXPECT_FALSE(decoded.conversion.legal);
    EXPECT_EQ(decoded.conversion.stopped, 2u);
  }
}

TEST(Utf8ToUtf32, ReadsNothingBehindTheEnd) {
  for (const std::string_view text : {"ab\xC3\xA9", "ab\xE2\x82\xAC", "ab\xF0\x9F\x98\x80"}) {
    const Decoded decoded = FromUtf8(text.substr(0, text.size() - 1));
    EXPECT_EQ(decoded.text, U"ab");
    EXPECT_FALSE(decoded.conversion.legal);
    EXPECT_EQ(decoded.conversion.stopped, 2u);
  }
}

TEST(Utf8ToUtf32, KeepsNulsAndControlCharacters) {
  EXPECT_EQ(FromUtf8(std::string_view("a\0\f", 3)).text, std::u32string(U"a\0\f", 3));
}

TEST(Utf8ToUtf32, AgreesWithTheReference) {
  const auto agrees = [](const std::string& bytes) {
    const Decoded decoded = FromUtf8(bytes);
    const reference::DecodedUtf8 expected = reference::DecodeUtf8(bytes);
    RC_ASSERT(decoded.text == expected.code_points);
    RC_ASSERT(decoded.conversion.stopped == expected.stopped);
    RC_ASSERT(decoded.conversion.legal == (expected.stopped == bytes.size()));
  };
  EXPECT_TRUE(test::Holds("any bytes", [&] { agrees(*AnyBytes()); }));
  EXPECT_TRUE(test::Holds("mostly legal bytes", [&] { agrees(*MostlyLegal()); }));
}

Decoded FromUtf16(std::u16string_view units) {
  std::u32string out(units.size() + 1, U'#');
  const Conversion conversion = Utf16ToUtf32(units.data(), units.size(), out.data());
  EXPECT_EQ(out.back(), U'#');
  out.resize(conversion.written);
  return {out, conversion};
}

TEST(Utf16ToUtf32, DecodesUnitsAndPairs) {
  const Decoded decoded = FromUtf16(u"a\u20AC\U0001F600\U0010FFFF");
  EXPECT_EQ(decoded.text, U"a\u20AC\U0001F600\U0010FFFF");
  EXPECT_TRUE(decoded.conversion.legal);
  EXPECT_EQ(decoded.conversion.stopped, 12u);  // the offset is in bytes, not in units
}

TEST(Utf16ToUtf32, DecodesTheUnitsBeforeAndAfterTheSurrogates) {
  const Decoded decoded = FromUtf16(u"\uD7FF\uE000");
  EXPECT_EQ(decoded.text, U"\uD7FF\uE000");
  EXPECT_TRUE(decoded.conversion.legal);
}

TEST(Utf16ToUtf32, DropsByteOrderMarks) {
  EXPECT_EQ(FromUtf16(u"\uFEFFa\uFFFEb\uFEFF").text, U"ab");
}

TEST(Utf16ToUtf32, StopsAtALoneSurrogate) {
  const std::vector<std::u16string> texts = {{u'a', 0xD800},
                                             {u'a', 0xD800, u'b'},
                                             {u'a', 0xD800, 0xE000},
                                             {u'a', 0xDC00, 0xD800},
                                             {u'a', 0xDBFF, 0xDBFF, 0xDC00}};
  for (const std::u16string& text : texts) {
    const Decoded decoded = FromUtf16(text);
    EXPECT_EQ(decoded.text, U"a");
    EXPECT_FALSE(decoded.conversion.legal);
    EXPECT_EQ(decoded.conversion.stopped, 2u);
  }
}

TEST(Utf16ToUtf32, ReadsNothingBehindTheEnd) {
  const std::u16string text = {u'a', 0xD83D, 0xDE00};
  const Decoded decoded = FromUtf16(std::u16string_view(text).substr(0, 2));
  EXPECT_EQ(decoded.text, U"a");
  EXPECT_FALSE(decoded.conversion.legal);
}

std::u16string ToUtf16(const std::u32string& text) {
  std::u16string out(2 * text.size() + 1, u'#');
  const std::size_t written = Utf32ToUtf16(text.data(), text.size(), out.data());
  EXPECT_EQ(out[written], u'\0');
  out.resize(written);
  return out;
}

TEST(Utf32ToUtf16, WritesUnitsAndPairs) {
  EXPECT_EQ(ToUtf16(U"a\uFFFF"), (std::u16string{u'a', 0xFFFF}));
  EXPECT_EQ(ToUtf16({0x1F600}), (std::u16string{0xD83D, 0xDE00}));
  EXPECT_EQ(ToUtf16({0x10000, 0x10FFFF}), (std::u16string{0xD800, 0xDC00, 0xDBFF, 0xDFFF}));
}

TEST(Utf32ToUtf16, DropsSurrogates) {
  EXPECT_EQ(ToUtf16({U'a', 0xD7FF, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000}),
            (std::u16string{u'a', 0xD7FF, 0xE000}));
}

TEST(Utf32ToUtf16, ReplacesTooLargeCodePoints) {
  EXPECT_EQ(ToUtf16({0x110000, 0xFFFFFFFF, 0x7FFFFFFF}), u"\uFFFD\uFFFD\uFFFD");
}

TEST(Utf32ToUtf16, EndsEmptyTextInAZeroToo) { EXPECT_EQ(ToUtf16(U""), u""); }

TEST(Utf32ToUtf16, AndBackGivesTheSame) {
  EXPECT_TRUE(test::Holds("there and back", [] {
    auto text = *rc::gen::container<std::vector<std::uint32_t>>(
        rc::gen::inRange<std::uint32_t>(1, 0x110000));
    std::u32string given;
    for (const std::uint32_t c : text) {
      const bool is_surrogate = c >= 0xD800 && c < 0xE000;
      if (!is_surrogate && c != 0xFEFF && c != 0xFFFE) given += c;
    }
    RC_ASSERT(FromUtf16(ToUtf16(given)).text == given);
  }));
}

}  // namespace
}  // namespace zqv::base
