// The conversions of text compared with their reference implementations. The first byte of an input
// selects the conversion; the rest is the text.

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "abi/encodings.h"
#include "base/ascii.h"
#include "base/unicode.h"
#include "email/file_type.h"
#include "email/transfer.h"
#include "fuzz/alphabet.h"
#include "fuzz/target.h"
#include "tests/reference/reference_charset.h"
#include "tests/reference/reference_encoded_word.h"
#include "tests/reference/reference_html.h"
#include "tests/reference/reference_transfer.h"
#include "tests/reference/reference_utf8.h"
#include "tests/unit/text/tables.h"
#include "text/charset.h"
#include "text/encoded_word.h"
#include "text/html_to_text.h"
#include "text/quotes.h"

namespace zqv::fuzz {
namespace {

std::string Show(std::string_view bytes, abi::Encoding encoding) {
  return std::to_string(encoding) + " " + std::string(bytes);
}

std::string Lower(std::string name) {
  for (char& c : name) c = base::LowerAscii(c);
  return name;
}

// The number in tests/data/tables/charsets.tsv for the normal form of a name, compared without
// regard to case.
abi::Encoding ExpectedEncoding(const std::string& name) {
  static const auto kRows = test::ReadTable("charsets.tsv", 16);
  const std::string normal = reference::NormaliseCharset(name);
  for (const auto& [row_name, encoding] : kRows) {
    if (Lower(row_name) == Lower(normal)) return encoding;
  }
  return abi::kUnknownEncoding;
}

void CompareCharset(const std::string& name) {
  ExpectSame("charset name", text::NormaliseCharsetName(name), reference::NormaliseCharset(name));
  Expect(text::GetEncodingValue(name) == ExpectedEncoding(name), "encoding of a charset name");
}

abi::Encoding ReferenceEncoding(const std::string& text) {
  const auto is_high = [](char c) { return static_cast<unsigned char>(c) >= 0x80; };
  if (std::none_of(text.begin(), text.end(), is_high)) return abi::kAscii;
  return reference::IsUtf8(text) ? abi::kUtf8 : abi::kMacRoman;
}

// The text that the reference implementation and the table of charsets give for a header text.
std::string ExpectedWords(const std::string& text, bool unquote) {
  reference::DecodedWords words;
  if (text.size() >= 7) words = reference::DecodeWords(text);
  abi::Encoding encoding =
      words.charset.empty() ? abi::kUnknownEncoding : ExpectedEncoding(words.charset);
  const bool is_decoded = encoding != abi::kUnknownEncoding;
  std::string result = is_decoded ? words.bytes : text;
  if (unquote) result = reference::StripQuotes(result);
  result = result.substr(0, result.find('\0'));
  if (!is_decoded) encoding = ReferenceEncoding(result);
  return Show(result, encoding);
}

void CompareWords(const std::string& text) {
  for (const bool unquote : {false, true}) {
    const text::HeaderText decoded = text::DecodeEncodedWords(text, unquote);
    ExpectSame("encoded words", Show(decoded.bytes(), decoded.encoding()),
               ExpectedWords(text, unquote));
  }
}

void CompareHtml(const std::string& text) {
  static const reference::NamedReferences kReferences = [] {
    reference::NamedReferences references;
    for (const auto& [name, number] : test::ReadTable("html_entities.tsv", 10))
      references.emplace_back(name, char32_t{number});
    return references;
  }();
  std::u32string html;
  if (reference::IsUtf8(text)) {
    html = reference::DecodeUtf8(text).code_points;
  } else {
    for (const char c : text) html += static_cast<unsigned char>(c);
  }
  Expect(text::HtmlToPlainText(html) == reference::HtmlToText(html, kReferences), "HTML to text");
}

void CompareUtf8(const std::string& text) {
  Expect(base::is_utf8(text.data(), text.size()) == reference::IsUtf8(text), "is_utf8");
  Expect(base::DetectEncoding(text) == ReferenceEncoding(text), "encoding of bytes");
  std::u32string code_points(text.size(), U'\0');
  const base::Conversion conversion = base::Utf8ToUtf32(text, code_points.data());
  code_points.resize(conversion.written);
  const reference::DecodedUtf8 expected = reference::DecodeUtf8(text);
  Expect(code_points == expected.code_points, "code points of UTF-8");
  Expect(conversion.stopped == expected.stopped, "where UTF-8 stops");
  Expect(conversion.legal == (expected.stopped == text.size()), "whether UTF-8 is legal");
}

void CompareQuotes(const std::string& text) {
  ExpectSame("quotes", text::RemoveQuotes(text), reference::StripQuotes(text));
}

std::string DecodedBody(const char* mechanism, const std::string& text) {
  return std::string(email::DecodeData(mechanism, text).bytes());
}

void CompareBase64(const std::string& text) {
  ExpectSame("base64", DecodedBody("base64", text), reference::DecodeBase64(text));
}

void CompareQuotedPrintable(const std::string& text) {
  ExpectSame("quoted-printable", DecodedBody("quoted-printable", text),
             reference::DecodeQuotedPrintable(text));
}

// The types of file, one row each: these bytes at this position, in data of at least six bytes.
std::string ExpectedExtension(const std::string& data) {
  struct Row {
    std::size_t at;
    std::string bytes;
    const char* extension;
  };
  static const Row kRows[] = {{0, "<html>", ".html"}, {0, "GIF", ".gif"}, {0, "BM", ".bmp"},
                              {1, "PNG", ".png"},     {0, "MM", ".tif"},  {0, "II", ".tif"}};
  if (data.size() < 6) return {};
  for (const Row& row : kRows) {
    if (data.substr(row.at, row.bytes.size()) == row.bytes) return row.extension;
  }
  const std::size_t jfif = data.find("JFIF");
  return jfif != std::string::npos && jfif < 30 ? ".jpg" : "";
}

void CompareFileType(const std::string& data) {
  ExpectSame("kind of file", email::FindExtension(data), ExpectedExtension(data));
}

// clang-format off
constexpr std::string_view kWordPieces[] = {
    "=?", "?", "?=", "= ", " =", "=", "?Q?", "?B?", "?q?", "?b?", "Q", "B", " ", "\t", "_", "=E9",
    "=C3=A9", "=00", "=4", "=zz", "utf-8", "iso-8859-1", "us-ascii", "utf-16", "binary", "foo",
    "QWxhZGRpbg", "=Q==", "a", "\"", "'", "\xE9", "\xC3\xA9", "=?utf-8?Q?", "=?iso-8859-1?B?",
    "?= =?utf-8?Q?", "?=\t=?utf-8?Q?", "?= ?", "?= =", "=?us-ascii?B?", std::string_view("\0", 1)};
constexpr std::string_view kHtmlPieces[] = {
    "<", ">", "</", "<!--", "-->", "-", "--", "!", "/", "script", "style", "pre", "noscript", "ul",
    "<p>", "</p>", "<ul>", "</ul>", "<ol>", "</ol>", "<li>", "<td>", "<tr>", "</tr>", "<div>",
    "</div>", "<table>", "<br>", "<br/>", "<h1>", "<script>", "</script>", "<style>", "</style>",
    "<noscript>", "</noscript>", "<pre>", "</pre>", "<!DOCTYPE", "\r", "\n", "\r\n", " ", "  ",
    "\t", "\f", "\xC2\xA0", "\xE2\x80\x83", "&", ";", "&;", "&#", "&#x", "x", "65", "41", "0", "-",
    "&amp;", "&AMP;", "&sig", "&notin", "&or;", "&#65;", "&#x41;", "&#0;", "99999999999",
    "a", "B", "word", "\xC4\xB4", "\xC5\xB0", "\xF0\x9F\x98\x80"};
constexpr std::string_view kCharsetPieces[] = {
    "utf", "UTF", "-", "_", ".", " ", "8", "16", "7", "iso", "ISO", "8859", "1", "2", "15", "0",
    "windows", "cp", "125", "850", "437", "us", "ascii", "koi8", "r", "big5", "gb", "2312", "euc",
    "jp", "kr", "shift", "jis", "mac", "roman", "x", "user", "defined", "unknown", "bit", "binary",
    "\"", "'", "\t", "\x7F", "\x80", "\xFF", "K", std::string_view("\0", 1)};
constexpr std::string_view kUtf8Pieces[] = {
    "a", "~", "\x7F", "\t", "\n", "\r", "\x01", "\x0C", "\x80", "\xBF", "\x8F", "\x90", "\x9F",
    "\xA0", "\xC0", "\xC1", "\xC2", "\xDF", "\xE0", "\xE1", "\xEC", "\xED", "\xEE", "\xEF", "\xF0",
    "\xF1", "\xF3", "\xF4", "\xF5", "\xF8", "\xFC", "\xFE", "\xFF", "\xC3\xA9", "\xEF\xBB\xBF",
    "\xEF\xBF\xBE", "\xED\x9F\xBF", "\xED\xA0\x80", "\xF4\x8F\xBF\xBF", std::string_view("\0", 1)};
constexpr std::string_view kQuotePieces[] = {"\"", "'", " ", "\t", "a", "\"'", "'\"", "\\"};
constexpr std::string_view kBase64Pieces[] = {
    "QWxhZGRpbg==", "QWxh", "+/09", "z", "Q", "=", "==", "===", "\r\n", "\n", " ", "-_", "|", "{",
    "\x7F", "\x80", "\xFF", std::string_view("\0", 1)};
constexpr std::string_view kQuotedPrintablePieces[] = {
    "caf=C3=A9", "a", "=3D", "=e9", "=4", "=zz", "=", "==", "=\r\n", "=\n", "= \t\n", "=\r", " ",
    "\t", "  \r\n", " \n", "\r\n", "\n", "\r", "\n\r", "\x01", "\f", "\x7F", "\x80", "\xFF",
    std::string_view("\0", 1)};
constexpr std::string_view kFilePieces[] = {
    "<html>", "<html", "GIF", "BM", "PNG", "MM", "II", "JFIF", "JFI", "F", "x", "\x89", "abcdef",
    "0123456789", "<", "G", "P", std::string_view("\0", 1)};
// clang-format on

struct Comparison {
  void (*compare)(const std::string& text);
  Alphabet alphabet;
};

constexpr Comparison kComparisons[] = {
    {CompareWords, Alphabet(kWordPieces)},
    {CompareHtml, Alphabet(kHtmlPieces)},
    {CompareCharset, Alphabet(kCharsetPieces)},
    {CompareUtf8, Alphabet(kUtf8Pieces)},
    {CompareQuotes, Alphabet(kQuotePieces)},
    {CompareBase64, Alphabet(kBase64Pieces)},
    {CompareQuotedPrintable, Alphabet(kQuotedPrintablePieces)},
    {CompareFileType, Alphabet(kFilePieces)},
};

const Comparison& Chosen(std::string_view input) {
  const std::size_t number = static_cast<unsigned char>(input.front());
  return kComparisons[number % std::size(kComparisons)];
}

void Start() {}

void Run(std::string_view input) {
  if (input.empty()) return;
  Chosen(input).compare(std::string(input.substr(1)));
}

std::string Spell(std::string_view input) {
  if (input.empty()) return {};
  return input.front() + Chosen(input).alphabet.Spell(input.substr(1), 2'000);
}

}  // namespace

const Target target = {Start, Run, Spell};

}  // namespace zqv::fuzz
