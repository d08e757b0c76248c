// Hosts that lack an entry point, or whose entry points give nothing or throw: the step is skipped,
// and nothing crashes, leaks or lets a C++ exception out. The stand-in host ends the process on
// every misuse of what it handed out, so each configuration runs in a child.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "standin/store.h"
#include "tests/interface/child.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

constexpr const char* kEntryPoints[] = {
#define ZQV_ENTRY_POINT(name, result, arguments, ownership) #name,
#include "abi/entry_points.def"
};
static_assert(std::size(kEntryPoints) == 35);

// An old host builds strings otherwise and has no fitting constructor of dates; between them the
// two hosts use every entry point but the platform's own string.
struct HostKind {
  const char* name;
  double version;
  standin::DateFlavour date_flavour;
};
constexpr HostKind kHosts[] = {{"new host", 2024.1, standin::DateFlavour::kSevenArguments},
                               {"old host", 2011.0, standin::DateFlavour::kNoConstructor}};

Capabilities CapabilitiesOf(const HostKind& kind) {
  Capabilities capabilities;
  capabilities.version = kind.version;
  capabilities.date_flavour = kind.date_flavour;
  // A failing array layout makes the library read elements through the host.
  if (kind.version < 2013) capabilities.array_layout = standin::ArrayLayout::kWrongDimensions;
  return capabilities;
}

bool IsRegistered() { return Host::Get("the test").classes().registered().size() == 11; }

void UseAllWays() {
  if (!IsRegistered()) return;
  for (const Way way : kAllWays) UseEverything(way, RichMessage());
}

// Without an upper bound the library appends at index 1 and takes index 0 for an element, also of
// an empty array. The stand-in ends the process then, but a host need not: here insertions out of
// bounds are dropped, and elements out of bounds are nil.
abi::Resolver real_resolver = nullptr;

template <typename Function>
Function RealEntryPoint(const char* name) {
  return reinterpret_cast<Function>(real_resolver(name));
}

std::int64_t UpperBound(abi::REALarray array) {
  return Host::Get("the test")
      .store()
      .UpperBound(*reinterpret_cast<const standin::ArrayThing*>(array));
}

void InsertOrDrop(abi::REALarray array, abi::RBInteger index, abi::REALobject object) {
  if (index < 0 || index > UpperBound(array) + 1) return;
  const auto procedure = RealEntryPoint<void* (*)(abi::REALarray)>("PluginObjectArrayInsertProc");
  reinterpret_cast<abi::ObjectArrayInsertProc>(procedure(array))(array, index, object);
}

void* TolerantInsertProc(abi::REALarray) { return reinterpret_cast<void*>(&InsertOrDrop); }

abi::REALobject TolerantRead(abi::REALarray array, abi::RBInteger index) {
  if (index < 0 || index > UpperBound(array)) return nullptr;
  using Read = abi::REALobject (*)(abi::REALarray, abi::RBInteger);
  return RealEntryPoint<Read>("RuntimeDirectReadObjectArray")(array, index);
}

// String data that is not taken back cannot be given back, and the library's record of it goes all
// the same. The stand-in knows records by their address, which may then come again: so it is given
// records that stay.
std::map<abi::REALstringData*, std::unique_ptr<abi::REALstringData>> lasting_records;
std::vector<std::unique_ptr<abi::REALstringData>> abandoned_records;

abi::RBBoolean LastingGet(abi::REALstring string, std::uint32_t encoding,
                          abi::REALstringData* data) {
  using Get = abi::RBBoolean (*)(abi::REALstring, std::uint32_t, abi::REALstringData*);
  auto& record = lasting_records[data];
  if (record != nullptr) abandoned_records.push_back(std::move(record));
  record = std::make_unique<abi::REALstringData>();
  const abi::RBBoolean is_lent =
      RealEntryPoint<Get>("PluginGetStringData")(string, encoding, record.get());
  *data = *record;
  if (is_lent == 0) lasting_records.erase(data);
  return is_lent;
}

void LastingDispose(abi::REALstringData* data) {
  using Dispose = void (*)(abi::REALstringData*);
  const auto record = lasting_records.find(data);
  ASSERT_NE(record, lasting_records.end()) << "never lent, or given back before";
  RealEntryPoint<Dispose>("PluginDisposeStringData")(record->second.get());
  abandoned_records.push_back(std::move(record->second));
  lasting_records.erase(record);
}

struct Replacement {
  std::string_view name;
  void* function;
};

void* TolerantResolver(const char* name) {
  const Replacement kReplacements[] = {
      {"PluginObjectArrayInsertProc", reinterpret_cast<void*>(&TolerantInsertProc)},
      {"RuntimeDirectReadObjectArray", reinterpret_cast<void*>(&TolerantRead)},
      {"PluginGetStringData", reinterpret_cast<void*>(&LastingGet)},
      {"PluginDisposeStringData", reinterpret_cast<void*>(&LastingDispose)},
  };
  void* const real = real_resolver(name);
  if (real == nullptr) return nullptr;
  for (const Replacement& replacement : kReplacements) {
    if (replacement.name == name) return replacement.function;
  }
  return real;
}

// The resolver carries no context, so it is the same for every host.
void TakeRealResolver() { real_resolver = Host::Start()->resolver(); }

// Runs everything on a host with one fault.
void UseWithFault(const HostKind& kind, std::string_view entry_point, const Fault& fault) {
  Capabilities capabilities = CapabilitiesOf(kind);
  capabilities.faults[std::string(entry_point)] = fault;
  if (entry_point == "RuntimeUBound" || entry_point == "PluginDisposeStringData") {
    TakeRealResolver();
    Session session(capabilities, Exceptions::kMayBeLost, &TolerantResolver);
    session.Expect(StringData::kMayStay);
    UseAllWays();
    return;
  }
  const Session session(capabilities, Exceptions::kMayBeLost);
  UseAllWays();
}

class MissingEntryPoints : public InterfaceTest {};

// What every test below relies on: the run does use the entry points.
TEST_F(MissingEntryPoints, TheRunUsesEveryEntryPoint) {
  LoadLibraryFile();
  for (const HostKind& kind : kHosts) {
    InChild(kind.name, [&] {
      Session session(CapabilitiesOf(kind));
      UseAllWays();
      for (const char* name : kEntryPoints) {
        const bool is_used_elsewhere =
            name == std::string_view("REALGetStringCFString") ||
            (kind.version < 2013 ? name == std::string_view("REALBuildStringWithEncoding")
                                 : name == std::string_view("REALBuildString") ||
                                       name == std::string_view("REALSetStringEncoding") ||
                                       name == std::string_view("RuntimeDirectReadObjectArray"));
        EXPECT_EQ(session.host().CallCount(name) == 0, is_used_elsewhere) << name;
      }
    });
  }
}

TEST_F(MissingEntryPoints, EachMissingInTurn) {
  LoadLibraryFile();
  for (const HostKind& kind : kHosts) {
    for (const char* name : kEntryPoints) {
      InChild(std::string(kind.name) + " without " + name,
              [&] { UseWithFault(kind, name, Fault()); });
    }
  }
}

// Each list of the library, on a host that cannot tell an upper bound.
TEST_F(MissingEntryPoints, EveryListSurvives) {
  LoadLibraryFile();
  InChild("without RuntimeUBound", [] {
    TakeRealResolver();
    Capabilities capabilities;
    capabilities.faults["RuntimeUBound"] = Fault();
    Session session(capabilities, Exceptions::kNoneLost, &TolerantResolver);
    const Object message = Parse(RichMessage());
    const Object header = ObjectOf(Get(message, "Header"));
    EXPECT_EQ(ObjectOf(Call(message, "Attachments as MimeAttachmentZQV()")).Size(), 0);
    EXPECT_EQ(ObjectOf(Call(message, "Inlines as MimeAttachmentZQV()")).Size(), 0);
    EXPECT_EQ(ObjectOf(Call(ObjectOf(Get(message, "Body")), "Parts as MimeEntityZQV()")).Size(), 0);
    EXPECT_EQ(ObjectOf(Call(header, "Fields as MimeFieldZQV()")).Size(), 0);
    EXPECT_EQ(std::get<std::int64_t>(Get(ObjectOf(Get(header, "from")), "Count")), 1);
    EXPECT_EQ(std::get<std::int64_t>(Get(ObjectOf(Get(header, "too")), "Count")), 1);
    EXPECT_EQ(ShowProperty(message, "PlainText"), "0x201 Caf\xE9 at noon");
  });
}

// How often each entry point is called in a clean run, in the order of kEntryPoints. Counted in a
// child, so that the library stays fresh here.
using CallCounts = std::array<std::uint64_t, std::size(kEntryPoints)>;

CallCounts CleanCallCounts(const HostKind& kind) {
  void* const shared =
      mmap(nullptr, sizeof(CallCounts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (shared == MAP_FAILED) throw std::bad_alloc();
  auto* const counts = static_cast<CallCounts*>(shared);
  InChild("clean run", [&] {
    Session session(CapabilitiesOf(kind));
    UseAllWays();
    for (std::size_t i = 0; i < counts->size(); ++i) {
      (*counts)[i] = session.host().CallCount(kEntryPoints[i]);
    }
  });
  const CallCounts result = *counts;
  munmap(shared, sizeof(CallCounts));
  return result;
}

// The calls from 1 to `last` at which a fault begins: the first, the last, and ever larger steps
// between.
std::vector<std::uint64_t> Starts(std::uint64_t last, std::uint64_t growth) {
  std::vector<std::uint64_t> starts;
  for (std::uint64_t n = 1; n < last; n = n * growth + 1) starts.push_back(n);
  if (last > 0) starts.push_back(last);
  return starts;
}

class BrokenEntryPoints : public InterfaceTest, public ::testing::WithParamInterface<int> {
 protected:
  // One child per entry point, start and duration of the fault: this call alone, and from it on.
  void BreakEachInTurn(Fault::Kind fault_kind) {
    const HostKind& kind = kHosts[GetParam()];
    LoadLibraryFile();
    const CallCounts counts = CleanCallCounts(kind);
    for (std::size_t i = 0; i < counts.size(); ++i) {
      const std::string name = kEntryPoints[i];
      for (const std::uint64_t start : Starts(counts[i], kSanitized ? 25 : 3)) {
        for (const bool once : {true, false}) {
          Fault fault{fault_kind, start};
          if (once) fault.calls = 1;
          InChild(std::string(kind.name) + ", " + name + (once ? " at call " : " from call ") +
                      std::to_string(start),
                  [&] { UseWithFault(kind, name, fault); });
        }
      }
    }
  }
};

TEST_P(BrokenEntryPoints, EachGivesNothingInTurn) { BreakEachInTurn(Fault::Kind::kNothing); }
TEST_P(BrokenEntryPoints, EachThrowsInTurn) { BreakEachInTurn(Fault::Kind::kThrows); }
TEST_P(BrokenEntryPoints, EachThrowsAnIntInTurn) { BreakEachInTurn(Fault::Kind::kThrowsInt); }

INSTANTIATE_TEST_SUITE_P(Hosts, BrokenEntryPoints, ::testing::Values(0, 1),
                         [](const auto& row) { return row.param == 0 ? "New" : "Old"; });

std::string RaisedWithFault(const char* entry_point, Fault::Kind kind) {
  Capabilities capabilities;
  capabilities.faults[entry_point] = Fault{kind};
  Session session(capabilities, Exceptions::kMayBeLost);
  return ConstructFromString(PlainMessage()).raised;
}

// What the application sees of a C++ exception that a host let out.
TEST_F(MissingEntryPoints, ThrownExceptionsBecomeTheHosts) {
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

// While a string is built, the exception is the building's own, and nil takes the string's place.
TEST_F(MissingEntryPoints, FailingToBuildAStringGivesNil) {
  LoadLibraryFile();
  for (const Fault::Kind kind : {Fault::Kind::kMissing, Fault::Kind::kNothing}) {
    InChild(std::to_string(static_cast<int>(kind)), [kind] {
      Capabilities capabilities;
      capabilities.faults["REALBuildStringWithEncoding"] = Fault{kind};
      Session session(capabilities);
      const Object message = Parse(RichMessage());
      for (const char* name : {"Subject", "PlainText", "HTMLText"}) {
        EXPECT_EQ(ShowProperty(message, name), "nil") << name;
      }
      EXPECT_EQ(ObjectOf(Call(message, "Attachments as MimeAttachmentZQV()")).Size(), 2)
          << "a text without a string counts as none, so no text is ever the second one";
    });
  }
}

struct MissingRow {
  const char* entry_point;
  const char* property;  // of the message
  bool is_nil;
};

// The step that needs the entry point is skipped; the others are not.
TEST_F(MissingEntryPoints, OnlyTheStepIsSkipped) {
  static constexpr MissingRow kRows[] = {
      {"RuntimeArrayCreateSingleDimBoundedArray", "InlinesVariant", true},
      {"RuntimeArrayCreateSingleDimBoundedArray", "Subject", false},
      {"REALGetPropValueDouble", "Date", false},
      {"REALSetPropValueDouble", "Date", false},
      {"REALLoadObjectMethod", "Date", false},
      {"REALLoadObjectMethod", "Subject", false},
      {"PluginNewInstance", "Header", true},
      {"PluginNewInstance", "Body", true},
      {"PluginNewInstance", "Date", true},
      {"PluginNewInstance", "Subject", false},
      {"PluginNewInstance", "Source", false},
      {"PluginObjectArrayInsertProc", "InlinesVariant", false},
      {"PluginObjectArrayInsertProc", "Body", false},
  };
  LoadLibraryFile();
  for (const MissingRow& row : kRows) {
    InChild(std::string(row.property) + " without " + row.entry_point, [&] {
      Capabilities capabilities;
      capabilities.faults[row.entry_point] = Fault();
      Session session(capabilities);
      const Object message = Parse(RichMessage());
      EXPECT_EQ(standin::IsNil(Get(message, row.property)), row.is_nil);
    });
  }
}

TEST_F(MissingEntryPoints, WithoutComparisonNoFieldIsFound) {
  LoadLibraryFile();
  InChild("without RuntimeStringCompare", [] {
    Capabilities capabilities;
    capabilities.faults["RuntimeStringCompare"] = Fault();
    Session session(capabilities);
    const Object header = ObjectOf(Get(Parse(PlainMessage()), "Header"));
    EXPECT_FALSE(std::get<bool>(Call(header, "hasField", MakeString("Subject"))));
    EXPECT_TRUE(standin::IsNil(Call(header, "FieldByName", MakeString("Subject"))));
  });
}

// Without a way to lock, nothing is handed out that could be unlocked too often.
TEST_F(MissingEntryPoints, WithoutLocksGettersGiveNil) {
  LoadLibraryFile();
  InChild("without locks", [] {
    Capabilities capabilities;
    capabilities.faults["REALLockString"] = Fault();
    capabilities.faults["REALLockObject"] = Fault();
    Session session(capabilities);
    const Object message = Parse(RichMessage());
    for (const char* name : {"Subject", "InlinesVariant", "Date"}) {
      EXPECT_TRUE(standin::IsNil(Get(message, name))) << name;
    }
  });
}

// A class that the host does not make instances of is left out, with all below it.
TEST_F(MissingEntryPoints, ClassesThatTheHostCannotMake) {
  LoadLibraryFile();
  for (const char* name : {"MimeBodyZQV", "MimeHeaderZQV", "MimeEntityZQV", "MimeAddressZQV",
                           "MimeGroupZQV", "MimeAddressListZQV", "MimeMailboxListZQV",
                           "MimeMailboxZQV", "MimeFieldZQV", "MimeAttachmentZQV", "Date"}) {
    InChild(name, [name] {
      Capabilities capabilities;
      capabilities.unknown_classes = {name};
      Session session(capabilities);
      UseAllWays();
      const std::string mirror = MirrorWithoutDates(Parse(RichMessage())).dump();
      EXPECT_EQ(mirror.find("\"class\":\"" + std::string(name)), std::string::npos);
    });
  }
}

}  // namespace
}  // namespace zqv::interface_test
