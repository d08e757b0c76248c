// Addresses: lists, groups, and all pieces that one address can repeat; in header fields, and in
// the classes that are made from text.
#include "tests/growth/dimensions.h"
#include "tests/growth/inputs.h"

namespace zqv::growth {
namespace {

constexpr const char* kTooManyEntries =
    "C++ Exception: the message has too many addresses or parameters";
constexpr const char* kTooManyAddresses = "C++ Exception: the text has too many addresses";

// "Ada 0 <ada0@example.org>, Ada 1 <ada1@example.org>" and so on.
std::string Mailboxes(std::size_t n) {
  return "Ada <ada@example.org>" + Count(n, [](std::size_t i) {
           const std::string number = std::to_string(i);
           return ", Ada " + number + " <ada" + number + "@example.org>";
         });
}
std::string Groups(std::size_t n) { return "a@example.org" + Repeat(", g: a@b.example;", n); }
std::string OneGroup(std::size_t n) { return "g: " + Mailboxes(n) + ";"; }
std::string Nothings(std::size_t n) { return "a@example.org" + Repeat(",", n); }
std::string EncodedLabels(std::size_t n) {
  return "a@example.org" + Repeat(", =?utf-8?Q?Zo=C3=AB?= <zoe@example.org>", n);
}
std::string OneEncodedLabel(std::size_t n) {
  return Repeat("=?utf-8?Q?Zo=C3=AB?= ", n) + "<zoe@example.org>";
}

// One address in which something is repeated before, inside or after its parts.
std::string Comments(std::size_t n) { return Repeat("(c)", n) + "a@example.org"; }
std::string NestedComments(std::size_t n) {
  return Repeat("(", n / 2) + Repeat(")", n / 2) + "a@example.org";
}
std::string OpenComments(std::size_t n) { return "a@example.org" + Repeat("(", n); }
std::string ClosingBrackets(std::size_t n) { return "a@example.org" + Repeat(")", n); }
std::string BlanksInside(std::size_t n) { return "a" + Repeat(" ", n) + "b@example.org"; }
std::string BlanksBehind(std::size_t n) { return "a@example.org" + Repeat(" ", n); }
std::string BlanksAlone(std::size_t n) { return "a@" + Repeat(" ", n); }
std::string BlanksAmongLetters(std::size_t n) { return Repeat("a ", n) + "b@example.org"; }
std::string Quotes(std::size_t n) { return Repeat("\"", n) + "a@example.org"; }
std::string QuotedPairs(std::size_t n) { return "\"" + Repeat("\\\"", n) + "\" <a@example.org>"; }
std::string QuotedWords(std::size_t n) { return Repeat("\"a\" ", n) + "<a@example.org>"; }
std::string OpenAngles(std::size_t n) { return Repeat("<", n) + "a@example.org>"; }
std::string ClosingAngles(std::size_t n) { return "<a@example.org" + Repeat(">", n); }
std::string Colons(std::size_t n) { return "a" + Repeat(":", n) + "b@example.org"; }
std::string Ats(std::size_t n) { return "a" + Repeat("@", n) + "example.org"; }
std::string Semicolons(std::size_t n) { return "a@example.org" + Repeat(";", n); }
std::string Label(std::size_t n) { return Repeat("a", n) + " <a@example.org>"; }
std::string Route(std::size_t n) { return "<" + Repeat("@r,", n) + "@r:a@example.org>"; }
std::string Domain(std::size_t n) { return "a@" + Repeat("b.", n) + "example"; }

// The characters that the address parsers treat specially, in an order that is never valid.
std::string Marks(std::size_t n) { return Repeat("\"(<:@>),; a\\", n); }

using Make = std::string (*)(std::size_t bytes);

template <Make kMake>
std::string To(std::size_t n) {
  return MessageWithField("To", kMake(n));
}
template <Make kMake>
std::string From(std::size_t n) {
  return MessageWithField("From", kMake(n));
}
template <Make kMake>
std::string Sender(std::size_t n) {
  return MessageWithField("Sender", kMake(n));
}

std::string FieldText(std::size_t n) { return "X-Note: " + Repeat("a note ", n); }

}  // namespace

const std::vector<Dimension> kAddressDimensions = {
    // clang-format off
    {"address.to",                   "addresses in To",                 UseMessage,     To<Mailboxes>,          kTooManyEntries,   kDear},
    {"address.from",                 "mailboxes in From",               UseMessage,     From<Mailboxes>,        kTooManyEntries,   kDear},
    {"address.empty",                "commas in To",                    UseMessage,     To<Nothings>,           kTooManyEntries,   kDearest},
    {"address.groups",               "groups in To",                    UseMessage,     To<Groups>,             kTooManyEntries,   kDearer},
    {"address.group_members",        "members of one group",            UseMessage,     To<OneGroup>,           kTooManyEntries,   kDear},
    {"address.group_in_from",        "members of a group in From",      UseMessage,     From<OneGroup>,         kTooManyEntries,   kDear},
    {"address.encoded_labels",       "addresses with an encoded label", UseMessage,     To<EncodedLabels>,      kTooManyEntries,   kDear},
    {"address.one_encoded_label",    "encoded words of one label",      UseMessage,     To<OneEncodedLabel>},
    {"address.comments",             "comments in one address",         UseMessage,     To<Comments>},
    {"address.nested_comments",      "comments in one another",         UseMessage,     To<NestedComments>},
    {"address.open_comments",        "( behind one address",            UseMessage,     To<OpenComments>},
    {"address.closing_brackets",     ") behind one address",            UseMessage,     To<ClosingBrackets>},
    {"address.blanks_inside",        "blanks in one address",           UseMessage,     To<BlanksInside>},
    {"address.blanks_behind",        "blanks behind one address",       UseMessage,     To<BlanksBehind>},
    {"address.blanks_alone",         "blanks in the place of a domain", UseMessage,     To<BlanksAlone>},
    {"address.blanks_among_letters", "single blanks in one address",    UseMessage,     To<BlanksAmongLetters>},
    {"address.sender_blanks",        "blanks in the sender",            UseMessage,     Sender<BlanksInside>},
    {"address.sender_comments",      "comments in the sender",          UseMessage,     Sender<Comments>},
    {"address.quotes",               "quotes in one address",           UseMessage,     To<Quotes>},
    {"address.quoted_pairs",         "escaped quotes in one address",   UseMessage,     To<QuotedPairs>},
    {"address.quoted_words",         "quoted words in one address",     UseMessage,     To<QuotedWords>},
    {"address.open_angles",          "< in one address",                UseMessage,     To<OpenAngles>},
    {"address.closing_angles",       "> in one address",                UseMessage,     To<ClosingAngles>},
    {"address.colons",               ": in one address",                UseMessage,     To<Colons>},
    {"address.ats",                  "@ in one address",                UseMessage,     To<Ats>},
    {"address.semicolons",           "; behind one address",            UseMessage,     To<Semicolons>,         kTooManyEntries},
    {"address.label",                "letters of a label",              UseMessage,     To<Label>},
    {"address.route",                "hosts of a route",                UseMessage,     To<Route>,              kTooManyEntries,   kDearer},
    {"address.domain",               "labels of a domain",              UseMessage,     To<Domain>},
    {"address.marks",                "marks in To",                     UseMessage,     To<Marks>,              kTooManyEntries},
    {"class.mailbox",                "letters of a mailbox's label",    UseMailbox,     Label},
    {"class.mailbox_marks",          "marks in a mailbox",              UseMailbox,     Marks,                  kTooManyAddresses},
    {"class.mailbox_blanks",         "single blanks in a mailbox",      UseMailbox,     BlanksAmongLetters},
    {"class.group",                  "members of a group",              UseGroup,       OneGroup,               kTooManyAddresses, kDear},
    {"class.group_marks",            "marks in a group",                UseGroup,       Marks,                  kTooManyAddresses},
    {"class.address",                "members of an address",           UseAddress,     OneGroup,               kTooManyAddresses, kDear},
    {"class.address_marks",          "marks in an address",             UseAddress,     Marks,                  kTooManyAddresses},
    {"class.mailbox_list",           "mailboxes of a list",             UseMailboxList, Mailboxes,              kTooManyAddresses, kDear},
    {"class.mailbox_list_marks",     "marks in a list of mailboxes",    UseMailboxList, Marks,                  kTooManyAddresses},
    {"class.address_list",           "addresses of a list",             UseAddressList, Mailboxes,              kTooManyAddresses, kDear},
    {"class.address_list_groups",    "groups of a list",                UseAddressList, Groups,                 kTooManyAddresses, kDearer},
    {"class.address_list_marks",     "marks in a list of addresses",    UseAddressList, Marks,                  kTooManyAddresses},
    {"class.field",                  "letters of a field",              UseField,       FieldText},
    {"class.field_marks",            "marks in a field",                UseField,       Marks,                  kTooManyAddresses},
    // clang-format on
};

}  // namespace zqv::growth
