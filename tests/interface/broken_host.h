// Hosts in which entry points are missing or fail, and a run that uses everything that the library
// offers.
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

// A new and an old host. The old one builds strings in another way and lacks the constructors of
// dates. Together the two use every entry point except the one for the platform's own string.
struct HostKind {
  const char* name;
  double version;
  standin::DateFlavour date_flavour;
};
inline constexpr HostKind kHosts[] = {{"new host", 2024.1, standin::DateFlavour::kSevenArguments},
                                      {"old host", 2011.0, standin::DateFlavour::kNoConstructor}};

Capabilities CapabilitiesOf(const HostKind& kind);

// The faults of a host: entry point name and fault.
using Faults = std::map<std::string, Fault, std::less<>>;

// Starts a session in a host with these faults. With some faults a library cannot avoid calls for
// which the stand-in ends the process; the stand-in then tolerates these calls.
std::unique_ptr<Session> StartBroken(const HostKind& kind, const Faults& faults);

// Call before a test that starts such a host itself.
void TakeRealResolver();
void* TolerantResolver(const char* name);

// Whether the host of the current session has all classes.
bool IsRegistered();

// Constructs a message in each way and uses everything of it. Does nothing in a host that has not
// all classes.
void UseAllWays();

// Starts such a session, and then uses everything.
void UseWithFaults(const HostKind& kind, const Faults& faults);

}  // namespace zqv::interface_test
