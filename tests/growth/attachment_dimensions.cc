// Names and data of attachments, and the dates of a message.
#include "tests/growth/dimensions.h"
#include "tests/growth/inputs.h"

namespace zqv::growth {
namespace {

// A message with one attachment; `fields` are complete lines.
std::string Attachment(const std::string& fields, const std::string& data = "Hello.") {
  return Multipart("--b\nContent-Type: application/x-data\n" + fields + "\n" + data + "\n");
}
std::string Named(const std::string& parameter) {
  return Attachment("Content-Disposition: attachment; " + parameter + "\n");
}

std::string FileName(std::size_t n) { return Named("filename=\"a" + Repeat("a", n) + "\""); }
std::string FileNameQuotes(std::size_t n) { return Named("filename=" + Repeat("\"'", n)); }
std::string FileNameBlanks(std::size_t n) { return Named("filename=\"" + Repeat(" ", n) + "a\""); }
std::string FileNameWords(std::size_t n) {
  return Named("filename=\"" + Repeat("=?utf-8?Q?Zo=C3=AB?= ", n) + "\"");
}
std::string ExtendedName(std::size_t n) {
  return Named("filename*=utf-8''a" + Repeat("%C3%A9", n));
}
std::string ExtendedApostrophes(std::size_t n) { return Named("filename*=utf-8" + Repeat("'", n)); }
std::string ExtendedCharset(std::size_t n) { return Named("filename*=" + Repeat("a", n) + "''b"); }
std::string TypeName(std::size_t n) {
  return Multipart("--b\nContent-Type: image/png; name=a" + Repeat("a", n) + "\n\nHello.\n");
}
std::string ContentId(std::size_t n) {
  return Attachment("Content-ID: <" + Repeat("a", n) + ">\n", "GIF89a");
}
std::string ContentIdBlanks(std::size_t n) {
  return Attachment("Content-ID: " + Repeat(" ", n) + "<a@example.org>\n", "GIF89a");
}
std::string Description(std::size_t n) {
  return Attachment("Content-Disposition: attachment\nContent-Description: " + Repeat(" a", n) +
                    "\n");
}
std::string DescriptionBlanks(std::size_t n) {
  return Attachment("Content-Disposition: attachment\nContent-Description: a\n" +
                    Repeat("  \t\n", n) + "\n");
}
// The data is searched for the marker of JPEG images.
std::string AlmostJpeg(std::size_t n) { return Attachment("", Repeat("JFI", n)); }

std::string DateLength(std::size_t n) {
  return MessageWithField("Date", "Tue, 1 Jan 2019 10:00:00 +0200 (" + Repeat("a", n) + ")");
}
std::string DateBlanks(std::size_t n) {
  return MessageWithField("Date", "Tue, 1 Jan 2019" + Repeat(" ", n) + "10:00:00 +0200");
}
std::string DateWords(std::size_t n) { return MessageWithField("Date", Repeat("1 ", n)); }
std::string DateMarks(std::size_t n) { return MessageWithField("Date", Repeat(",:+", n)); }
std::string DateComments(std::size_t n) {
  return MessageWithField("Date", Repeat("(a)", n) + "Tue, 1 Jan 2019 10:00:00 +0200");
}
std::string Dates(std::size_t n) {
  return PlainMessage(Repeat("Date: Tue, 1 Jan 2019 10:00:00 +0200\n", n));
}
std::string ReceivedLength(std::size_t n) {
  return MessageWithField("Received",
                          "from " + Repeat("a", n) + "; Tue, 1 Jan 2019 10:00:00 +0000");
}
std::string ReceivedSemicolons(std::size_t n) {
  return MessageWithField("Received", "from a" + Repeat(";", n));
}
std::string ReceivedEnds(std::size_t n) {
  return MessageWithField("Received", "from a" + Repeat("; ", n));
}
std::string Receiveds(std::size_t n) {
  return PlainMessage(Repeat("Received: from a; Tue, 1 Jan 2019 10:00:00 +0000\n", n));
}

}  // namespace

const std::vector<Dimension> kAttachmentDimensions = {
    // clang-format off
    {"name.file",                 "letters of a file name",                UseMessage, FileName},
    {"name.file_quotes",          "quotes around a file name",             UseMessage, FileNameQuotes},
    {"name.file_blanks",          "blanks before a file name",             UseMessage, FileNameBlanks},
    {"name.file_words",           "encoded words of a file name",          UseMessage, FileNameWords},
    {"name.extended",             "letters of a filename*",                UseMessage, ExtendedName},
    {"name.extended_apostrophes", "apostrophes of a filename*",            UseMessage, ExtendedApostrophes},
    {"name.extended_charset",     "letters of the charset of a filename*", UseMessage, ExtendedCharset},
    {"name.type",                 "letters of the Content-Type's name",    UseMessage, TypeName},
    {"name.content_id",           "letters of a Content-ID",               UseMessage, ContentId},
    {"name.content_id_blanks",    "blanks before a Content-ID",            UseMessage, ContentIdBlanks},
    {"name.description",          "words of a Content-Description",        UseMessage, Description},
    {"name.description_blanks",   "blanks of a Content-Description",       UseMessage, DescriptionBlanks},
    {"name.data",                 "data that is almost a known image",     UseMessage, AlmostJpeg},
    {"date.length",               "letters of the Date field",             UseMessage, DateLength},
    {"date.blanks",               "blanks in the Date field",              UseMessage, DateBlanks},
    {"date.words",                "words of the Date field",               UseMessage, DateWords},
    {"date.marks",                "marks in the Date field",               UseMessage, DateMarks},
    {"date.comments",             "comments in the Date field",            UseMessage, DateComments},
    {"date.fields",               "Date fields",                           UseMessage, Dates,               nullptr, kDear},
    {"date.received_length",      "letters of a Received field",           UseMessage, ReceivedLength},
    {"date.received_semicolons",  "; in a Received field",                 UseMessage, ReceivedSemicolons},
    {"date.received_ends",        "; and a blank in a Received field",     UseMessage, ReceivedEnds},
    {"date.received_fields",      "Received fields",                       UseMessage, Receiveds,           nullptr, kHalf},
    // clang-format on
};

}  // namespace zqv::growth
