// Header fields: their length, their number, and the values that the library parses.
#include "tests/growth/dimensions.h"
#include "tests/growth/inputs.h"

namespace zqv::growth {
namespace {

constexpr const char* kTooManyFields = "C++ Exception: the message has too many fields";
constexpr const char* kTooManyEntries =
    "C++ Exception: the message has too many addresses or parameters";

std::string FieldLength(std::size_t n) { return MessageWithField("X-Note", Repeat("a", n)); }
std::string NameLength(std::size_t n) { return MessageWithField(Repeat("a", n) + "a", "b"); }
std::string Folds(std::size_t n) { return MessageWithField("X-Note", "a" + Repeat("\n a", n)); }
std::string BlankFolds(std::size_t n) {
  return MessageWithField("X-Note", "a" + Repeat("\n ", n) + "\n a");
}
std::string Blanks(std::size_t n) { return MessageWithField("X-Note", "a" + Repeat(" ", n) + "a"); }
std::string TrailingBlanks(std::size_t n) {
  return MessageWithField("X-Note", "a" + Repeat(" ", n));
}
std::string Fields(std::size_t n) { return PlainMessage(Repeat("X-Note: a\n", n)); }
std::string ShortestFields(std::size_t n) { return PlainMessage(Repeat("a:\n", n)); }
std::string FieldNames(std::size_t n) {
  return PlainMessage(
      Count(n, [](std::size_t i) { return "X-Note-" + std::to_string(i) + ": a\n"; }));
}
std::string ColonLines(std::size_t n) { return PlainMessage(Repeat(": a\n", n)); }
std::string RepeatedTo(std::size_t n) { return PlainMessage(Repeat("To: a@example.org\n", n)); }
std::string RepeatedContentTypes(std::size_t n) {
  return PlainMessage(Repeat("Content-Type: text/plain\n", n));
}

// "; name0=value; name1=value" and so on.
std::string Parameters(std::size_t n) {
  return Count(n, [](std::size_t i) { return "; name" + std::to_string(i) + "=value"; });
}
std::string TypeParameters(std::size_t n) {
  return MessageWithField("Content-Type", "text/plain" + Parameters(n));
}
std::string DispositionParameters(std::size_t n) {
  return MessageWithField("Content-Disposition", "attachment" + Parameters(n));
}
std::string EmptyParameters(std::size_t n) {
  return MessageWithField("Content-Type", "text/plain" + Repeat(";", n));
}
std::string ParameterLength(std::size_t n) {
  return MessageWithField("Content-Type", "text/plain; name=\"" + Repeat("a", n) + "\"");
}
std::string ParameterBlanks(std::size_t n) {
  return MessageWithField("Content-Type", "text/plain; name=" + Repeat(" ", n) + "a");
}
std::string ParameterQuotes(std::size_t n) {
  return MessageWithField("Content-Type", "text/plain; name=" + Repeat("\"", n));
}
std::string TypeSlashes(std::size_t n) {
  return MessageWithField("Content-Type", "text" + Repeat("/", n));
}
std::string MechanismLength(std::size_t n) {
  return MessageWithField("Content-Transfer-Encoding", Repeat("a", n));
}
std::string DescriptionLength(std::size_t n) {
  return MessageWithField("Content-Description", Repeat("a", n));
}
std::string MessageIdLength(std::size_t n) {
  return MessageWithField("Message-ID", "<" + Repeat("a", n) + "@example.org>");
}
std::string VersionLength(std::size_t n) {
  return PlainMessage("Mime-Version: 1.0 (" + Repeat("a", n) + ")\n");
}
std::string VersionDots(std::size_t n) {
  return "MIME-Version: 1" + Repeat(".0", n) + "\n\nHello.\n";
}
std::string SubjectLength(std::size_t n) { return MessageWithField("Subject", Repeat("a", n)); }
std::string HighBytes(std::size_t n) { return MessageWithField("X-Note", Repeat("\xE9", n)); }
std::string Nuls(std::size_t n) {
  return MessageWithField("X-Note", "a" + Repeat(std::string_view("\0", 1), n));
}
std::string HeaderOnly(std::size_t n) { return Repeat("X-Note: a\n", n + 1); }
std::string WithoutLineEnd(std::size_t n) { return "X-Note: " + Repeat("a", n); }

}  // namespace

const std::vector<Dimension> kHeaderDimensions = {
    // clang-format off
    {"header.field_length",           "letters of one field",                     UseMessage, FieldLength},
    {"header.name_length",            "letters of a field's name",                UseMessage, NameLength},
    {"header.folds",                  "folds in one field",                       UseMessage, Folds},
    {"header.blank_folds",            "lines of a blank in one field",            UseMessage, BlankFolds},
    {"header.blanks",                 "blanks in one field",                      UseMessage, Blanks},
    {"header.trailing_blanks",        "blanks at the end of one field",           UseMessage, TrailingBlanks},
    {"header.fields",                 "fields of one name",                       UseMessage, Fields,                kTooManyFields,  kDear},
    {"header.shortest_fields",        "fields of three bytes",                    UseMessage, ShortestFields,        kTooManyFields,  kDearer},
    {"header.field_names",            "fields of different names",                UseMessage, FieldNames,            kTooManyFields,  kDear},
    {"header.colon_lines",            "lines that begin with a colon",            UseMessage, ColonLines,            kTooManyFields},
    {"header.to_fields",              "To fields",                                UseMessage, RepeatedTo,            kTooManyEntries, kDear},
    {"header.type_fields",            "Content-Type fields",                      UseMessage, RepeatedContentTypes,  kTooManyEntries, kHalf},
    {"header.type_parameters",        "parameters of the Content-Type",           UseMessage, TypeParameters,        kTooManyEntries, kHalf},
    {"header.disposition_parameters", "parameters of the Content-Disposition",    UseMessage, DispositionParameters, kTooManyEntries},
    {"header.empty_parameters",       "empty parameters",                         UseMessage, EmptyParameters,       kTooManyEntries, kDearer},
    {"header.parameter_length",       "letters of one parameter",                 UseMessage, ParameterLength},
    {"header.parameter_blanks",       "blanks before a parameter's value",        UseMessage, ParameterBlanks},
    {"header.parameter_quotes",       "quotes in one parameter",                  UseMessage, ParameterQuotes},
    {"header.type_slashes",           "slashes in the Content-Type",              UseMessage, TypeSlashes},
    {"header.mechanism",              "letters of the Content-Transfer-Encoding", UseMessage, MechanismLength},
    {"header.description",            "letters of the Content-Description",       UseMessage, DescriptionLength},
    {"header.message_id",             "letters of the Message-ID",                UseMessage, MessageIdLength},
    {"header.version_comment",        "letters of a comment in the MIME version", UseMessage, VersionLength},
    {"header.version_dots",           "dots in the MIME version",                 UseMessage, VersionDots},
    {"header.subject",                "letters of the subject",                   UseMessage, SubjectLength},
    {"header.high_bytes",             "bytes in no known charset in one field",   UseMessage, HighBytes},
    {"header.nuls",                   "NULs in one field",                        UseMessage, Nuls},
    {"header.no_body",                "fields of a message without a body",       UseMessage, HeaderOnly,            kTooManyFields,  kDear},
    {"header.no_line_end",            "letters of a field without a line end",    UseMessage, WithoutLineEnd},
    // clang-format on
};

}  // namespace zqv::growth
