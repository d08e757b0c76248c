// Texts: encoded words in subjects and in the shared method, and HTML in the shared method.
#include "tests/growth/dimensions.h"
#include "tests/growth/inputs.h"

namespace zqv::growth {
namespace {

constexpr std::string_view kProse = "A line of plain text, as people write them.\r\n";

// Encoded words, which are used as subjects and as arguments of the shared method.
std::string Prose(std::size_t n) { return Repeat("A text without any mark. ", n); }
std::string Words(std::size_t n) { return Repeat("=?utf-8?Q?Caf=C3=A9?= ", n); }
std::string BWords(std::size_t n) { return Repeat("=?utf-8?B?Q2Fmw6k=?= ", n); }
std::string Unterminated(std::size_t n) { return Repeat("=?utf-8?Q?Caf=C3=A9 ", n); }
std::string Beginnings(std::size_t n) { return Repeat("=?", n); }
std::string Equals(std::size_t n) { return Repeat("=", n); }
std::string QuestionMarks(std::size_t n) { return "=?utf-8?Q?a" + Repeat("?", n); }
std::string LongBWord(std::size_t n) { return "=?utf-8?B?" + Repeat("Q2Fm", n) + "?="; }
std::string LongBJunk(std::size_t n) { return "=?utf-8?B?" + Repeat("*=", n) + "?="; }
std::string LongQWord(std::size_t n) { return "=?utf-8?Q?" + Repeat("a_=C3=A9", n) + "?="; }
std::string LongQJunk(std::size_t n) { return "=?utf-8?Q?" + Repeat("=", n) + "?="; }
std::string LongCharset(std::size_t n) { return "=?" + Repeat("a", n) + "?Q?a?="; }
std::string UnknownCharset(std::size_t n) { return Repeat("=?x-none?Q?a?= ", n); }
std::string ManyCharsets(std::size_t n) {
  return Count(n, [](std::size_t i) { return "=?x-" + std::to_string(i) + "?Q?a?= "; });
}
std::string SpacesBetween(std::size_t n) {
  return "=?utf-8?Q?a?=" + Repeat(" ", n) + "=?utf-8?Q?b?=";
}
std::string Latin1Words(std::size_t n) { return Repeat("=?iso-8859-1?Q?Caf=E9?= ", n); }

using Make = std::string (*)(std::size_t bytes);

template <Make kMake>
std::string Subject(std::size_t n) {
  return MessageWithField("Subject", kMake(n));
}

// HTML.
std::string HtmlProse(std::size_t n) { return Repeat(kProse, n); }
std::string Tags(std::size_t n) { return Repeat("<p>a</p>", n); }
std::string Table(std::size_t n) { return Repeat("<tr><td>a</td><td>b</td></tr>\n", n); }
std::string LongTag(std::size_t n) { return "<" + Repeat("a", n) + ">b"; }
std::string Attributes(std::size_t n) { return "<a" + Repeat(" b=\"c\"", n) + ">d"; }
std::string References(std::size_t n) { return Repeat("&eacute;", n); }
std::string LastReference(std::size_t n) { return Repeat("&diams;", n); }
std::string NumericReferences(std::size_t n) { return Repeat("&#233;&#xE9;", n); }
std::string LongNumber(std::size_t n) { return "&#" + Repeat("0", n) + "65;"; }
std::string BadNumbers(std::size_t n) { return Repeat("&#0;&#;&#x;", n); }
std::string UnknownReferences(std::size_t n) { return Repeat("&nosuch;", n); }
std::string BareAmpersandWords(std::size_t n) { return Repeat("a & b ", n); }
std::string Comments(std::size_t n) { return Repeat("a<!-- b -->", n); }
std::string OpenComment(std::size_t n) { return "a<!--" + Repeat(" b", n); }
std::string OpenComments(std::size_t n) { return Repeat("<!--", n); }
std::string AlmostClosed(std::size_t n) { return "<!--" + Repeat("--", n); }
std::string OpenTag(std::size_t n) { return "a<b" + Repeat(" c", n); }
std::string OpenTags(std::size_t n) { return Repeat("<b ", n); }
std::string NestedLists(std::size_t n) { return Repeat("<ul>", n) + "<li>a"; }
// Bullets are indented by their level, up to about four million spaces in total. 20,000 bytes reach
// that limit, and beyond it the text grows no faster than the input.
std::string NestedListItems(std::size_t n) { return Repeat("<ul><li>a", n); }
std::string ListItems(std::size_t n) { return "<ul>" + Repeat("<li>a", n); }
std::string LessThan(std::size_t n) { return Repeat("<", n); }
std::string GreaterThan(std::size_t n) { return Repeat(">", n); }
std::string Ampersands(std::size_t n) { return Repeat("&", n); }
std::string Blanks(std::size_t n) { return Repeat(" ", n); }
std::string Breaks(std::size_t n) { return Repeat("\r\n", n); }
std::string PreBreaks(std::size_t n) { return "<pre>" + Repeat("a\r\n", n); }
std::string Script(std::size_t n) { return "<script>" + Repeat("if (a < b) c();\n", n); }
std::string ScriptTags(std::size_t n) { return "<script>" + Repeat("</a>", n); }
std::string Scripts(std::size_t n) { return Repeat("<script>a</script>b", n); }
std::string Style(std::size_t n) { return "<style>" + Repeat("a { b: c }\n", n); }
std::string NoScript(std::size_t n) { return "<noscript>" + Repeat("a ", n); }
std::string NonAscii(std::size_t n) { return Repeat("caf\xC3\xA9 \xF0\x9F\x98\x80 ", n); }
std::string BadUtf8(std::size_t n) { return "a" + Repeat("\xE9", n); }

}  // namespace

const std::vector<Dimension> kTextDimensions = {
    // clang-format off
    {"subject.words",           "encoded words",                     UseMessage,         Subject<Words>},
    {"subject.unterminated",    "encoded words without an end",      UseMessage,         Subject<Unterminated>},
    {"subject.beginnings",      "beginnings of encoded words",       UseMessage,         Subject<Beginnings>},
    {"subject.b_word",          "letters of one B word",             UseMessage,         Subject<LongBWord>},
    {"subject.q_word",          "letters of one Q word",             UseMessage,         Subject<LongQWord>},
    {"subject.unknown_charset", "words in an unknown charset",       UseMessage,         Subject<UnknownCharset>},
    {"inline.prose",            "letters without encoded words",     UseDecodeInline,    Prose},
    {"inline.q_words",          "Q words",                           UseDecodeInline,    Words},
    {"inline.b_words",          "B words",                           UseDecodeInline,    BWords},
    {"inline.latin1_words",     "words in ISO 8859-1",               UseDecodeInline,    Latin1Words},
    {"inline.unterminated",     "words without an end",              UseDecodeInline,    Unterminated},
    {"inline.beginnings",       "beginnings of words",               UseDecodeInline,    Beginnings},
    {"inline.equals",           "=",                                 UseDecodeInline,    Equals},
    {"inline.question_marks",   "? behind a word",                   UseDecodeInline,    QuestionMarks},
    {"inline.b_word",           "letters of one B word",             UseDecodeInline,    LongBWord},
    {"inline.b_junk",           "junk of one B word",                UseDecodeInline,    LongBJunk},
    {"inline.q_word",           "letters of one Q word",             UseDecodeInline,    LongQWord},
    {"inline.q_junk",           "= of one Q word",                   UseDecodeInline,    LongQJunk},
    {"inline.charset_name",     "letters of a charset's name",       UseDecodeInline,    LongCharset},
    {"inline.charsets",         "words in unknown charsets",         UseDecodeInline,    ManyCharsets},
    {"inline.spaces",           "spaces between two words",          UseDecodeInline,    SpacesBetween},
    {"html.prose",              "lines without tags",                UseHtmlToPlainText, HtmlProse},
    {"html.tags",               "tags",                              UseHtmlToPlainText, Tags},
    {"html.table",              "rows of a table",                   UseHtmlToPlainText, Table},
    {"html.tag_length",         "letters of one tag's name",         UseHtmlToPlainText, LongTag},
    {"html.attributes",         "attributes of one tag",             UseHtmlToPlainText, Attributes},
    {"html.references",         "named references",                  UseHtmlToPlainText, References},
    {"html.last_reference",     "references to the last known name", UseHtmlToPlainText, LastReference},
    {"html.numbers",            "numeric references",                UseHtmlToPlainText, NumericReferences},
    {"html.long_number",        "digits of one reference",           UseHtmlToPlainText, LongNumber},
    {"html.bad_numbers",        "references to no number",           UseHtmlToPlainText, BadNumbers,              nullptr, kHalf},
    {"html.unknown_references", "references to unknown names",       UseHtmlToPlainText, UnknownReferences},
    {"html.bare_ampersands",    "& between words",                   UseHtmlToPlainText, BareAmpersandWords},
    {"html.comments",           "comments",                          UseHtmlToPlainText, Comments},
    {"html.open_comment",       "letters of a comment without end",  UseHtmlToPlainText, OpenComment},
    {"html.open_comments",      "comments without an end",           UseHtmlToPlainText, OpenComments},
    {"html.almost_closed",      "- in a comment",                    UseHtmlToPlainText, AlmostClosed},
    {"html.open_tag",           "letters of a tag without end",      UseHtmlToPlainText, OpenTag},
    {"html.open_tags",          "tags without an end",               UseHtmlToPlainText, OpenTags},
    {"html.nested_lists",       "lists in one another",              UseHtmlToPlainText, NestedLists},
    {"html.nested_list_items",  "items of lists in one another",     UseHtmlToPlainText, NestedListItems,         nullptr, kHalf},
    {"html.list_items",         "items of one list",                 UseHtmlToPlainText, ListItems},
    {"html.less_than",          "<",                                 UseHtmlToPlainText, LessThan},
    {"html.greater_than",       ">",                                 UseHtmlToPlainText, GreaterThan},
    {"html.ampersands",         "&",                                 UseHtmlToPlainText, Ampersands},
    {"html.blanks",             "blanks",                            UseHtmlToPlainText, Blanks},
    {"html.breaks",             "line breaks",                       UseHtmlToPlainText, Breaks},
    {"html.pre",                "lines of a pre element",            UseHtmlToPlainText, PreBreaks},
    {"html.script",             "lines of a script",                 UseHtmlToPlainText, Script},
    {"html.script_tags",        "tags in a script",                  UseHtmlToPlainText, ScriptTags},
    {"html.scripts",            "scripts",                           UseHtmlToPlainText, Scripts},
    {"html.style",              "lines of a style sheet",            UseHtmlToPlainText, Style},
    {"html.noscript",           "words of a noscript element",       UseHtmlToPlainText, NoScript},
    {"html.non_ascii",          "letters beyond ASCII",              UseHtmlToPlainText, NonAscii},
    {"html.bad_utf8",           "bytes that are no UTF-8",           UseHtmlToPlainText, BadUtf8},
    // clang-format on
};

}  // namespace zqv::growth
