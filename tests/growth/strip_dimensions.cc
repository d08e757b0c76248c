// SourceWithoutAttachments only: the parts that are removed, and the fields and texts that are
// written.
#include "tests/growth/dimensions.h"
#include "tests/growth/inputs.h"

namespace zqv::growth {
namespace {

constexpr const char* kTooMany = "C++ Exception: the message has too many parts";
constexpr std::string_view kFile = "--b\nContent-Disposition: attachment\n\nAA\n";
constexpr std::string_view kText = "--b\n\nHello.\n";

std::string Files(std::size_t n) { return Multipart(Repeat(kFile, n)); }
std::string FilesAndTexts(std::size_t n) {
  return Multipart(Repeat(std::string(kFile) + std::string(kText), n));
}
std::string TextsThenFiles(std::size_t n) {
  return Multipart(Repeat(kText, n / 2) + Repeat(kFile, n / 2));
}
std::string FileInEachMultipart(std::size_t n) {
  return Multipart(
      Repeat("--b\nContent-Type: multipart/mixed; boundary=c\n\n"
             "--c\nContent-Disposition: attachment\n\nAA\n--c--\n",
             n));
}
std::string FileInEachLevel(std::size_t n) {
  return Count(n,
               [](std::size_t level) {
                 const std::string boundary = "b" + std::to_string(level) + "x";
                 return "Content-Type: multipart/mixed; boundary=" + boundary + "\n\n--" +
                        boundary + "\nContent-Disposition: attachment\n\nAA\n--" + boundary + "\n";
               }) +
         "\nHello.\n";
}
std::string Blanks(std::size_t n) { return MessageWithField("X-Note", "a" + Repeat(" ", n) + "a"); }
std::string Words(std::size_t n) { return MessageWithField("X-Note", Repeat("a ", n)); }
std::string QuotedBlanks(std::size_t n) {
  return MessageWithField("X-Note", "\"" + Repeat(" ", n) + "\"");
}
std::string OpenQuotes(std::size_t n) { return MessageWithField("X-Note", Repeat("\" ", n)); }
std::string LongWord(std::size_t n) { return MessageWithField("X-Note", Repeat("a", n)); }
std::string SemicolonWords(std::size_t n) { return MessageWithField("X-Note", Repeat("a;", n)); }
std::string Fields(std::size_t n) { return PlainMessage(Repeat("X-Note: a\n", n)); }
std::string Breaks(std::size_t n) {
  return MessageWithBody("Content-Type: text/plain\n", Repeat("\r\n", n));
}
std::string HighBytes(std::size_t n) {
  return MessageWithBody("Content-Type: text/plain\n", Repeat("\xE9", n));
}

constexpr std::string_view kStrip = "strip";

}  // namespace

const std::vector<Dimension> kStripDimensions = {
    // clang-format off
    {"strip.files",              "files",                              UseMessage, Files,               kTooMany, kUsual, kStrip},
    {"strip.files_and_texts",    "files and texts in turn",            UseMessage, FilesAndTexts,       kTooMany, kUsual, kStrip},
    {"strip.texts_then_files",   "texts, then files",                  UseMessage, TextsThenFiles,      kTooMany, kUsual, kStrip},
    {"strip.file_in_multiparts", "multiparts with a file each",        UseMessage, FileInEachMultipart, kTooMany, kUsual, kStrip},
    {"strip.file_in_levels",     "levels with a file each",            UseMessage, FileInEachLevel,     kTooMany, kUsual, kStrip},
    {"strip.blanks",             "blanks in one field",                UseMessage, Blanks,              nullptr, kUsual, kStrip},
    {"strip.words",              "words of one field",                 UseMessage, Words,               nullptr, kUsual, kStrip},
    {"strip.quoted_blanks",      "blanks between quotes in one field", UseMessage, QuotedBlanks,        nullptr, kUsual, kStrip},
    {"strip.open_quotes",        "quotes and blanks in one field",     UseMessage, OpenQuotes,          nullptr, kUsual, kStrip},
    {"strip.long_word",          "letters of one field",               UseMessage, LongWord,            nullptr, kUsual, kStrip},
    {"strip.semicolons",         "; in one field",                     UseMessage, SemicolonWords,      nullptr, kUsual, kStrip},
    {"strip.fields",             "fields",                             UseMessage, Fields,              "C++ Exception: the message has too many fields", kUsual, kStrip},
    {"strip.breaks",             "line breaks of the body",            UseMessage, Breaks,              nullptr, kUsual, kStrip},
    {"strip.high_bytes",         "high bytes of the body",             UseMessage, HighBytes,           nullptr, kUsual, kStrip},
    // clang-format on
};

}  // namespace zqv::growth
