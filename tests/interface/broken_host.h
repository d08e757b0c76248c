// Hosts that lack entry points or whose entry points fail, and a run that uses everything there.
#pragma once

#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "tests/interface/session.h"

namespace zqv::interface_test {

inline constexpr const char* kEntryPoints[] = {
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
inline constexpr HostKind kHosts[] = {{"new host", 2024.1, standin::DateFlavour::kSevenArguments},
                                      {"old host", 2011.0, standin::DateFlavour::kNoConstructor}};

Capabilities CapabilitiesOf(const HostKind& kind);

// What is wrong with a host, by entry point name.
using Faults = std::map<std::string, Fault, std::less<>>;

// The session of a host with these faults. Some leave a library that uses its host as documented no
// choice but to do what the stand-in ends the process for; there the host is made to bear it.
std::unique_ptr<Session> StartBroken(const HostKind& kind, const Faults& faults);

// For tests that start such a host themselves.
void TakeRealResolver();
void* TolerantResolver(const char* name);

// Whether this host took all classes.
bool IsRegistered();

// Everything there is, with a message made in each way; nothing on a host that took no classes.
void UseAllWays();

// The two above, one after the other.
void UseWithFaults(const HostKind& kind, const Faults& faults);

}  // namespace zqv::interface_test
