// Each allocation of the library fails in turn. The library must not crash and must not leak, and
// the application must get nil or a host exception.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>

#include "tests/interface/child.h"
#include "tests/interface/failing_new.h"
#include "tests/interface/log_capture.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

class Allocation : public InterfaceTest {};

constexpr const char* kNoMemory = "OutOfMemoryException, 0: Failed to allocate memory";
// Raised when there is no memory for the complete text of an out-of-bounds exception.
constexpr const char* kOutOfBounds = "OutOfBoundsException, 0: Out of Bounds";

// Calls as an application makes them. Returns the texts of the exceptions that were raised.
using Work = std::function<std::string()>;

std::uint64_t AllocationsOf(const Work& work) {
  const FailingNew counting;
  EXPECT_EQ(work(), "");
  return FailingNew::Count();
}

// Lets `calls` allocations fail, from number `n` on, and checks that nothing is leaked. Returns
// what was raised.
std::string FailAt(std::uint64_t n, std::uint64_t calls, const Work& work) {
  const LiveBlocks before = FailingNew::Live();
  const std::int64_t things_before = Host::Get("the test").ledger().Live().Total();
  std::string raised;
  {
    const FailingNew failing(n, calls);
    raised = work();
  }
  const LiveBlocks after = FailingNew::Live();
  EXPECT_TRUE(raised.empty() || raised.find(kNoMemory) == 0 || raised.find(kOutOfBounds) == 0)
      << n << ": " << raised;
  EXPECT_EQ(after.single, before.single) << "allocation " << n << " leaks";
  EXPECT_EQ(after.arrays, before.arrays) << "allocation " << n << " leaks an array";
  EXPECT_EQ(Host::Get("the test").ledger().Live().Total(), things_before) << n;
  return raised;
}

// Prepares a test in a running session and returns the work of which allocations are to fail.
using Preparation = std::function<Work()>;

// Lets each of the allocations `first` to `first + count - 1` fail in turn. Returns the number of
// allocations of the work.
std::uint64_t FailSome(const Preparation& prepare, std::uint64_t first, std::uint64_t count) {
  Session session({}, Exceptions::kMayBeLost);
  const Work work = prepare();
  EXPECT_EQ(work(), "") << "this run fills the library's caches";
  const std::uint64_t last = AllocationsOf(work);
  const auto step = static_cast<std::uint64_t>(Repetitions(1, 7));
  for (std::uint64_t n = first; n < first + count && n <= last + 1; n += step) {
    FailAt(n, 1, work);
    const std::string raised = FailAt(n, FailingNew::kNever, work);
    EXPECT_EQ(raised.empty(), n > last) << n << " of " << last << ": " << raised;
  }
  return last;
}

// Runs some hundred failures in each child process, so that the name of a child that crashes shows
// approximately which allocation failed.
void FailEverywhere(const std::string& name, const Preparation& prepare) {
  constexpr std::uint64_t kChunk = 300;
  LoadLibraryFile();
  const SharedWithChild<std::uint64_t> last;
  std::uint64_t first = 1;
  do {
    *last = 0;
    InChild(name + ", from allocation " + std::to_string(first),
            [&] { *last = FailSome(prepare, first, kChunk); });
    first += kChunk;
  } while (first <= *last);
  std::printf("%s: %llu allocations\n", name.c_str(), static_cast<unsigned long long>(*last));
}

std::string ConstructAndRelease(Way way, const std::string& bytes) {
  return Construct(way, bytes).raised;
}

// Without this the other tests would let no allocation fail.
TEST_F(Allocation, TheLibraryAllocatesThroughThisProgram) {
  Start();
  EXPECT_GT(AllocationsOf([] { return ConstructAndRelease(Way::kString, PlainMessage()); }), 5U);
}

TEST_F(Allocation, ConstructionOfAPlainMessage) {
  FailEverywhere("plain",
                 [] { return [] { return ConstructAndRelease(Way::kString, PlainMessage()); }; });
}

TEST_F(Allocation, ConstructionOfANestedMessageWithAttachments) {
  FailEverywhere("rich",
                 [] { return [] { return ConstructAndRelease(Way::kBlock, RichMessage()); }; });
}

TEST_F(Allocation, ConstructionFromAFile) {
  FailEverywhere("file",
                 [] { return [] { return ConstructAndRelease(Way::kFile, NestedMixture(6)); }; });
  FailEverywhere("rich file",
                 [] { return [] { return ConstructAndRelease(Way::kFile, RichMessage()); }; });
}

TEST_F(Allocation, ConstructionFromAString) {
  FailEverywhere("rich string",
                 [] { return [] { return ConstructAndRelease(Way::kString, RichMessage()); }; });
}

// The conversion of HTML, and of text whose host string is converted.
TEST_F(Allocation, ConstructionOfTextsThatAreConverted) {
  FailEverywhere("html", [] {
    return [] {
      return ConstructAndRelease(
                 Way::kString,
                 "Subject: =?utf-16?B?/v8AQw==?=\n"
                 "Content-Type: text/html; charset=utf-32\n\n<p>Caf&eacute;</p>\n") +
             ConstructAndRelease(Way::kString,
                                 "Content-Type: text/html; charset=windows-1252\n\n"
                                 "<ul><li>Caf\xE9 &#x1F600;</ul>\n");
    };
  });
}

// The log is also written while an exception is handled, where nothing may throw.
TEST_F(Allocation, ConstructionWhileTheLogIsOn) {
  FailEverywhere("logged", []() -> Work {
    SetShared("MimeEmailZQV", "Debugging", true);
    return [] {
      const LogCapture aside;
      return ConstructAndRelease(Way::kString, PlainMessage());
    };
  });
}

// Reads properties, whole lists, elements inside and outside of the bounds, fields by name, and the
// source without the files.
TEST_F(Allocation, ReadingEverythingOfAMessage) {
  FailEverywhere("reading", []() -> Work {
    const Object message = Parse(RichMessage());
    return [message] { return ReadEverything(message); };
  });
}

TEST_F(Allocation, SourceWithoutAttachments) {
  struct Row {
    const char* name;
    Way way;
    std::string bytes;
  };
  for (const Row& row :
       {Row{"string", Way::kString, RichMessage()}, Row{"block", Way::kBlock, RichMessage()},
        Row{"file", Way::kFile, NestedMixture(6)},
        Row{"nested", Way::kString, NestedMultipartsWithFiles(6)}}) {
    FailEverywhere(std::string("source of a ") + row.name, [&row]() -> Work {
      const Object message = Parse(row.bytes, row.way);
      return [message] { return RaisedBy([&] { Call(message, "SourceWithoutAttachments"); }); };
    });
  }
}

TEST_F(Allocation, ClassesMadeFromText) {
  FailEverywhere("text", [] {
    return [] {
      std::string raised;
      for (const char* name : {"MimeMailboxZQV", "MimeGroupZQV", "MimeAddressZQV",
                               "MimeMailboxListZQV", "MimeAddressListZQV", "MimeFieldZQV"}) {
        const char* text = "G: =?utf-8?Q?Caf=C3=A9?= <@r:a@example.org>, b@example.org;, c@d";
        raised += RaisedBy([&] { FromText(name, text); });
      }
      return raised;
    };
  });
}

TEST_F(Allocation, SharedMethods) {
  FailEverywhere("shared", [] {
    return [] {
      const String text = MakeString("<p>Caf\xC3\xA9 &euro;</p> =?utf-8?B?w4k=?= \xF0\x9F\x98\x80");
      return RaisedBy([&] { CallShared("MimeEmailZQV", "HTMLToPlainText", text); }) +
             RaisedBy([&] { CallShared("MimeEmailZQV", "DecodeInline", text); });
    };
  });
}

// Checks the exception for a single failure in the middle of the parse.
TEST_F(Allocation, RaisesOutOfMemoryException) {
  Start();
  const Work work = [] { return ConstructAndRelease(Way::kString, PlainMessage()); };
  work();
  std::string raised;
  {
    const FailingNew failing(AllocationsOf(work) / 2);
    raised = work();
  }
  EXPECT_EQ(raised, std::string(kNoMemory) + ": std::bad_alloc");
}

}  // namespace
}  // namespace zqv::interface_test
