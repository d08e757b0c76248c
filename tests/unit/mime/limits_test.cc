#include "mime/limits.h"

#include <gtest/gtest.h>
#include <mimetic/contentdisposition.h>
#include <mimetic/contenttype.h>
#include <mimetic/rfc822/addresslist.h>
#include <mimetic/rfc822/mailboxlist.h>

#include <cstddef>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>

#include "mime/message.h"
#include "tests/support/thread_stack.h"
#include "tests/unit/mime/nested_message.h"

namespace zqv::test {
namespace {

using mime::ListKind;

TEST(CountEntries, OfEachKind) {
  EXPECT_EQ(mime::CountEntries(ListKind::kNone, "a,b;c"), 0U);
  EXPECT_EQ(mime::CountEntries(ListKind::kMailbox, "a,b;c"), 1U);
  EXPECT_EQ(mime::CountEntries(ListKind::kMailboxes, "a@b, c@d"), 2U);
  EXPECT_EQ(mime::CountEntries(ListKind::kMailboxes, ""), 1U);
  EXPECT_EQ(mime::CountEntries(ListKind::kAddresses, "a@b, c@d"), 2U);
  EXPECT_EQ(mime::CountEntries(ListKind::kParameters, "text/plain"), 0U);
  EXPECT_EQ(mime::CountEntries(ListKind::kParameters, "text/plain; a=b; c=d"), 2U);
  EXPECT_EQ(mime::CountEntries(ListKind::kParameters, "text/plain; a=\"b; c\""), 2U);
}

TEST(CountEntries, CommasInDoubleQuotesSeparateNothing) {
  EXPECT_EQ(mime::CountEntries(ListKind::kAddresses, "\"a, b\" <c@d>, e@f"), 2U);
  EXPECT_EQ(mime::CountEntries(ListKind::kMailboxes, "\"a,,,\" <c@d>"), 1U);
  EXPECT_EQ(mime::CountEntries(ListKind::kAddresses, "\"a, b"), 1U) << "quotes without an end";
  EXPECT_EQ(mime::CountEntries(ListKind::kAddresses, "\"" + std::string(100'001, ',') + "\" <a@b>"),
            1U);
}

// The limit must hold for what the library really makes of a value.
TEST(CountEntries, IsNoLessThanTheLibraryGives) {
  std::mt19937 random(1);
  for (int round = 0; round < 100'000; ++round) {
    std::string value;
    for (auto left = random() % 14; left > 0; --left) value += "a@,;:\"\\(). <>="[random() % 14];
    SCOPED_TRACE(value);
    ASSERT_GE(mime::CountEntries(ListKind::kAddresses, value), mimetic::AddressList(value).size());
    std::size_t mailboxes = 0;
    for (const mimetic::Address& address : mimetic::AddressList(value)) {
      mailboxes += address.isGroup() ? address.group().size() : 0;
    }
    ASSERT_GE(mime::CountEntries(ListKind::kAddresses, value), mailboxes);
    ASSERT_GE(mime::CountEntries(ListKind::kMailboxes, value), mimetic::MailboxList(value).size());
    ASSERT_GE(mime::CountEntries(ListKind::kParameters, value),
              mimetic::ContentType(value).paramList().size());
    ASSERT_GE(mime::CountEntries(ListKind::kParameters, value),
              mimetic::ContentDisposition(value).paramList().size());
  }
}

std::string Repeated(const std::string& start, const std::string& repeated, std::size_t times,
                     const std::string& end) {
  std::string message = start;
  for (std::size_t i = 0; i < times; ++i) message += repeated;
  return message + end;
}

// A message of so many parts, itself included: the shortest there are.
std::string ManyParts(std::size_t parts) {
  return Repeated("Content-Type: multipart/mixed\n\n", "--\n\n", parts - 1, "");
}

// Why a message is not parsed; empty when it is.
std::string Refusal(const std::string& text) {
  try {
    const mime::Message message(text);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

TEST(ParserLimits, AcceptExactlySoManyParts) {
  const std::string text = ManyParts(mime::kMostParts);
  const mime::Message message(text);
  EXPECT_EQ(message.parts().size(), mime::kMostParts);
  EXPECT_EQ(message.top().child_count, mime::kMostParts - 1);
  EXPECT_EQ(Refusal(ManyParts(mime::kMostParts + 1)), "the message has too many parts");
}

TEST(ParserLimits, CountTheFieldsOfAllParts) {
  const std::string outer = "Content-Type: message/rfc822\n\n";
  EXPECT_EQ(Refusal(Repeated(outer, "a:\n", mime::kMostFields - 1, "\n")), "");
  EXPECT_EQ(Refusal(Repeated(outer, "a:\n", mime::kMostFields, "\n")),
            "the message has too many fields");
}

TEST(ParserLimits, CountTheEntriesOfListFields) {
  // A list of addresses has one entry more than it has commas, parameters are as many as their
  // semicolons.
  const std::string half = Repeated("\ncC: ", ",", mime::kMostEntries / 2 - 1, "\n");
  const std::size_t rest = mime::kMostEntries - mime::kMostEntries / 2;
  struct Row {
    const char* start;
    const char* separator;
    std::size_t accepted;  // separators
  };
  const Row rows[] = {{"To: ", ",", rest - 1},          {"from: ", ",", rest - 1},
                      {"BCC: ", ",", rest - 1},         {"Reply-To: ", ",", rest - 1},
                      {"Content-Type: a/b", ";", rest}, {"Content-Disposition: a", ";", rest}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.start);
    EXPECT_EQ(Refusal(Repeated(row.start, row.separator, row.accepted, half + "\n")), "");
    EXPECT_EQ(Refusal(Repeated(row.start, row.separator, row.accepted + 1, half + "\n")),
              "the message has too many addresses or parameters");
  }
}

TEST(ParserLimits, CountASenderAsOne) {
  const std::size_t senders = 10;
  const std::string list =
      Repeated("\nTo: ", ",", mime::kMostEntries - senders - 1, "\n");  // all but ten
  const std::string sender = "Sender: a,b,c;d\n";
  EXPECT_EQ(Refusal(Repeated("", sender, senders, "A: b" + list + "\n")), "");
  EXPECT_EQ(Refusal(Repeated("", sender, senders + 1, "A: b" + list + "\n")),
            "the message has too many addresses or parameters");
}

TEST(ParserLimits, DoNotCountTheSeparatorsOfOtherFields) {
  EXPECT_EQ(Refusal(Repeated("Subject: ", ",;", mime::kMostEntries, "\n\n")), "");
}

TEST(ParserLimits, DoNotCountWhatIsInOneName) {
  EXPECT_EQ(Refusal(Repeated("To: \"", ",", 100'001, "\" <a@b>\n\n")), "");
}

// What AdmitText says of a text with so many commas, nothing when it lets the text pass.
std::string RefusalOfText(ListKind kind, const std::string& text) {
  try {
    mime::AdmitText(kind, text);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

TEST(ParserLimits, HoldForATextThatIsParsedByItself) {
  const std::string most(mime::kMostEntries - 1, ',');
  for (const ListKind kind : {ListKind::kMailboxes, ListKind::kAddresses}) {
    EXPECT_EQ(RefusalOfText(kind, most), "");
    EXPECT_EQ(RefusalOfText(kind, most + ","), "the text has too many addresses");
  }
  for (const ListKind kind : {ListKind::kNone, ListKind::kMailbox}) {
    EXPECT_EQ(RefusalOfText(kind, most + ","), "");
  }
}

TEST(ParserLimits, CountAgainForEachMessage) {
  for (int i = 0; i < 2; ++i) EXPECT_EQ(Refusal(ManyParts(mime::kMostParts)), "");
}

// Parsing needs no stack for what is nested: the limit of parts is the limit of nesting.
TEST(NestingLimit, IsThatOfPartsOnASmallStack) {
  for (const Nesting nesting : {Nesting::kMultipart, Nesting::kMessage, Nesting::kBoth}) {
    RunOnStack(std::size_t{128} * 1024, [nesting] {
      const std::string most = NestedMessage(nesting, mime::kMostParts - 1);
      EXPECT_EQ(mime::Message(most).parts().size(), mime::kMostParts);
      EXPECT_EQ(Refusal(NestedMessage(nesting, mime::kMostParts)),
                "the message has too many parts");
      EXPECT_EQ(Refusal(NestedMessage(nesting, 100'000)), "the message has too many parts");
    });
  }
}

}  // namespace
}  // namespace zqv::test
