// Several threads construct messages at the same time. Each thread gets exactly the exceptions that
// it caused, and each message equals the one constructed by a single thread.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "tests/interface/child.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"
#include "tests/support/in_threads.h"

namespace zqv::interface_test {
namespace {

constexpr int kThreads = 8;

// A multipart, because a message of one part looks its charset up twice and raises twice.
std::string UnknownCharset() {
  return "Subject: Unknown\nMIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n"
         "--b\nContent-Type: text/plain; charset=foo\n\nText\n--b--\n";
}

// Has objects of many classes, and known charsets only.
std::string KnownCharsets() {
  std::string text = RichMessage();
  const std::string_view unknown = "charset=foo";
  text.replace(text.find(unknown), unknown.size(), "charset=utf-8");
  return text;
}

// More parts than the limit.
std::string TooManyParts() {
  std::string text = "Content-Type: multipart/mixed; boundary=b\n\n";
  for (std::size_t i = 0; i < 10 * kMostEntities; ++i) text += "--b\n\n";
  return text + "--b--\n";
}

struct Row {
  const char* name;
  std::string bytes;
  std::string raised;  // by each constructor; empty when nothing is raised
  bool is_slow = false;
};

const std::vector<Row>& Rows() {
  static const std::vector<Row> kRows = {
      {"plain", PlainMessage(), {}},
      {"empty", {}, "UnsupportedOperationException, 0: Can't parse empty text."},
      {"many kinds of members", KnownCharsets(), {}},
      {"high first byte", "\x80Subject: x\n\nText\n",
       "UnsupportedOperationException, 0: Email must start with an header text. BOM character?"},
      {"nested", NestedMixture(20), {}},
      {"unknown charset", UnknownCharset(),
       "UnsupportedFormatException, 0: Unhandled charset: foo"},
      {"too many parts", TooManyParts(),
       "RuntimeException, 0: C++ Exception: the message has too many parts", true},
  };
  return kRows;
}

// The result of a construction.
struct Outcome {
  std::string raised;
  std::string reading;  // all members of the message, even of a refused one

  friend bool operator==(const Outcome& a, const Outcome& b) {
    return a.raised == b.raised && a.reading == b.reading;
  }
};

Outcome OutcomeOf(const Constructed& constructed) {
  return {constructed.raised, MirrorWithoutDates(constructed.message).dump()};
}

Outcome OutcomeOf(Way way, const std::string& bytes) { return OutcomeOf(Construct(way, bytes)); }

// The result for a file that does not exist.
Outcome OutcomeOfMissingFile() {
  return OutcomeOf(ConstructOn(NewInstance("MimeEmailZQV"), "Constructor(File as FolderItem)",
                               MakeFolderItem("/nowhere/absent.eml")));
}

// The results of all rows with all constructors in one thread, and of a missing file as the last.
std::vector<Outcome> AllOutcomes() {
  std::vector<Outcome> outcomes;
  for (const Row& row : Rows()) {
    for (const Way way : kAllWays) {
      outcomes.push_back(OutcomeOf(way, row.bytes));
      EXPECT_EQ(outcomes.back().raised, row.raised) << row.name << ", " << NameOf(way);
    }
  }
  outcomes.push_back(OutcomeOfMissingFile());
  EXPECT_EQ(outcomes.back().raised, "IOException, 0: Failed to open file for reading.");
  return outcomes;
}

// Counts of one thread.
struct Found {
  std::size_t raised = 0;
  std::size_t different = 0;  // outcomes that differ from those in one thread
};

// Constructs all rows once, the slow ones only if `with_slow`, and counts what differs from
// `expected`.
void UseEachRow(const std::vector<Outcome>& expected, bool with_slow, Found* found) {
  const auto note = [&](const Outcome& outcome, const Outcome& wanted) {
    if (!outcome.raised.empty()) ++found->raised;
    if (!(outcome == wanted)) ++found->different;
  };
  auto wanted = expected.begin();
  for (const Row& row : Rows()) {
    for (const Way way : kAllWays) {
      if (with_slow || !row.is_slow) note(OutcomeOf(way, row.bytes), *wanted);
      ++wanted;
    }
  }
  note(OutcomeOfMissingFile(), *wanted);
}

class Threads : public InterfaceTest {};

TEST_F(Threads, EachGetsItsOwnExceptionsAndMessages) {
  constexpr int kRounds = Repetitions(100, 10);
  Start();
  SetShared("MimeEmailZQV", "RaiseUnknownFormatExceptions", true);
  const std::vector<Outcome> expected = AllOutcomes();
  const std::uint64_t raised_before = host().CallCount("RuntimeRaiseException");
  std::array<Found, kThreads> found;
  test::InThreads(kThreads, [&](int number) {
    for (int round = 0; round < kRounds; ++round) {
      UseEachRow(expected, round == 0, &found[static_cast<std::size_t>(number)]);
    }
  });
  // In each round three rows and the missing file raise; in the first round a fourth row does too.
  constexpr std::size_t kRaised = kRounds * (3 * std::size(kAllWays) + 1) + std::size(kAllWays);
  for (const Found& one : found) {
    EXPECT_EQ(one.raised, kRaised);
    EXPECT_EQ(one.different, 0U);
  }
  EXPECT_EQ(host().CallCount("RuntimeRaiseException") - raised_before, kThreads * kRaised);
}

// Each new process begins with a message in all threads at once, so that they fill the library's
// caches at the same time.
TEST_F(Threads, FirstMessagesOfAProcessAtOnce) {
  LoadLibraryFile();
  for (int i = 0; i < Repetitions(40, 10); ++i) {
    InChild("process " + std::to_string(i), [] {
      Session session;
      std::array<Outcome, kThreads> first;
      test::InThreads(kThreads, [&](int number) {
        const auto index = static_cast<std::size_t>(number);
        first[index] = OutcomeOf(kAllWays[index % std::size(kAllWays)], RichMessage());
      });
      for (std::size_t index = 0; index < first.size(); ++index) {
        const Outcome later = OutcomeOf(kAllWays[index % std::size(kAllWays)], RichMessage());
        EXPECT_EQ(first[index].raised, "");
        EXPECT_EQ(first[index].reading, later.reading);
      }
    });
  }
}

}  // namespace
}  // namespace zqv::interface_test
