// The memory that messages take, and messages that need more than there is.
//
// The tests measure the peak of the process's resident memory minus what was resident before the
// constructor, without the input itself. This includes the parse, the objects and strings of the
// stand-in host, which keeps no ledger here, and reading everything. Each message has a child
// process of its own.
// of its own.
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "standin/invoke.h"
#include "standin/store.h"
#include "tests/interface/child.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"
#include "tests/support/long_text.h"

namespace zqv::interface_test {
namespace {

using test::Count;
using test::Repeat;

constexpr std::size_t kMegabyte = std::size_t{1} << 20;

// The value of a line of /proc/self/status, such as "VmRSS:  1234 kB", in bytes.
std::size_t StatusOf(std::string_view key) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.compare(0, key.size(), key) != 0) continue;
    return std::strtoull(line.c_str() + key.size() + 1, nullptr, 10) * 1024;
  }
  ADD_FAILURE() << "no " << key;
  return 0;
}

// Returns unused memory to the system and resets the peak. Returns the resident bytes.
std::size_t BeginPeak() {
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << "5";
  const std::size_t resident = StatusOf("VmRSS");
  EXPECT_LT(StatusOf("VmHWM"), resident + kMegabyte) << "the peak was not reset";
  return resident;
}

std::string WithBody(std::string_view type, std::string_view transfer, const std::string& body) {
  std::string text = "Subject: Memory\nMIME-Version: 1.0\nContent-Type: ";
  text += type;
  text += "\nContent-Transfer-Encoding: ";
  text += transfer;
  return text + "\n\n" + body;
}

std::string Html(const std::string& body) { return WithBody("text/html", "8bit", body); }

std::string WithHeader(const std::string& fields) {
  return "MIME-Version: 1.0\n" + fields + "\nSmall.\n";
}

std::string Multipart(const std::string& parts) {
  return "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n" + parts + "--b--\n";
}

// A folded field with many entries.
std::string ManyAddresses(std::size_t bytes) {
  return "To: " +
         Count(bytes,
               [](std::size_t n) {
                 return "Ada Example <ada." + std::to_string(n) + "@example.org>,\n ";
               }) +
         "bob@example.net\n";
}

struct Shape {
  const char* name;
  std::string (*make)(std::size_t bytes);
};

// Ordinary mail, in any size.
constexpr Shape kRealShapes[] = {
    {"plain text",
     [](std::size_t n) {
       return WithBody("text/plain; charset=utf-8", "8bit",
                       Repeat("A line of caf\xC3\xA9 text that is not very long.\n", n));
     }},
    {"file in base64",
     [](std::size_t n) {
       return Multipart(
           "--b\n\nSee the file.\n--b\nContent-Type: application/pdf\n"
           "Content-Disposition: attachment; filename=plan.pdf\n"
           "Content-Transfer-Encoding: base64\n\n" +
           Repeat(std::string(76, 'Q') + "\n", n));
     }},
    {"quoted-printable",
     [](std::size_t n) {
       return WithBody("text/plain; charset=iso-8859-1", "quoted-printable",
                       Repeat("Caf=E9 at noon, and the line goes on=\n and on.\n", n));
     }},
    {"HTML",
     [](std::size_t n) {
       return Html(Repeat("<p class=\"text\">A paragraph of <b>HTML</b> text.</p>\n", n));
     }},
    {"HTML in an encoding that is converted",
     [](std::size_t n) {
       return WithBody("text/html; charset=windows-1252", "8bit",
                       Repeat("<p>Caf\xE9 at noon, and so on.</p>\n", n));
     }},
    {"HTML lists",
     [](std::size_t n) {
       return Html(Repeat("<ul><li>one<li>two<ul><li>three</ul><li>four</ul>\n", n));
     }},
    {"HTML references",
     [](std::size_t n) { return Html(Repeat("Caf&eacute; &amp; &#8364; &#x1F600;\n", n)); }},
    {"many parts",
     [](std::size_t n) {
       return Multipart(
           Repeat("--b\nContent-Type: text/plain\nContent-Disposition: attachment\n\n" +
                      Repeat("A line of text.\n", 1000),
                  n));
     }},
    {"many fields",
     [](std::size_t n) {
       return WithHeader(Count(n, [](std::size_t number) {
         return "X-Trace-" + std::to_string(number) + ": passed the station of that number\n";
       }));
     }},
    {"long References",
     [](std::size_t n) {
       return WithHeader("References: " +
                         Count(n,
                               [](std::size_t number) {
                                 return "<" + std::to_string(number) + ".4711@example.org>\n ";
                               }) +
                         "\n");
     }},
    {"many addresses", [](std::size_t n) { return WithHeader(ManyAddresses(n)); }},
    {"many encoded words",
     [](std::size_t n) {
       return WithHeader("Subject:" + Repeat(" =?utf-8?Q?Caf=C3=A9_at_noon?=\n", n));
     }},
    {"nested messages",
     [](std::size_t n) { return NestedMixture(40) + Repeat("The innermost text goes on.\n", n); }},
};

// Texts for which one byte takes much more than a byte of memory.
constexpr Shape kAmplifiers[] = {
    {"empty parts", [](std::size_t n) { return Multipart(Repeat("--b\n\n", n)); }},
    {"fields of three bytes", [](std::size_t n) { return WithHeader(Repeat("a:\n", n)); }},
    {"commas", [](std::size_t n) { return WithHeader("To: " + Repeat(",", n) + "\n"); }},
    {"addresses of a letter",
     [](std::size_t n) { return WithHeader("To: " + Repeat("a,", n) + "\n"); }},
    {"semicolons",
     [](std::size_t n) { return WithHeader("Content-Type: text/plain" + Repeat(";", n) + "\n"); }},
    {"parameters",
     [](std::size_t n) {
       return WithHeader("Content-Type: text/plain" + Repeat("; a=b", n) + "\n");
     }},
    {"groups", [](std::size_t n) { return WithHeader("To: " + Repeat("a:;,", n) + "\n"); }},
    {"lists within lists", [](std::size_t n) { return Html(Repeat("<ul><li>", n)); }},
    {"references", [](std::size_t n) { return Html(Repeat("&lt;", n)); }},
    {"fields in many parts", [](std::size_t n) { return Multipart(Repeat("--b\na:\na:\n\n", n)); }},
    {"encoded words",
     [](std::size_t n) { return WithHeader("Subject: " + Repeat("=?utf-8?Q?a?= ", n) + "\n"); }},
    {"encoded words of no letter",
     [](std::size_t n) { return WithHeader("Subject: " + Repeat("=?a?Q?\?= ", n) + "\n"); }},
    {"one letter in an encoding that is converted",
     [](std::size_t n) { return WithBody("text/html; charset=utf-16", "8bit", Repeat("a", n)); }},
    {"messages in messages", [](std::size_t n) { return NestedMessages(n / 30); }},
    {"multiparts in multiparts", [](std::size_t n) { return NestedMultiparts(n / 70); }},
};

// A message just below the limits of parts, fields and addresses (mime/limits.h), in as few bytes
// as possible, and then HTML until it has `bytes` bytes.
std::string AllJustBelowTheLimits(std::size_t bytes) {
  constexpr int kParts = 9'990;
  constexpr int kFieldsOfEach = 3;
  constexpr int kAddressesOfEach = 1;
  constexpr std::size_t kAddressesOfTop = 10'000;
  std::string part = "--b\nTo:a";
  for (int i = 1; i < kAddressesOfEach; ++i) part += ",a";
  for (int i = 1; i < kFieldsOfEach; ++i) part += "\na:";
  part += "\n\n";
  std::string parts;
  for (int i = 0; i < kParts; ++i) parts += part;
  const std::size_t rest = bytes - std::min(bytes, parts.size() + 1000);
  return "To: " + Repeat("a,", 2 * kAddressesOfTop) + "\n" +
         Multipart(parts + "--b\nContent-Type: text/html; charset=utf-8\n\n" +
                   Repeat("<ul><li>&lt;", rest) + "\n");
}

// Whether `raised` is an exception that a message beyond limits or memory may raise.
bool IsClear(const std::string& raised) {
  static constexpr std::string_view kClear[] = {
      "RuntimeException, 0: C++ Exception: the message has too many parts",
      "RuntimeException, 0: C++ Exception: the message has too many fields",
      "RuntimeException, 0: C++ Exception: the message has too many addresses or parameters",
      "OutOfMemoryException, 0: Failed to allocate memory: std::bad_alloc",
  };
  return std::find(std::begin(kClear), std::end(kClear), raised) != std::end(kClear);
}

Capabilities WithoutLedger() {
  Capabilities capabilities;
  capabilities.ledger = false;
  return capabilities;
}

// The memory that one message took.
struct Cost {
  std::size_t message;  // bytes
  std::size_t growth;   // bytes
  bool is_raised;
};

// Constructs `text` and reads everything of it in a session without a ledger.
Cost Measure(const std::string& text) {
  const Session session(WithoutLedger());
  const Input input(Way::kString, text);
  const std::size_t before = BeginPeak();
  const Constructed constructed =
      ConstructOn(NewInstance("MimeEmailZQV"), "Constructor(Content as string)", input.value());
  if (constructed.raised.empty()) {
    EXPECT_EQ(ReadEverything(constructed.message), "");
  } else {
    EXPECT_TRUE(IsClear(constructed.raised)) << constructed.raised;
  }
  return {text.size(), StatusOf("VmHWM") - before, !constructed.raised.empty()};
}

Cost MeasureInChild(const std::string& name, const std::string& text) {
  const SharedWithChild<Cost> cost;
  InChild(
      name, [&] { *cost = Measure(text); }, 120);
  std::printf("%-45s %5.1f MB%s: %6.1f MB\n", name.c_str(),
              static_cast<double>(cost->message) / kMegabyte, cost->is_raised ? ", refused" : "",
              static_cast<double>(cost->growth) / kMegabyte);
  EXPECT_GT(cost->growth, 0U) << name << ": nothing was measured";
  return *cost;
}

// A host that has no memory throws, but the stand-in ends the process. These entry points therefore
// check that there is enough memory before they call the stand-in's.
abi::Resolver real_resolver = nullptr;

template <typename Function>
Function RealEntryPoint(const char* name) {
  return reinterpret_cast<Function>(real_resolver(name));
}

// Throws std::bad_alloc unless there is memory for an object of `bytes` bytes and for creating it.
void RequireRoom(std::size_t bytes) {
  const standin::PluginScope scope(false);
  void* const room = std::malloc(8 * bytes + 64 * 1024);
  if (room == nullptr) throw std::bad_alloc();
  std::free(room);
}

std::size_t SizeOf(abi::REALstring string) {
  return Host::Get("the test").store().String(string, "the test")->length;
}

abi::REALobject NewInstanceIfRoom(const char* class_name) {
  RequireRoom(0);
  return RealEntryPoint<abi::REALobject (*)(const char*)>("PluginNewInstance")(class_name);
}

abi::REALstring BuildIfRoom(const char* bytes, int length, std::uint32_t encoding) {
  RequireRoom(static_cast<std::size_t>(length));
  using Build = abi::REALstring (*)(const char*, int, std::uint32_t);
  return RealEntryPoint<Build>("REALBuildStringWithEncoding")(bytes, length, encoding);
}

abi::REALstring ConvertIfRoom(abi::REALstring string, std::uint32_t encoding) {
  RequireRoom(SizeOf(string));
  using Convert = abi::REALstring (*)(abi::REALstring, std::uint32_t);
  return RealEntryPoint<Convert>("REALConvertString")(string, encoding);
}

abi::RBBoolean LendIfRoom(abi::REALstring string, std::uint32_t encoding,
                          abi::REALstringData* data) {
  RequireRoom(SizeOf(string));
  using Lend = abi::RBBoolean (*)(abi::REALstring, std::uint32_t, abi::REALstringData*);
  return RealEntryPoint<Lend>("PluginGetStringData")(string, encoding, data);
}

abi::REALarray NewArrayIfRoom(int type, abi::RBInteger upper_bound) {
  RequireRoom(static_cast<std::size_t>(upper_bound + 1) * sizeof(std::int64_t));
  using NewArray = abi::REALarray (*)(int, abi::RBInteger);
  return RealEntryPoint<NewArray>("RuntimeArrayCreateSingleDimBoundedArray")(type, upper_bound);
}

void* ResolverOfSmallHost(const char* name) {
  const std::pair<std::string_view, void*> kReplacements[] = {
      {"PluginNewInstance", reinterpret_cast<void*>(&NewInstanceIfRoom)},
      {"REALBuildStringWithEncoding", reinterpret_cast<void*>(&BuildIfRoom)},
      {"REALConvertString", reinterpret_cast<void*>(&ConvertIfRoom)},
      {"PluginGetStringData", reinterpret_cast<void*>(&LendIfRoom)},
      {"RuntimeArrayCreateSingleDimBoundedArray", reinterpret_cast<void*>(&NewArrayIfRoom)},
  };
  for (const auto& [replaced, function] : kReplacements) {
    if (replaced == name) return function;
  }
  return real_resolver(name);
}

// The first thread's stack takes address space as it grows, and would end the process when a limit
// prevents that. Hence it is made to grow before the limit is set.
void GrowStack(std::size_t bytes) {
  volatile char frame[64 * 1024];
  frame[0] = 0;
  if (bytes > sizeof frame) GrowStack(bytes - sizeof frame);
  frame[sizeof frame - 1] = 0;
}

// Grows the first thread's stack to nearly its limit, to the size that the library assumes.
void GrowStackToItsEnd() {
  rlimit stack{};
  getrlimit(RLIMIT_STACK, &stack);
  GrowStack(std::min<std::size_t>(stack.rlim_cur, 8 * kMegabyte) - kMegabyte / 4);
}

// While an instance exists, the process can use at most `more` bytes of address space more than at
// its start.
class AddressSpaceLimit {
 public:
  explicit AddressSpaceLimit(std::size_t more) {
    malloc_trim(0);
    GrowStackToItsEnd();
    getrlimit(RLIMIT_AS, &before_);
    rlimit limit = before_;
    limit.rlim_cur = StatusOf("VmSize") + more;
    EXPECT_EQ(setrlimit(RLIMIT_AS, &limit), 0);
  }
  ~AddressSpaceLimit() { setrlimit(RLIMIT_AS, &before_); }
  AddressSpaceLimit(const AddressSpaceLimit&) = delete;
  AddressSpaceLimit& operator=(const AddressSpaceLimit&) = delete;

 private:
  rlimit before_{};
};

// Constructs `text` with `more` bytes of memory, and returns what was raised. Reads what the
// message then has, and constructs another message without a limit.
std::string ConstructWithin(std::size_t more, const std::string& text) {
  real_resolver = Host::Start()->resolver();
  const Session session(WithoutLedger(), Exceptions::kMayBeLost, &ResolverOfSmallHost);
  const Input input(Way::kString, text);
  Constructed constructed{NewInstance("MimeEmailZQV"), {}};
  {
    const AddressSpaceLimit limit(more);
    constructed = ConstructOn(constructed.message, "Constructor(Content as string)", input.value());
  }
  // The source without the files is parsed again, so it may be refused again.
  const std::string read = ReadEverything(constructed.message);
  EXPECT_TRUE(read.empty() || IsClear(read)) << read;
  EXPECT_EQ(ConstructFromString(PlainMessage()).raised, "");
  return constructed.raised;
}

// Constructs a nested message with `more` bytes of memory. Returns true when the whole tree was
// made, false when an exception was raised.
bool ConstructDeep(std::size_t more, const std::string& text, std::size_t levels) {
  real_resolver = Host::Start()->resolver();
  const Session session(WithoutLedger(), Exceptions::kMayBeLost, &ResolverOfSmallHost);
  const Input input(Way::kString, text);
  Constructed constructed{NewInstance("MimeEmailZQV"), {}};
  {
    const AddressSpaceLimit limit(more);
    constructed = ConstructOn(constructed.message, "Constructor(Content as string)", input.value());
    if (constructed.raised.empty()) {
      EXPECT_EQ(LevelsOf(constructed.message), levels);
    }
  }
  // A header object that cannot be filled raises while the memory of all levels is still in use, so
  // that the host may have no memory for the exception's text.
  EXPECT_TRUE(constructed.raised.empty() || IsClear(constructed.raised) ||
              constructed.raised == "OutOfMemoryException, 0: ")
      << constructed.raised;
  const bool is_whole = constructed.raised.empty();
  constructed.message = Object();
  EXPECT_EQ(ConstructFromString(PlainMessage()).raised, "");
  return is_whole;
}

class Memory : public InterfaceTest {
 protected:
  void SetUp() override {
    if (!kShips) GTEST_SKIP() << "only the shipped build is measured";
    InterfaceTest::SetUp();
  }
};

// The limits of parts, fields and addresses were chosen for these two figures (docs/limits.md).
constexpr std::size_t kMostForOneMegabyte = 100 * kMegabyte;
constexpr std::size_t kMostFor25Megabytes = 500 * kMegabyte;

TEST_F(Memory, RealMailCostsSixTimesItsSize) {
  LoadLibraryFile();
  for (const Shape& shape : kRealShapes) {
    const Cost cost = MeasureInChild(shape.name, shape.make(kMegabyte));
    EXPECT_LE(cost.growth, 64 * kMegabyte + 6 * cost.message) << shape.name;
  }
}

TEST_F(Memory, AmplifiersStayBelowTheBounds) {
  LoadLibraryFile();
  for (const Shape& shape : kAmplifiers) {
    for (const std::size_t bytes : {kMegabyte / 16, kMegabyte / 4, kMegabyte}) {
      EXPECT_LT(MeasureInChild(shape.name, shape.make(bytes)).growth, kMostForOneMegabyte)
          << shape.name;
    }
    EXPECT_LT(MeasureInChild(shape.name, shape.make(25 * kMegabyte)).growth, kMostFor25Megabytes)
        << shape.name;
  }
}

// With a quarter of a gigabyte, and with little more than the message itself, the result is the
// message or an exception, and the process does not end.
TEST_F(Memory, RunningOutRaises) {
  LoadLibraryFile();
  for (const Shape& shape : kAmplifiers) {
    const SharedWithChild<bool> has_raised;
    for (const std::size_t more : {kMegabyte * 4, kMegabyte * 32, kMegabyte * 256}) {
      for (const std::size_t bytes : {kMegabyte, 25 * kMegabyte}) {
        const std::string text = shape.make(bytes);
        const std::string name = std::string(shape.name) + ", " +
                                 std::to_string(bytes / kMegabyte) + " of " +
                                 std::to_string(more / kMegabyte) + " MB";
        InChild(name, [&] {
          const std::string raised = ConstructWithin(more, text);
          EXPECT_TRUE(raised.empty() || IsClear(raised)) << raised;
          *has_raised = *has_raised || !raised.empty();
        });
      }
    }
    EXPECT_TRUE(*has_raised) << shape.name << ": 25 MB cannot be parsed in 4 MB";
  }
}

// The deepest message, with every amount of memory from almost none. The result is the whole tree
// or an exception. Releasing a partly built tree needs no memory.
TEST_F(Memory, RunningOutInTheDeepestMessageRaises) {
  constexpr std::size_t kLevels = kMostEntities - 1;
  LoadLibraryFile();
  for (const auto& make : {&NestedMultiparts, &NestedMixture}) {
    const std::string text = make(kLevels);
    const SharedWithChild<std::size_t> raised;
    const SharedWithChild<std::size_t> whole;
    std::vector<std::size_t> rooms = {1024};
    for (std::size_t room = 8; room <= 60; ++room) rooms.push_back(room);
    for (const std::size_t room : rooms) {
      InChild("deepest message in " + std::to_string(room) + " MB",
              [&] { ++*(ConstructDeep(room * kMegabyte, text, kLevels) ? whole : raised); });
    }
    EXPECT_GT(*raised, 0U) << "there was always enough memory";
    EXPECT_GT(*whole, 0U) << "there was never enough memory";
  }
}

TEST_F(Memory, EverythingJustBelowTheLimitsStaysBelowTheBounds) {
  LoadLibraryFile();
  for (const std::size_t bytes : {kMegabyte, 10 * kMegabyte, 25 * kMegabyte}) {
    const Cost cost = MeasureInChild("everything", AllJustBelowTheLimits(bytes));
    EXPECT_FALSE(cost.is_raised) << "this message should be below the limits";
    EXPECT_LT(cost.growth, bytes > kMegabyte ? kMostFor25Megabytes : kMostForOneMegabyte)
        << bytes / kMegabyte << " MB";
  }
}

}  // namespace
}  // namespace zqv::interface_test
