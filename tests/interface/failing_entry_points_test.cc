// Hosts whose entry points return nothing or throw, once or from some call on. The failing step is
// skipped; nothing may crash, leak or throw a C++ exception out of the library.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/interface/broken_host.h"
#include "tests/interface/child.h"
#include "tests/interface/failing_new.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

constexpr std::uint64_t kForEver = std::numeric_limits<std::uint64_t>::max();

// Each test combines a host and a kind of fault.
struct FailingRow {
  const char* name;
  const HostKind& host;
  Fault::Kind kind;
};
void PrintTo(const FailingRow& row, std::ostream* out) { *out << row.name; }

constexpr FailingRow kRows[] = {
    {"NewHostGivesNothing", kHosts[0], Fault::Kind::kNothing},
    {"NewHostThrows", kHosts[0], Fault::Kind::kThrows},
    {"NewHostThrowsAnInt", kHosts[0], Fault::Kind::kThrowsInt},
    {"OldHostGivesNothing", kHosts[1], Fault::Kind::kNothing},
    {"OldHostThrows", kHosts[1], Fault::Kind::kThrows},
    {"OldHostThrowsAnInt", kHosts[1], Fault::Kind::kThrowsInt},
};

class FailingEntryPoints : public InterfaceTest,
                           public ::testing::WithParamInterface<FailingRow> {};

INSTANTIATE_TEST_SUITE_P(Hosts, FailingEntryPoints, ::testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

// A small message, because each of the calls that it takes fails in turn. It has an object of each
// class, an element of each kind of list, both dates, an encoded word, and text that the host
// converts.
std::string CompleteMessage() {
  return "Received: by b; Tue, 1 Jan 2019 10:00:00 +0000\n"
         "Date: Tue, 1 Jan 2019 11:00:00 +0200\n"
         "Sender: =?utf-8?Q?Caf=C3=A9?= <a@b>\n"
         "From: a@b\n"
         "To: G: c@d;\n"
         "Subject: =?utf-8?Q?Caf=C3=A9?=\n"
         "Content-Type: multipart/mixed; boundary=b\n\n"
         "--b\nContent-Type: text/html; charset=windows-1252\n\n<p>Caf\xE9</p>\n"
         "--b\nContent-Type: image/png\nContent-ID: <i@b>\n\n\x89PNG\n"
         "--b\nContent-Disposition: attachment; filename=\"=?utf-8?Q?=C3=A9?=\"\n\nCaf\xE9\n"
         "--b--\n";
}

// The calls that fail in turn: messages from each kind of source, everything that one of them
// offers, the shared methods and the classes made from text.
void UseOnce() {
  if (!IsRegistered()) return;
  ReadEverything(Construct(Way::kBlock, CompleteMessage()).message, 1);
  const Object small = Construct(Way::kString, "Subject: a\n\nb\n").message;
  static_cast<void>(RaisedBy([&] { Call(small, "SourceWithoutAttachments"); }));
  Construct(Way::kFile, "Subject: a\n\nb\n");
  static_cast<void>(RaisedBy([] { FromText("MimeFieldZQV", "Name: caf\xC3\xA9"); }));
  static_cast<void>(RaisedBy([] {
    standin::Construct("MimeAddressListZQV", "Constructor",
                       MakeString("Caf\x8E: <a@b>;", abi::kMacRoman));
  }));
  static_cast<void>(RaisedBy([] {
    CallShared("MimeEmailZQV", "HTMLToPlainText", MakeString("Caf\x8E", abi::kUnknownEncoding));
  }));
  static_cast<void>(RaisedBy([] {
    CallShared("MimeEmailZQV", "DecodeInline", MakeString("=?utf-8?Q?x?=", abi::kMacRoman));
  }));
}

// The number of calls of each entry point, in the order of kEntryPoints.
using CallCounts = std::array<std::uint64_t, std::size(kEntryPoints)>;

// Runs in a child process, so that the library of this process has cached nothing.
CallCounts CleanCallCounts(const HostKind& kind) {
  const SharedWithChild<CallCounts> counts;
  InChild("clean run", [&] {
    Session session(CapabilitiesOf(kind));
    UseOnce();
    for (std::size_t i = 0; i < counts->size(); ++i) {
      (*counts)[i] = session.host().CallCount(kEntryPoints[i]);
    }
  });
  return *counts;
}

// The calls, from 1 to `last`, at which a fault begins. For a small `last`, which is typical of
// calls made once at the start or in the self-test of the array layout, all calls are used;
// otherwise the first, the last, and some at growing distances between.
std::vector<std::uint64_t> Starts(std::uint64_t last) {
  constexpr std::uint64_t kMostOnce = 11;
  constexpr std::uint64_t kGrowth = kSanitized ? 50 : 7;
  std::vector<std::uint64_t> starts;
  for (std::uint64_t n = 1; n < last; n = last <= kMostOnce ? n + 1 : n * kGrowth) {
    starts.push_back(n);
  }
  if (last > 0) starts.push_back(last);
  return starts;
}

// Tests a library that has called nothing yet, so that calls whose result is cached fail too. Each
// child process has one entry point, one first failing call, and one duration: that call only, or
// all calls from it on.
TEST_P(FailingEntryPoints, EachCallInAFreshLibrary) {
  const FailingRow& row = GetParam();
  LoadLibraryFile();
  const CallCounts counts = CleanCallCounts(row.host);
  for (std::size_t i = 0; i < counts.size(); ++i) {
    const std::string name = kEntryPoints[i];
    for (const std::uint64_t start : Starts(counts[i])) {
      for (const std::uint64_t calls : {std::uint64_t{1}, kForEver}) {
        InChild(name + (calls == 1 ? " at call " : " from call ") + std::to_string(start), [&] {
          const auto session = StartBroken(row.host, {{name, Fault{row.kind, start, calls}}});
          UseOnce();
          // When objects cannot be released, the calls that release what they hold are not made.
          const Host& host = session->host();
          EXPECT_TRUE(host.CallCount(name) >= start || !host.CountsLocks());
        });
      }
    }
  }
}

// The number of live things. String data is not counted for a host that does not take it back.
std::int64_t LiveThings(const std::string& entry_point) {
  const standin::LiveCounts live = Host::Get("the test").ledger().Live();
  return live.Total() - (entry_point == "PluginDisposeStringData" ? live.string_data : 0);
}

// Uses everything once while `fault` holds. The fault counts calls from now on.
void UseOnceWith(const std::string& name, Fault fault) {
  Host& host = Host::Get("the test");
  const std::string what = "call " + std::to_string(fault.from_call);
  const std::uint64_t calls_before = host.CallCount(name);
  const std::int64_t things_before = LiveThings(name);
  const LiveBlocks blocks_before = FailingNew::Live();
  fault.from_call += calls_before;
  host.SetFault(name, fault);
  {
    const FailingNew counting;
    UseOnce();
  }
  host.SetFault(name, std::nullopt);
  host.DropStray();
  EXPECT_GE(host.CallCount(name), fault.from_call) << what << "  was never made";
  EXPECT_TRUE(!host.CountsLocks() || LiveThings(name) == things_before) << what << " leaks";
  const LiveBlocks blocks = FailingNew::Live();
  EXPECT_EQ(blocks.single, blocks_before.single) << what << " leaks memory";
  EXPECT_EQ(blocks.arrays, blocks_before.arrays) << what << " leaks arrays";
}

// Lets each of the calls `first` to `first + count - 1` of one use fail, once alone and once with
// all calls after it. Returns the number of calls of one use.
std::uint64_t FailSomeCalls(const FailingRow& row, const std::string& name, std::uint64_t first,
                            std::uint64_t count) {
  const auto session = StartBroken(row.host, {{name, Fault{row.kind, kForEver}}});
  UseOnce();
  const std::uint64_t calls_before = session->host().CallCount(name);
  UseOnce();
  const std::uint64_t last = session->host().CallCount(name) - calls_before;
  const std::string seen = MirrorWithoutDates(Parse(CompleteMessage())).dump();
  const std::uint64_t step = kSanitized ? 41 : 1;
  for (std::uint64_t n = first; n < first + count && n <= last; n += step) {
    for (const std::uint64_t calls : {std::uint64_t{1}, kForEver}) {
      UseOnceWith(name, Fault{row.kind, n, calls});
    }
  }
  EXPECT_EQ(MirrorWithoutDates(Parse(CompleteMessage())).dump(), seen)
      << "a failed call changed a later result";
  return last;
}

// Tests a library that is in use: every single call fails once. Each child process has some calls
// only, so that the name of a child that crashes shows approximately which call failed.
TEST_P(FailingEntryPoints, EveryCall) {
  constexpr std::uint64_t kChunk = kSanitized ? 410 : 200;
  const FailingRow& row = GetParam();
  LoadLibraryFile();
  std::uint64_t sum = 0;
  for (const std::string name : kEntryPoints) {
    const SharedWithChild<std::uint64_t> last;
    std::uint64_t first = 1;
    do {
      *last = 0;
      InChild(name + ", from call " + std::to_string(first),
              [&] { *last = FailSomeCalls(row, name, first, kChunk); });
      first += kChunk;
    } while (first <= *last);
    sum += *last;
  }
  std::printf("%llu calls\n", static_cast<unsigned long long>(sum));
  EXPECT_GT(sum, 500U);
}

std::string RaisedWithFault(const char* entry_point, Fault::Kind kind) {
  Capabilities capabilities;
  capabilities.faults[entry_point] = Fault{kind};
  Session session(capabilities, Exceptions::kMayBeLost);
  return ConstructFromString(PlainMessage()).raised;
}

// The host exception that results from a C++ exception thrown by an entry point.
TEST_F(InterfaceTest, ThrownExceptionsBecomeTheHosts) {
  LoadLibraryFile();
  InChild("std::runtime_error", [] {
    EXPECT_EQ(RaisedWithFault("RuntimeArrayCreateSingleDimBoundedArray", Fault::Kind::kThrows),
              "RuntimeException, 0: C++ Exception: fault of "
              "RuntimeArrayCreateSingleDimBoundedArray");
  });
  InChild("int", [] {
    EXPECT_EQ(RaisedWithFault("RuntimeArrayCreateSingleDimBoundedArray", Fault::Kind::kThrowsInt),
              "RuntimeException, 0: Sorry, but there was an unnamed C++ Exception.");
  });
}

}  // namespace
}  // namespace zqv::interface_test
