// The encoding of texts and the reading of host strings, in hosts of several versions.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tests/interface/child.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"
#include "tests/interface/utf16.h"

namespace zqv::interface_test {
namespace {

using standin::StringDataFlavour;

constexpr const char* kEmail = "MimeEmailZQV";

class Encodings : public InterfaceTest {};

// Runs `body` in a session of its own, in a host of this version.
template <typename Body>
void InHostOf(double version, Body body) {
  LoadLibraryFile();
  InChild(std::to_string(version), [&] {
    Capabilities capabilities;
    capabilities.version = version;
    const Session session(capabilities);
    body();
  });
}

// Versions around 2012, from which strings are built with their encoding, and 2013, from which they
// are built from UTF-32.
constexpr double kVersions[] = {2009.0, 2011.99, 2012.0, 2012.99, 2013.0, 2024.1};

std::string BodyIn(const std::string& charset, std::string_view bytes) {
  const std::string header = "Content-Type: text/plain; charset=" + charset + "\n\n";
  return ShowProperty(Parse(header + std::string(bytes)), "PlainText");
}

// "x-none" is not in the table of charsets.
TEST_F(Encodings, AsciiBytesInACharsetAroundAsciiAreAscii) {
  for (const double version : kVersions) {
    InHostOf(version, [] {
      for (const char* charset : {"macintosh", "iso-8859-1", "windows-1252", "x-none"}) {
        EXPECT_EQ(BodyIn(charset, "cafe\f\x7F"), "0x600 cafe\f\x7F") << charset;
      }
      EXPECT_EQ(BodyIn("macintosh", "caf\x8E"), "0x0 caf\x8E");
      EXPECT_EQ(BodyIn("iso-8859-1", "caf\xE9"), "0x201 caf\xE9");
      EXPECT_EQ(BodyIn("windows-1252", "caf\xE9"), "0x500 caf\xE9");
      EXPECT_EQ(BodyIn("x-none", "caf\xE9"), "0xffff caf\xE9");
      EXPECT_EQ(BodyIn("us-ascii", "caf\xE9"), "0x600 caf\xE9")
          << "the named charset is kept, although the bytes are not ASCII";
      EXPECT_EQ(BodyIn("utf-8", "cafe"), "0x8000100 cafe");
      EXPECT_EQ(BodyIn("koi8-r", "cafe"), "0xa02 cafe");
    });
  }
}

// An e with acute accent, and a character of two units: 00E9, D83D DE00.
TEST_F(Encodings, Utf16BecomesUtf8) {
  for (const double version : kVersions) {
    InHostOf(version, [] {
      EXPECT_EQ(BodyIn("utf-16", {"\xE9\0\x3D\xD8\x00\xDE", 6}),
                "0x8000100 \xC3\xA9\xF0\x9F\x98\x80");
      EXPECT_EQ(BodyIn("utf-16", ""), "nil");
    });
  }
}

// Text with a form feed or DEL is not accepted as UTF-8.
TEST_F(Encodings, ControlCharactersMakeHighBytesMacRoman) {
  Start();
  for (const std::string text : {"\xC3\xA9 x\f", "\x7F x\xC3\xA9", "\x01 x\xC3\xA9"}) {
    const Object message = Parse("Content-Type: multipart/mixed; boundary=b\nX-Note: n" + text +
                                 "\n\n--b\nContent-Type: text/plain\n\n" + text +
                                 "\n--b\nContent-Type: application/x; name=\"n" + text +
                                 "\"\nContent-Description: n" + text + "\n\ndata\n--b--\n");
    EXPECT_EQ(ShowProperty(message, "PlainText"), "0x0 " + text);
    const Object field =
        ObjectOf(Call(ObjectOf(Get(message, "Header")), "FieldByName", MakeString("X-Note")));
    EXPECT_EQ(ShowProperty(field, "Value"), "0x0 n" + text);
    const Object record = ObjectOf(Call(message, "Attachments", 0));
    EXPECT_EQ(ShowProperty(record, "Filename"), "0x0 n" + text);
    EXPECT_EQ(ShowProperty(record, "ContentDescription"), "0x0 n" + text);
  }
}

std::string TextOf(const Value& html) { return Show(CallShared(kEmail, "HTMLToPlainText", html)); }
std::string Decoded(const Value& text) { return Show(CallShared(kEmail, "DecodeInline", text)); }

// U+1F600 becomes a surrogate pair, half a pair is dropped, and a number above U+10FFFF becomes
// U+FFFD.
TEST_F(Encodings, CodePointsThatHostsCannotTakeAreDroppedOrReplaced) {
  for (const double version : kVersions) {
    InHostOf(version, [] {
      EXPECT_EQ(TextOf(MakeString("&#x1F600;")), "0x8000100 \xF0\x9F\x98\x80");
      EXPECT_EQ(TextOf(MakeString("&#x10000;&#xFFFF;&#x10FFFF;")),
                "0x8000100 \xF0\x90\x80\x80\xEF\xBF\xBF\xF4\x8F\xBF\xBF");
      EXPECT_EQ(TextOf(MakeString("a&#xD800;b&#xDFFF;c")), "0x8000100 abc");
      EXPECT_EQ(TextOf(MakeString("&#xD7FF;&#xE000;")), "0x8000100 \xED\x9F\xBF\xEE\x80\x80");
      EXPECT_EQ(TextOf(MakeString("a&#x110000;b")),
                "0x8000100 a\xEF\xBF\xBD"
                "b");
      EXPECT_EQ(TextOf(MakeString("&#xD83D;&#xDE00;")), "nil");
    });
  }
}

// Texts of 800 bytes and more, 200 code points of 4 bytes, are converted in allocated memory
// instead of on the stack.
TEST_F(Encodings, LongTextsAreTheSameAsShortOnes) {
  for (const double version : kVersions) {
    InHostOf(version, [] {
      for (const int count : {1, 198, 199, 200, 201, 5'000}) {
        std::string html;
        std::string text;
        for (int i = 0; i < count; ++i) {
          html += "&#x1F600;";
          text += "\xF0\x9F\x98\x80";
        }
        EXPECT_EQ(TextOf(MakeString(html)), "0x8000100 " + text) << count;
        EXPECT_EQ(TextOf(MakeString(html + "&#xD800;&#x110000;")),
                  "0x8000100 " + text + "\xEF\xBF\xBD")
            << count;
      }
    });
  }
}

// In Mac Roman 80 is an A with diaeresis, 8E an e with acute accent, A5 the bullet, C3 the square
// root.
TEST_F(Encodings, UnknownEncodingsWithHighBytesAreMacRoman) {
  for (const double version : kVersions) {
    InHostOf(version, [] {
      const std::string read = "\xC3\x84\xC3\xA9\xE2\x80\xA2\xE2\x88\x9A";
      const String text = MakeString("\x80\x8E\xA5\xC3", abi::kUnknownEncoding);
      EXPECT_EQ(TextOf(text), "0x8000100 " + read);
      EXPECT_EQ(Decoded(text), "0x8000100 " + read);
      EXPECT_EQ(
          Show(Call(Parse("A: b\n\n\x80\x8E\xA5\xC3", Way::kBlock), "SourceWithoutAttachments")),
          "0x8000100 A: b\r\r" + read);
      const String field = MakeString("X: \x80\x8E\xA5\xC3", abi::kUnknownEncoding);
      EXPECT_EQ(ShowProperty(standin::Construct("MimeFieldZQV", "Constructor", field), "Value"),
                "0x8000100 " + read);
    });
  }
}

TEST_F(Encodings, UnknownEncodingsWithoutHighBytesAreAscii) {
  Start();
  const String text = MakeString("plain text", abi::kUnknownEncoding);
  EXPECT_EQ(Decoded(text), "0x600 plain text");
  EXPECT_EQ(TextOf(text), "0x8000100 plain text");
}

// The text is read in full in each form in which a host lends it: without a zero after it, and in
// the other byte order with a byte order mark.
TEST_F(Encodings, TextLentByTheHostIsReadToItsEnd) {
  LoadLibraryFile();
  for (const auto flavour : {StringDataFlavour::kPlain, StringDataFlavour::kUnterminated,
                             StringDataFlavour::kSwappedUtf32}) {
    InChild(std::to_string(static_cast<int>(flavour)), [flavour] {
      Capabilities capabilities;
      capabilities.string_data = flavour;
      const Session session(capabilities);
      const String kTexts[] = {
          MakeString("caf\xE9", abi::kIsoLatin1), MakeString("caf\x8E", abi::kMacRoman),
          MakeString("caf\x8E", abi::kUnknownEncoding), MakeUtf16(u"caf\u00E9"),
          MakeString({"\0c\0a\0f\0\xE9", 8}, abi::kUtf16BigEndian)};
      for (const String& text : kTexts) {
        EXPECT_EQ(TextOf(text), "0x8000100 caf\xC3\xA9") << text.encoding();
        EXPECT_EQ(Decoded(text), "0x8000100 caf\xC3\xA9") << text.encoding();
      }
    });
  }
}

// When the host lends no text, the text is empty and nothing is raised.
TEST_F(Encodings, TextThatTheHostDoesNotLendIsEmpty) {
  LoadLibraryFile();
  InChild("no data", [] {
    Capabilities capabilities;
    capabilities.faults["PluginGetStringData"] = {Fault::Kind::kMissing};
    const Session session(capabilities);
    const String text = MakeString("caf\xE9", abi::kIsoLatin1);
    EXPECT_EQ(TextOf(text), "nil");
    EXPECT_EQ(Decoded(text), "nil");
    // These texts are read from the string's own bytes.
    EXPECT_EQ(TextOf(MakeString("caf\xC3\xA9")), "0x8000100 caf\xC3\xA9");
    EXPECT_EQ(Decoded(MakeString("caf\xC3\xA9")), "0x8000100 caf\xC3\xA9");
    EXPECT_EQ(Decoded(MakeString("cafe", abi::kIsoLatin1)), "0x600 cafe");
  });
}

}  // namespace
}  // namespace zqv::interface_test
