// Registers class definitions with the host, adjusted for the host's version.
#pragma once

#include <cstdint>

#include "abi/records.h"

namespace zqv::plugin {

// The version of class definitions that was announced to the host; 15 before that. Mutable process
// state, set once by REALPluginMain; its name is given by the interface (CONTRIBUTING.md).
extern std::int32_t CurrentREALControlVersion;

// The version of class definitions that a host of version `host_version` (such as 2013.04; 0 if
// unknown) understands.
std::int32_t ControlVersionFor(double host_version);

// Adjusts a definition in place for the running host and registers it. [borrowed by the host for
// the life of the process] Returns what the host returns; 0 when it cannot register classes.
abi::RBInteger MyREALRegisterClass(abi::REALclassDefinition* definition);

// Translates the flags of a member or class to those that a host of that version understands.
std::uint32_t FixFlags(std::uint32_t flags, double host_version);

}  // namespace zqv::plugin
