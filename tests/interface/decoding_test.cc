// The text of a message and its encoding, in addition to the messages of tests/corpus.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/interface/files.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

class Decoding : public InterfaceTest {};

TEST_F(Decoding, PlainTextOfAnHtmlMessageIsWhatTheSharedMethodGives) {
  Start();
  for (const char* text : {"<p>Caf&eacute; &amp; cake</p><p>More</p>\n", "<b>x</b>", "no tag"}) {
    const Object message = Parse("Content-Type: text/html; charset=utf-8\n\n" + std::string(text));
    const Value html = Get(message, "HTMLText");
    EXPECT_EQ(standin::BytesOf(html), text);
    EXPECT_EQ(ShowProperty(message, "PlainText"),
              Show(CallShared("MimeEmailZQV", "HTMLToPlainText", html)));
    EXPECT_NE(ShowProperty(message, "PlainText"), "nil");
  }
}

TEST_F(Decoding, HtmlIsNotConvertedWhenThereIsAPlainText) {
  Start();
  const Object message = Parse(
      "Content-Type: multipart/alternative; boundary=b\n\n"
      "--b\nContent-Type: text/html\n\n<p>H</p>\n--b\nContent-Type: text/plain\n\nP\n--b--\n");
  EXPECT_EQ(ShowProperty(message, "PlainText"), "0x600 P");
  EXPECT_EQ(ShowProperty(message, "HTMLText"), "0x600 <p>H</p>");
}

TEST_F(Decoding, SinglePartSharesItsTextWithBodyDecoded) {
  Start();
  const Object message = Parse("Content-Type: text/calendar\n\nBEGIN:VCALENDAR\n");
  EXPECT_TRUE(std::get<String>(Get(message, "PlainText")) ==
              std::get<String>(Get(message, "BodyDecoded")));
}

// The 119 names of the table of charsets. The number is the encoding of the resulting string, for
// bytes that are not ASCII in any encoding.
TEST_F(Decoding, EveryCharsetName) {
  Start();
  const std::string table = ReadWholeFile(ZQV_TEST_DATA "/tables/charsets.tsv");
  int rows = 0;
  for (std::size_t start = 0, end = 0; start < table.size(); start = end + 1) {
    end = table.find('\n', start);
    const std::string line = table.substr(start, end - start);
    const std::size_t tab = line.find('\t');
    const auto encoding = static_cast<std::uint32_t>(std::stoul(line.substr(tab + 1), nullptr, 16));
    ++rows;
    // Text in UTF-16 becomes UTF-8, and these bytes are half a surrogate pair.
    if (encoding == abi::kUtf16) continue;
    const Object message =
        Parse("Content-Type: text/plain; charset=" + line.substr(0, tab) + "\n\n\xC3\xA9");
    EXPECT_EQ(std::get<String>(Get(message, "PlainText")).encoding(), encoding) << line;
  }
  EXPECT_EQ(rows, 119);
}

TEST_F(Decoding, SpellingsOfACharsetName) {
  Start();
  const struct {
    const char* parameter;
    abi::Encoding encoding;
  } kRows[] = {
      {"UTF-8", abi::kUtf8},
      {"utf_8", abi::kUtf8},
      {"\"utf-8\"", abi::kUtf8},
      {"u.t.f 8", abi::kUtf8},
      {"iso-8859-1", abi::kIsoLatin1},
      {"windows-1252", abi::kWindowsLatin1},
      {"CP1252", abi::kWindowsLatin1},
      {"\"ISO-8859-15\"", 0x020F},
      {"KOI8-R", 0x0A02},
      {"foo", abi::kUnknownEncoding},
  };
  for (const auto& row : kRows) {
    const Object message =
        Parse("Content-Type: text/plain; charset=" + std::string(row.parameter) + "\n\n\xC3\xA9");
    EXPECT_EQ(std::get<String>(Get(message, "PlainText")).encoding(), row.encoding)
        << row.parameter;
  }
}

TEST_F(Decoding, WithoutCharsetTheBytesDecide) {
  Start();
  const struct {
    const char* bytes;
    abi::Encoding encoding;
  } kRows[] = {
      {"cafe", abi::kAscii},
      {"caf\xC3\xA9", abi::kUtf8},
      {"caf\xE9", abi::kMacRoman},
      {"\x0C caf\xC3\xA9", abi::kMacRoman},
      {"\x7F\xC3\xA9", abi::kMacRoman},
      {"\x0C\x7F", abi::kAscii},
  };
  for (const auto& row : kRows) {
    const Object message = Parse("Content-Type: text/plain\n\n" + std::string(row.bytes));
    EXPECT_EQ(std::get<String>(Get(message, "PlainText")).encoding(), row.encoding) << row.bytes;
    EXPECT_EQ(standin::BytesOf(Get(message, "PlainText")), row.bytes);
  }
}

}  // namespace
}  // namespace zqv::interface_test
