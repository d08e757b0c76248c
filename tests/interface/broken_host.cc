#include "tests/interface/broken_host.h"

#include <cstdint>
#include <utility>
#include <vector>

#include "standin/invoke.h"
#include "standin/store.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"

namespace zqv::interface_test {
namespace {

// Without an upper bound the library inserts at index 1, and takes index 0 for an element even of
// an empty array. The stand-in ends the process for both. A real host need not, so this one returns
// nil for an element out of bounds; a capability makes insertions out of bounds harmless.
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

abi::REALobject TolerantRead(abi::REALarray array, abi::RBInteger index) {
  if (index < 0 || index > UpperBound(array)) return nullptr;
  using Read = abi::REALobject (*)(abi::REALarray, abi::RBInteger);
  return RealEntryPoint<Read>("RuntimeDirectReadObjectArray")(array, index);
}

// When a host lacks the function that takes string data back, the library reuses the memory of its
// record. The stand-in identifies records by address, and would see the same record used twice. It
// is therefore given records of its own, which are never freed.
std::map<abi::REALstringData*, std::unique_ptr<abi::REALstringData>> lasting_records;
std::vector<std::unique_ptr<abi::REALstringData>> abandoned_records;

abi::RBBoolean LastingGet(abi::REALstring string, std::uint32_t encoding,
                          abi::REALstringData* data) {
  const standin::PluginScope scope(false);
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
  const standin::PluginScope scope(false);
  using Dispose = void (*)(abi::REALstringData*);
  const auto record = lasting_records.find(data);
  ASSERT_NE(record, lasting_records.end())
      << "this record was never lent, or was given back before";
  RealEntryPoint<Dispose>("PluginDisposeStringData")(record->second.get());
  abandoned_records.push_back(std::move(record->second));
  lasting_records.erase(record);
}

struct Replacement {
  std::string_view name;
  void* function;
};

}  // namespace

Capabilities CapabilitiesOf(const HostKind& kind) {
  Capabilities capabilities;
  capabilities.version = kind.version;
  capabilities.date_flavour = kind.date_flavour;
  // With a wrong array layout the library reads elements through the host.
  if (kind.version < 2013) capabilities.array_layout = standin::ArrayLayout::kWrongDimensions;
  return capabilities;
}

void* TolerantResolver(const char* name) {
  const Replacement kReplacements[] = {
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

// The resolver has no context, so it is the same for every host.
void TakeRealResolver() { real_resolver = Host::Start()->resolver(); }

std::unique_ptr<Session> StartBroken(const HostKind& kind, const Faults& faults) {
  Capabilities capabilities = CapabilitiesOf(kind);
  capabilities.faults = faults;
  const bool keeps_string_data = faults.count("PluginDisposeStringData") != 0;
  if (!keeps_string_data && faults.count("RuntimeUBound") == 0) {
    return std::make_unique<Session>(std::move(capabilities), Exceptions::kMayBeLost);
  }
  TakeRealResolver();
  capabilities.refuses_insertion_beyond_the_end = true;
  auto session =
      std::make_unique<Session>(std::move(capabilities), Exceptions::kMayBeLost, &TolerantResolver);
  if (keeps_string_data) session->Expect(StringData::kMayStay);
  return session;
}

bool IsRegistered() { return Host::Get("the test").classes().registered().size() == 11; }

void UseAllWays() {
  if (!IsRegistered()) return;
  for (const Way way : kAllWays) UseEverything(way, RichMessage());
}

void UseWithFaults(const HostKind& kind, const Faults& faults) {
  const auto session = StartBroken(kind, faults);
  UseAllWays();
}

}  // namespace zqv::interface_test
