// The address parsers compared with mimetic's, with expected values by hand where mimetic's result
// is surprising.
#include "mime/addresses.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstddef>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/every_text.h"
#include "tests/support/long_text.h"
#include "tests/unit/mime/value_difference.h"

namespace zqv::test {
namespace {

struct MailboxRow {
  const char* name;
  const char* value;
  const char* text;
  const char* label;
  const char* local_part;
  const char* domain;
  const char* source_route;
};

void ExpectMailbox(const mime::Mailbox& mailbox, const MailboxRow& row) {
  EXPECT_EQ(mailbox.text, row.text) << row.name;
  EXPECT_EQ(mailbox.label, row.label) << row.name;
  EXPECT_EQ(mailbox.local_part, row.local_part) << row.name;
  EXPECT_EQ(mailbox.domain, row.domain) << row.name;
  EXPECT_EQ(mailbox.source_route, row.source_route) << row.name;
}

template <std::size_t kSize>
void ExpectMailboxes(const MailboxRow (&rows)[kSize]) {
  for (const MailboxRow& row : rows) {
    ExpectMailbox(*mime::MailboxValue(row.value), row);
    EXPECT_EQ(MailboxDifference(row.value), "") << row.name;
  }
}

TEST(Addresses, Mailboxes) {
  // clang-format off
  ExpectMailboxes({
      {"address alone",     "a@b",              "a@b",              "",           "a",       "b",   ""},
      {"in angles",         "<a@b>",            "a@b",              "",           "a",       "b",   ""},
      {"with a label",      "Ada L <a@b>",      "Ada L <a@b>",      "Ada L",      "a",       "b",   ""},
      {"without a blank",   "Ada<a@b>",         "Ada <a@b>",        "Ada",        "a",       "b",   ""},
      {"three blanks",      "Ada   <a@b>",      "Ada <a@b>",        "Ada",        "a",       "b",   ""},
      {"a tab",             "Ada\t<a@b>",       "Ada\t <a@b>",      "Ada\t",      "a",       "b",   ""},
      {"leading blanks",    "  Ada <a@b>",      "  Ada <a@b>",      "  Ada",      "a",       "b",   ""},
      {"quoted label",      "\"A, B\" <a@b>",   "\"A, B\" <a@b>",   "\"A, B\"",   "a",       "b",   ""},
      {"angle in quotes",   "\"A<B\" <a@b>",    "\"A<B\" <a@b>",    "\"A<B\"",    "a",       "b",   ""},
      {"angle in a label",  "A <b <c@d>",       "A <b <c@d>",       "A <b",       "c",       "d",   ""},
      {"two at signs",      "a@b@c",            "a@b@c",            "",           "a@b",     "c",   ""},
      {"two in angles",     "<a@b@c>",          "a@b@c",            "",           "a@b",     "c",   ""},
      {"quoted local part", "\"a b@c\"@d",      "\"a b@c\"@d",      "",           "\"a b@c\"", "d", ""},
      {"8-bit bytes",       "\xE9 <\xE9@\xE9>", "\xE9 <\xE9@\xE9>", "\xE9",       "\xE9",    "\xE9", ""},
  });
  // clang-format on
}

TEST(Addresses, WithoutAnAtSignAllIsEmpty) {
  // clang-format off
  ExpectMailboxes({
      {"nothing",           "",        "@", "", "", "", ""},
      {"a word",            "ada",     "@", "", "", "", ""},
      {"blanks",            "  ",      "@", "", "", "", ""},
      {"only in a comment", "(a@b)",   "@", "", "", "", ""},
      {"only in quotes",    "\"a@b\"", "@", "", "", "", ""},
      {"only an angle",     ">",       "@", "", "", "", ""},
  });
  // clang-format on
}

TEST(Addresses, IncompleteMailboxes) {
  // clang-format off
  ExpectMailboxes({
      {"no domain",         "a@",        "a@",        "",  "a",     "",    ""},
      {"no domain, angles", "X <a@>",    "X <a@>",    "X", "a",     "",    ""},
      {"next at sign",      "X <a@b@>",  "X <a@b>",   "X", "a",     "b",   ""},
      {"no local part",     "@b",        "@b",        "",  "",      "b",   ""},
      {"empty angles",      "X <>",      "X <@>",     "X", "",      "",    ""},
      {"word in angles",    "X <a>",     "X <a@>",    "X", "a",     "",    ""},
      {"no left angle",     "a@b>",      "@b",        "",  "",      "b",   ""},
      {"colon, no angle",   "x:a@b>",    "a@b",       "",  "a",     "b",   ""},
  });
  // clang-format on
}

// A mailbox whose text does not end in '>' has no label. Its angle brackets become text of the
// local part and the domain.
TEST(Addresses, ABlankAfterTheAngleGivesNoLabel) {
  ExpectMailboxes({{"blank", "X <a@b> ", "X <a@b> ", "", "X<a", "b>", ""},
                   {"comment", "X <a@b> (c)", "X <a@b> (c)", "", "X<a", "b>", ""}});
}

TEST(Addresses, ALabelOfOneSpaceStays) {
  ExpectMailboxes({{"one", " <a@b>", "  <a@b>", " ", "a", "b", ""},
                   {"two", "  <a@b>", "  <a@b>", " ", "a", "b", ""},
                   {"three", "   <a@b>", "  <a@b>", " ", "a", "b", ""}});
}

TEST(Addresses, ASourceRouteReplacesTheLabel) {
  // clang-format off
  ExpectMailboxes({
      {"no label",    "<@r:u@v>",      "u@v",     "",  "u", "v", "@r"},
      {"label",       "X <@r:u@v>",    "@r:u@v>", "X", "u", "v", "@r"},
      {"two hosts",   "X<@r,@s:u@v>",  "@r,@s:u@v>", "X", "u", "v", "@r,@s"},
      {"blanks",      "X <@r (c) : u @ v >", "@r (c) : u @ v >", "X", "u", "v", "@r"},
      {"two colons",  "X <@r:@s:u@v>", "@r:@s@v>", "X", "@s", "v", "@r"},
  });
  // clang-format on
}

TEST(Addresses, PartsWithoutCommentsAndBlanks) {
  // clang-format off
  ExpectMailboxes({
      {"blanks",           " a @ b ",          " a @ b ",          "", "a",        "b",      ""},
      {"in angles",        "X < a @ b >",      "X < a @ b >",      "X", "a",       "b",      ""},
      {"comments",         "a (x) @ b (y)",    "a (x) @ b (y)",    "", "a",        "b",      ""},
      {"nested",           "a (x (y) z)@b",    "a (x (y) z)@b",    "", "a",        "b",      ""},
      {"in the midst",     "a(x)b@c(y)d",      "a(x)b@c(y)d",      "", "ab",       "cd",     ""},
      {"quotes keep them", "\"a (x) b\" @c",   "\"a (x) b\" @c",   "", "\"a (x) b\"", "c",   ""},
      {"quote in comment", "a(\")\")@b",       "a(\")\")@b",       "", "a",        "b",      ""},
      {"only opened",      "a@b (x",           "a@b (x",           "", "a",        "b (x",   ""},
      {"left of an angle", "a b> c@d",         "a b> c@d",         "", "a b>c",    "d",      ""},
      {"a tab stays",      "\ta@b\t",          "\ta@b\t",          "", "\ta",      "b\t",    ""},
  });
  // clang-format on
}

struct Shown {
  std::string text;
  std::vector<std::string> entries;
};

template <class List>
Shown Show(const List& list);

template <>
Shown Show(const mime::MailboxList& list) {
  Shown shown{std::string(list.text()), {}};
  for (const mime::Mailbox& mailbox : list) shown.entries.emplace_back(mailbox.text);
  return shown;
}

template <>
Shown Show(const mime::AddressList& list) {
  Shown shown{std::string(list.text()), {}};
  for (const mime::Address& address : list) shown.entries.emplace_back(address.text());
  return shown;
}

struct ListRow {
  const char* name;
  const char* value;
  const char* text;
  std::vector<std::string> entries;
};

// Checks both kinds of list, MailboxList and AddressList, with the same values.
void ExpectLists(const std::vector<ListRow>& rows) {
  for (const ListRow& row : rows) {
    for (const Shown& shown :
         {Show(mime::MailboxList(row.value)), Show(mime::AddressList(row.value))}) {
      EXPECT_EQ(shown.text, row.text) << row.name;
      EXPECT_EQ(shown.entries, row.entries) << row.name;
    }
    EXPECT_EQ(mime::MailboxList::CountMailboxes(row.value), row.entries.size()) << row.name;
    EXPECT_EQ(mime::AddressList::CountMailboxes(row.value), row.entries.size()) << row.name;
    EXPECT_EQ(MailboxListDifference(row.value), "") << row.name;
    EXPECT_EQ(AddressListDifference(row.value), "") << row.name;
  }
}

TEST(Addresses, Lists) {
  ExpectLists({
      {"one", "a@b", "a@b", {"a@b"}},
      {"two", "a@b,c@d", "a@b, c@d", {"a@b", "c@d"}},
      {"comma in quotes", "\"A, B\" <a@b>,c@d", "\"A, B\" <a@b>, c@d", {"\"A, B\" <a@b>", "c@d"}},
      // A blank after a comma belongs to the next entry.
      {"blank", "A <a@b>, C <c@d>", "A <a@b>,  C <c@d>", {"A <a@b>", " C <c@d>"}},
  });
}

TEST(Addresses, EmptyEntries) {
  ExpectLists({
      {"nothing", "", "", {}},
      {"spaces", "   ", "", {}},
      {"a tab", "\t", "@", {"@"}},
      {"a comma", ",", "@", {"@"}},
      {"two commas", ",,", "@, @", {"@", "@"}},
      {"in the midst", "a@b,,c@d", "a@b, @, c@d", {"a@b", "@", "c@d"}},
      {"at the end", "a@b,", "a@b", {"a@b"}},
      {"spaces at the end", "a@b,  ", "a@b", {"a@b"}},
      {"a tab at the end", "a@b,\t", "a@b, @", {"a@b", "@"}},
  });
}

TEST(Addresses, ACommaInACommentSeparates) {
  ExpectLists({{"comment", "a@b (x, y)", "a@b (x, @", {"a@b (x", "@"}}});
}

TEST(Addresses, ABackslashQuotesNothing) {
  ExpectLists(
      {{"one quote", "\"A\\\" <a@b>,c@d", "\"A\\\" <a@b>, c@d", {"\"A\\\" <a@b>", "c@d"}},
       {"three quotes", "\"A\\\"\" <a@b>,c@d", "\"A\\\"\" <a@b>,c@d", {"\"A\\\"\" <a@b>,c@d"}}});
}

struct GroupRow {
  const char* name;
  const char* value;
  const char* text;
  const char* group_name;
  std::vector<std::string> mailboxes;
};

void ExpectGroups(const std::vector<GroupRow>& rows) {
  for (const GroupRow& row : rows) {
    const mime::GroupValue group(row.value);
    EXPECT_EQ(group->text, row.text) << row.name;
    EXPECT_EQ(group->name, row.group_name) << row.name;
    std::vector<std::string> mailboxes;
    for (const mime::Mailbox& mailbox : group->mailboxes) mailboxes.emplace_back(mailbox.text);
    EXPECT_EQ(mailboxes, row.mailboxes) << row.name;
    EXPECT_EQ(mime::GroupValue::CountMailboxes(row.value), row.mailboxes.size()) << row.name;
    EXPECT_EQ(group->mailboxes.empty(), row.mailboxes.empty()) << row.name;
    EXPECT_EQ(GroupDifference(row.value), "") << row.name;
  }
}

TEST(Addresses, Groups) {
  ExpectGroups({
      {"two", "G: a@b, c@d;", "Ga@b,c@d;", "G", {"a@b", "c@d"}},
      {"quoted name", " \"G: H\" : a@b;", "\"G: H\"a@b;", "\"G: H\"", {"a@b"}},
      {"tabs", "\tG\t:\ta@b\t;", "Ga@b;", "G", {"a@b"}},
      {"text behind", "G:a@b;c@d", "Ga@b;", "G", {"a@b"}},
      {"comma in quotes", "G:\"A, B\" <a@b>;", "G\"A, B\" <a@b>;", "G", {"\"A, B\" <a@b>"}},
      {"comma in a comment", "G:a@b (x, y);", "Ga@b (x, y);", "G", {"a@b (x, y)"}},
      {"comma in angles", "G:X <a,b@c>;", "GX <a,b@c>;", "G", {"X <a,b@c>"}},
      {"colon in a member", "G:X <@r:a@b>;", "G@r:a@b>;", "G", {"@r:a@b>"}},
      // An extra ')' makes the count of open parentheses negative. After it neither ',' nor ';'
      // ends a member.
      {"closed too often", "G:a@b),c@d;e", "Ga@b),c@d;;", "G", {"a@b),c@d;"}},
  });
}

// A colon inside a comment ends the name. The parenthesis that then stands alone in the member
// hides the semicolon, so the last character is lost as in a group without one.
TEST(Addresses, AGroupNameKeepsItsComments) {
  ExpectGroups({
      {"behind", "Friends (of mine): a@b;", "Friends (of mine)a@b;", "Friends (of mine)", {"a@b"}},
      {"before", "(my) Friends: a@b;", "(my) Friendsa@b;", "(my) Friends", {"a@b"}},
      {"inside", "My (old) friends:a@b;", "My (old) friendsa@b;", "My (old) friends", {"a@b"}},
      {"alone", " (mine) :a@b;", "(mine)a@b;", "(mine)", {"a@b"}},
      {"colon", "Friends (of: mine):a@b;", "Friends (of mine):a@b;", "Friends (of", {" mine):a@b"}},
  });
}

TEST(Addresses, EmptyGroups) {
  ExpectGroups({
      {"nothing", "", ";", "", {}},
      {"no colon", "G", ";", "", {}},
      {"only a name",
       "undisclosed-recipients:",
       "undisclosed-recipients;",
       "undisclosed-recipients",
       {}},
      {"with a semicolon",
       "undisclosed-recipients:;",
       "undisclosed-recipients@;",
       "undisclosed-recipients",
       {"@"}},
      {"no name", ":;", "@;", "", {"@"}},
      {"blank", "G: ;", "G@;", "G", {"@"}},
      {"comma", "G:,", "G@;", "G", {"@"}},
  });
}

TEST(Addresses, AGroupWithoutSemicolonLosesItsLastCharacter) {
  ExpectGroups({{"one", "G: a@b", "G a@;", "G", {" a@"}},
                {"two", "G:a@b,c@de", "Ga@b,c@d;", "G", {"a@b", "c@d"}},
                {"a blank", "G: ", "G@;", "G", {"@"}}});
}

TEST(Addresses, TextOfAGroup) {
  const mime::AddressList list("a@b, Team: c@d, e@f;,g@h");
  EXPECT_EQ(list.text(), "a@b, Teamc@d,e@f;, g@h");
  ASSERT_EQ(list.size(), 3U);
  ASSERT_TRUE(list[1].is_group());
  EXPECT_EQ(list[1].text(), "Teamc@d,e@f;");
  EXPECT_EQ(list[1].group->name, "Team");
  ASSERT_EQ(list[1].group->mailboxes.size(), 2U);
  EXPECT_EQ(list[1].group->mailboxes[1].local_part, "e");
  EXPECT_EQ(list[2].mailbox->domain, "h");
  EXPECT_EQ(mime::AddressList::CountMailboxes("a@b, Team: c@d, e@f;,g@h"), 4U);
}

TEST(Addresses, AColonBeforeAnyAngleMakesAGroup) {
  EXPECT_TRUE(mime::AddressValue("Re: x <a@b>")->is_group());
  EXPECT_TRUE(mime::AddressValue("G:")->is_group());
  EXPECT_FALSE(mime::AddressValue("\"Re: x\" <a@b>")->is_group());
  EXPECT_FALSE(mime::AddressValue("x <@r:a@b>")->is_group());
  EXPECT_FALSE(mime::AddressValue("")->is_group());
  EXPECT_EQ(mime::AddressValue("")->text(), "@");
  EXPECT_EQ(mime::AddressValue::CountMailboxes("G:"), 0U);
  EXPECT_EQ(mime::AddressValue::CountMailboxes("G:a,b;"), 2U);
  EXPECT_EQ(mime::AddressValue::CountMailboxes("a,b"), 1U);
}

TEST(Addresses, AColonMakesLaterAddressesMembersOfItsGroup) {
  const mime::AddressList list("X <@r:a@b>, c@d; e, f@g");
  ASSERT_EQ(list.size(), 2U);
  EXPECT_FALSE(list[0].is_group());
  EXPECT_EQ(list[0].text(), "X <@r:a@b>, c@d; e");
  EXPECT_EQ(list[1].text(), " f@g");
}

// The text of such a mailbox is longer than the mailbox by a space and an '@'.
TEST(Addresses, TextsLongerThanTheirValue) {
  constexpr int kMailboxes = 20'000;
  std::string value = "a<b>";
  std::string text = "a <b@>";
  for (int i = 1; i < kMailboxes; ++i) {
    value += ",a<b>";
    text += ", a <b@>";
  }
  EXPECT_TRUE(mime::MailboxList(value).text() == text);
  EXPECT_TRUE(mime::AddressList(value).text() == text);
}

TEST(Addresses, TextsAreViewsOfTheValue) {
  const std::string value = "Ada <a@b>, c@d";
  const mime::MailboxList list(value);
  EXPECT_EQ(list[0].label.data(), value.data());
  EXPECT_EQ(list[0].local_part.data(), value.data() + 5);
  EXPECT_EQ(list[1].domain.data(), value.data() + 13);
}

TEST(Addresses, MovingKeepsTheViews) {
  mime::AddressList list("a (x y) b@c, G:d@e;");
  const std::string_view local_part = list[0].mailbox->local_part;
  const mime::AddressList moved = std::move(list);
  EXPECT_EQ(moved[0].mailbox->local_part.data(), local_part.data());
  EXPECT_EQ(local_part, "ab");
  EXPECT_EQ(moved[1].group->mailboxes[0].text, "d@e");
}

using Difference = std::string (*)(const std::string& value);

// The characters that the parsers treat specially, and one letter for all others.
constexpr std::string_view kMailboxCharacters = "<>@:\"() a";
constexpr std::string_view kListCharacters = "<>@:;,\"() a";
constexpr std::string_view kAllCharacters = "<>@:;,\"()\\ \t\r\na";

TEST(Addresses, ReadAsMimeticDoesEveryShortText) {
  constexpr std::size_t kMost = kIsSlowBuild ? 4 : 6;
  EXPECT_EQ(FirstDifferenceOfAll(MailboxDifference, kMailboxCharacters, kMost), "");
  for (const Difference difference :
       {GroupDifference, AddressDifference, MailboxListDifference, AddressListDifference}) {
    EXPECT_EQ(FirstDifferenceOfAll(difference, kListCharacters, kMost), "");
  }
  EXPECT_EQ(FirstDifferenceOfAll(AddressListDifference, kAllCharacters, kMost - 1), "");
}

std::string AnyAddressDifference(const std::string& value) {
  for (const Difference difference : {MailboxDifference, GroupDifference, AddressDifference,
                                      MailboxListDifference, AddressListDifference}) {
    std::string first = difference(value);
    if (!first.empty()) return first;
  }
  return {};
}

// Two special characters anywhere in texts of all lengths around the block size: texts are scanned
// in blocks.
TEST(Addresses, ReadAsMimeticDoesWhereverCharactersStand) {
  const std::vector<std::size_t> sizes =
      kIsSlowBuild ? std::vector<std::size_t>{17, 66}
                   : std::vector<std::size_t>{15, 16, 17, 31, 32, 33, 63, 64, 65, 80};
  std::size_t compared = 0;
  for (const std::size_t size : sizes) {
    for (std::size_t left = 0; left < size; ++left) {
      for (std::size_t right = left + 1; right < size; right += kIsSlowBuild ? 5 : 1) {
        for (const char* pair : {"<>", "@@", "@>", ",@", ":;", "\"\"", "()", " @", "@ ", ":<"}) {
          std::string text(size, 'a');
          text[left] = pair[0];
          text[right] = pair[1];
          for (const std::string& value : {text, text + "@b>", "A <@" + text + ">,b@c"}) {
            ASSERT_EQ(AddressListDifference(value), "") << ::testing::PrintToString(value);
            ++compared;
          }
        }
      }
    }
  }
  EXPECT_GT(compared, 1'000U);
}

constexpr std::string_view kPieces[] = {"<",
                                        ">",
                                        "@",
                                        ":",
                                        ";",
                                        ",",
                                        "\"",
                                        "(",
                                        ")",
                                        "\\",
                                        " ",
                                        "\t",
                                        "\r",
                                        "\n",
                                        "a",
                                        "\xE9",
                                        std::string_view("\0", 1),
                                        "  ",
                                        ", ",
                                        "a@b",
                                        "<a@b>",
                                        " <c.d@example.org>",
                                        "Name Surname",
                                        "\"Surname, Name\"",
                                        "(comment)",
                                        "(a (nested) one)",
                                        "<@route.example:a@b>",
                                        "Team: ",
                                        ";, ",
                                        "undisclosed-recipients:;",
                                        "=?utf-8?Q?x?=",
                                        "a-rather-long-local-part@host.example.org",
                                        "\\\"",
                                        "(\")\")",
                                        "< a @ b >"};

TEST(Addresses, ReadAsMimeticDoesRandomTexts) {
  std::mt19937 random(20'261'122);
  std::size_t groups = 0;
  for (int left = kIsSlowBuild ? 5'000 : 60'000; left > 0; --left) {
    const std::string text = RandomText(random, kPieces, 24);
    ASSERT_EQ(AnyAddressDifference(text), "") << ::testing::PrintToString(text);
    if (mime::AddressValue(text)->is_group()) ++groups;
  }
  // Both kinds of address, groups and mailboxes, must occur often.
  EXPECT_GT(groups, kIsSlowBuild ? 1'000U : 12'000U);
}

TEST(Addresses, ReadAsMimeticDoesGeneratedTexts) {
  const std::vector<std::string_view> all(std::begin(kPieces), std::end(kPieces));
  EXPECT_TRUE(rc::check([&all] {
    const auto pieces = *rc::gen::container<std::vector<std::string_view>>(rc::gen::elementOf(all));
    std::string text;
    for (const std::string_view piece : pieces) text += piece;
    RC_ASSERT(AnyAddressDifference(text) == "");
  }));
}

// With quadratic time this test would take minutes.
TEST(Addresses, HostileTextsTakeLinearTime) {
  constexpr std::size_t kBytes = kIsSlowBuild ? 100'000 : 300'000;
  std::size_t mailboxes = 0;
  for (const char* piece :
       {",",   ";",  ":",   "\"",  "<",    ">",     "@",     "(",  ")",  " ",   "( ", ") ",
        "\" ", "a@", ":a@", "<a:", "G:;,", "G:(;,", "\",\"", "()", "a,", ") (", "a "}) {
    for (const char* end : {"", ">", "@b", "@b>", ";"}) {
      const std::string text = Repeat(piece, kBytes) + end;
      for (const std::string& value : {text, "a@" + text, "X <" + text, "G:" + text}) {
        if (mime::AddressList::CountMailboxes(value) < 1'000) {
          mailboxes += mime::AddressList(value).size();
        }
        mailboxes += mime::MailboxValue(value)->text.size();
        mailboxes += mime::GroupValue::CountMailboxes(value);
      }
    }
  }
  EXPECT_GT(mailboxes, kBytes);
}

}  // namespace
}  // namespace zqv::test
