#include "mime/limits.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

#include "mime/addresses.h"
#include "mime/message.h"
#include "tests/support/thread_stack.h"
#include "tests/unit/mime/nested_message.h"

namespace zqv::test {
namespace {

std::string Repeated(const std::string& start, const std::string& repeated, std::size_t times,
                     const std::string& end) {
  std::string message = start;
  for (std::size_t i = 0; i < times; ++i) message += repeated;
  return message + end;
}

// The shortest message with that many parts, the message itself included.
std::string ManyParts(std::size_t parts) {
  return Repeated("Content-Type: multipart/mixed\n\n", "--\n\n", parts - 1, "");
}

// The text of the exception with which a message is refused; empty when the message is accepted.
std::string Refusal(const std::string& text) {
  try {
    const mime::Message message(text);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

TEST(ParserLimits, AcceptExactlyTheLimitOfParts) {
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
  // Each comma ends an address, which may be empty, and each semicolon begins a parameter.
  const std::string half = Repeated("\ncC: ", ",", mime::kMostEntries / 2, "\n");
  const std::size_t rest = mime::kMostEntries - mime::kMostEntries / 2;
  struct Row {
    const char* start;
    const char* separator;
    std::size_t accepted;  // number of separators that are accepted
  };
  const Row rows[] = {{"To: ", ",", rest},
                      {"from: ", ",", rest},
                      {"BCC: ", ",", rest},
                      {"Reply-To: ", ",", rest},
                      {"Content-Type: a/b", ";x", rest},
                      {"Content-Disposition: a", ";x", rest}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.start);
    EXPECT_EQ(Refusal(Repeated(row.start, row.separator, row.accepted, half + "\n")), "");
    EXPECT_EQ(Refusal(Repeated(row.start, row.separator, row.accepted + 1, half + "\n")),
              "the message has too many addresses or parameters");
  }
}

TEST(ParserLimits, CountASenderAsOne) {
  const std::size_t senders = 10;
  const std::string list = Repeated("\nTo: ", ",", mime::kMostEntries - senders,
                                    "\n");  // leaves ten entries below the limit
  const std::string sender = "Sender: a,b,c;d\n";
  EXPECT_EQ(Refusal(Repeated("", sender, senders, "A: b" + list + "\n")), "");
  EXPECT_EQ(Refusal(Repeated("", sender, senders + 1, "A: b" + list + "\n")),
            "the message has too many addresses or parameters");
}

TEST(ParserLimits, DoNotCountTheSeparatorsOfOtherFields) {
  EXPECT_EQ(Refusal(Repeated("Subject: ", ",;", mime::kMostEntries, "\n\n")), "");
}

TEST(ParserLimits, DoNotCountCommasInAQuotedName) {
  EXPECT_EQ(Refusal(Repeated("To: \"", ",", 100'001, "\" <a@b>\n\n")), "");
}

// The text of the exception that AdmitText throws; empty when it accepts the text.
std::string RefusalOfText(mime::CountEntries count, const std::string& text) {
  try {
    mime::AdmitText(count, text);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

TEST(ParserLimits, ApplyToTextsOutsideMessages) {
  const std::string most(mime::kMostEntries, ',');
  for (const mime::CountEntries count :
       {&mime::MailboxList::CountMailboxes, &mime::AddressList::CountMailboxes}) {
    EXPECT_EQ(RefusalOfText(count, most), "");
    EXPECT_EQ(RefusalOfText(count, most + ","), "the text has too many addresses");
  }
  EXPECT_EQ(RefusalOfText(&mime::GroupValue::CountMailboxes, "g:" + most), "");
  EXPECT_EQ(RefusalOfText(&mime::GroupValue::CountMailboxes, "g:" + most + ","),
            "the text has too many addresses");
  EXPECT_EQ(RefusalOfText(&mime::MailboxValue::CountMailboxes, most + ","), "");
  EXPECT_EQ(RefusalOfText(nullptr, most + ","), "");
}

TEST(ParserLimits, CountAgainForEachMessage) {
  for (int i = 0; i < 2; ++i) EXPECT_EQ(Refusal(ManyParts(mime::kMostParts)), "");
}

// Parsing needs no call stack for nested parts, so the limit of parts is also the limit of nesting.
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
