// Bodies: lines, transfer encodings, charsets.
#include "tests/growth/dimensions.h"
#include "tests/growth/inputs.h"

namespace zqv::growth {
namespace {

constexpr std::string_view kPlain = "Content-Type: text/plain\n";
constexpr std::string_view kBase64 = "Content-Transfer-Encoding: base64\n";
constexpr std::string_view kQuotedPrintable = "Content-Transfer-Encoding: quoted-printable\n";

std::string OneLine(std::size_t n) { return MessageWithBody(kPlain, Repeat("a", n)); }
std::string Lines(std::size_t n) { return MessageWithBody(kPlain, Repeat("A line.\r\n", n)); }
std::string EmptyLines(std::size_t n) { return MessageWithBody(kPlain, Repeat("\n", n)); }
std::string Returns(std::size_t n) { return MessageWithBody(kPlain, Repeat("\r", n)); }
std::string LinesOfReturns(std::size_t n) { return MessageWithBody(kPlain, Repeat("a\r", n)); }
std::string MixedBreaks(std::size_t n) { return MessageWithBody(kPlain, Repeat("\n\r\r\n", n)); }
std::string Nuls(std::size_t n) {
  return MessageWithBody(kPlain, "a" + Repeat(std::string_view("\0", 1), n));
}
std::string LinesInMultipart(std::size_t n) {
  return Multipart("--b\n\n" + Repeat("A line.\n", n));
}
std::string EmptyLinesInMultipart(std::size_t n) { return Multipart("--b\n\n" + Repeat("\n", n)); }
std::string OneLineInMultipart(std::size_t n) {
  return Multipart("--b\n\n" + Repeat("a", n) + "\n");
}

std::string Base64(std::size_t n) {
  constexpr std::string_view kLine =
      "QSBsaW5lIG9mIHBsYWluIHRleHQsIGFzIHBlb3BsZSB3cml0ZSB0aGVtIHRvIGVhY2ggb3RoZXIu\r\n";
  return MessageWithBody(kBase64, Repeat(kLine, n));
}
std::string Base64Junk(std::size_t n) { return MessageWithBody(kBase64, Repeat("*-_|\x80", n)); }
std::string Base64Equals(std::size_t n) { return MessageWithBody(kBase64, Repeat("=", n)); }
std::string Base64Groups(std::size_t n) { return MessageWithBody(kBase64, Repeat("QQ==", n)); }

std::string QpRegular(std::size_t n) {
  return MessageWithBody(kQuotedPrintable,
                         Repeat("A caf=C3=A9 with a soft break behind this =\r\nword.\r\n", n));
}
std::string QpEquals(std::size_t n) { return MessageWithBody(kQuotedPrintable, Repeat("=", n)); }
std::string QpJunk(std::size_t n) {
  return MessageWithBody(kQuotedPrintable, Repeat("=G1=\x80", n));
}
std::string QpBlanks(std::size_t n) { return MessageWithBody(kQuotedPrintable, Repeat(" ", n)); }
std::string QpBlanksAtLineEnds(std::size_t n) {
  return MessageWithBody(kQuotedPrintable, Repeat("a \t \n", n));
}
std::string QpBlanksBeforeLetter(std::size_t n) {
  return MessageWithBody(kQuotedPrintable, Repeat(" ", n) + "a\n");
}
std::string QpSoftBreaks(std::size_t n) {
  return MessageWithBody(kQuotedPrintable, Repeat("=\n", n));
}

std::string Utf8WithoutCharset(std::size_t n) {
  return MessageWithBody(kPlain, Repeat("caf\xC3\xA9\n", n));
}
std::string HighWithoutCharset(std::size_t n) {
  return MessageWithBody(kPlain, Repeat("caf\xE9\n", n));
}
// The number of bytes is even, as UTF-16 needs.
template <const char* kCharset>
std::string InCharset(std::size_t n) {
  return MessageWithBody(std::string("Content-Type: text/plain; charset=") + kCharset + "\n",
                         Repeat("caf\xE9s\n", n));
}
constexpr char kLatin1[] = "iso-8859-1";
constexpr char kUtf8[] = "utf-8";
constexpr char kUtf16[] = "utf-16";
constexpr char kUnknown[] = "x-none";
constexpr char kJapanese[] = "iso-2022-jp";

std::string HtmlMessage(std::size_t n) {
  return MessageWithBody("Content-Type: text/html; charset=utf-8\n",
                         Repeat("<p>Caf&eacute; at <b>noon</b></p>\n", n));
}

}  // namespace

const std::vector<Dimension> kBodyDimensions = {
    // clang-format off
    {"body.one_line",            "letters of one line",                 UseMessage, OneLine},
    {"body.lines",               "lines",                               UseMessage, Lines},
    {"body.empty_lines",         "empty lines",                         UseMessage, EmptyLines},
    {"body.crs",                 "CRs",                                 UseMessage, Returns},
    {"body.cr_lines",            "lines that end in CR",                UseMessage, LinesOfReturns},
    {"body.mixed_breaks",        "line breaks of all kinds",            UseMessage, MixedBreaks},
    {"body.nuls",                "NULs",                                UseMessage, Nuls},
    {"body.lines_in_part",       "lines of a part",                     UseMessage, LinesInMultipart},
    {"body.empty_lines_in_part", "empty lines of a part",               UseMessage, EmptyLinesInMultipart},
    {"body.one_line_in_part",    "letters of one line of a part",       UseMessage, OneLineInMultipart},
    {"body.base64",              "lines in base64",                     UseMessage, Base64},
    {"body.base64_junk",         "base64 without a letter of its own",  UseMessage, Base64Junk},
    {"body.base64_equals",       "= in base64",                         UseMessage, Base64Equals},
    {"body.base64_groups",       "ends in base64",                      UseMessage, Base64Groups},
    {"body.qp",                  "lines in quoted-printable",           UseMessage, QpRegular},
    {"body.qp_equals",           "= in quoted-printable",               UseMessage, QpEquals},
    {"body.qp_junk",             "bad escapes in quoted-printable",     UseMessage, QpJunk},
    {"body.qp_blanks",           "blanks in quoted-printable",          UseMessage, QpBlanks},
    {"body.qp_blanks_at_ends",   "lines that end in blanks",            UseMessage, QpBlanksAtLineEnds},
    {"body.qp_blanks_before",    "blanks before a letter",              UseMessage, QpBlanksBeforeLetter},
    {"body.qp_soft_breaks",      "soft breaks",                         UseMessage, QpSoftBreaks},
    {"body.utf8",                "UTF-8 without a charset",             UseMessage, Utf8WithoutCharset},
    {"body.high_bytes",          "other high bytes without a charset",  UseMessage, HighWithoutCharset},
    {"body.latin1",              "text in ISO 8859-1",                  UseMessage, InCharset<kLatin1>},
    {"body.bad_utf8",            "text that is not in its charset",     UseMessage, InCharset<kUtf8>},
    {"body.utf16",               "text in UTF-16",                      UseMessage, InCharset<kUtf16>},
    {"body.japanese",            "text in ISO 2022-JP",                 UseMessage, InCharset<kJapanese>},
    {"body.unknown_charset",     "text in an unknown charset",          UseMessage, InCharset<kUnknown>},
    {"body.html",                "HTML without a plain text beside it", UseMessage, HtmlMessage},
    // clang-format on
};

}  // namespace zqv::growth
