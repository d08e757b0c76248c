// Registration of class definitions with the running host, whose version decides what it is told.
#pragma once

#include <cstdint>

#include "abi/records.h"

namespace zqv::plugin {

// The class-definition version that the host was told, 15 until it is set.
extern std::int32_t CurrentREALControlVersion;

// The class-definition version for a host version such as 2013.04; 0 is an unknown host.
std::int32_t ControlVersionFor(double host_version);

// Adjusts one definition for the running host, in place, and registers it. Returns what the host
// returns, or 0, with nothing registered, when it cannot register classes.
abi::RBInteger MyREALRegisterClass(abi::REALclassDefinition* definition);

// Member flags as a host of that version understands them.
std::uint32_t FixFlags(std::uint32_t flags, double host_version);

}  // namespace zqv::plugin
