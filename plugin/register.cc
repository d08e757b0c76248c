// Older hosts understand fewer versions of class definitions and fewer flags. The tables below say
// since when a host has which.
#include "plugin/register.h"

#include <cstddef>
#include <iterator>

#include "host/entry_points.h"

namespace zqv::plugin {
namespace {

struct VersionRow {
  double host_version;  // the first host version with this control version
  std::int32_t control_version;
};

// Newest first. The first row applies whose version is not above the host's.
constexpr VersionRow kVersions[] = {
    {2013.04, 13},
    {2013.03, 12},
    {2013.0, 11},
    {2012.0, 10},
};
constexpr std::int32_t kOldestControlVersion = 9;

// The first host version with separate flags for the targets desktop and web.
constexpr double kKnowsTargets = 2020.02;
constexpr std::uint32_t kAllButIos = abi::kFlagConsole | abi::kFlagWeb | abi::kFlagDesktop;
constexpr std::uint32_t kTargetBits = kAllButIos | abi::kFlagIOS;
static_assert(kAllButIos == 0x308 && kTargetBits == 0x708);

// kNewerAllTargets in a definition means "all targets" in hosts of version kKnowsAllTargets and
// later. For these hosts registration replaces it by kFlagAllTargets; for older hosts it removes
// it.
constexpr double kKnowsAllTargets = 2010.029;
constexpr std::uint32_t kNewerAllTargets = 0x40000;

constexpr std::size_t kRecordAlignment = 16;

// Adjusts the flags of a table of members; `rows` may be null.
template <class Row>
void FixTable(Row* rows, std::size_t count) {
  if (rows == nullptr) return;
  for (std::size_t i = 0; i < count; ++i)
    rows[i].flags = FixFlags(rows[i].flags, host::HostVersion());
}

}  // namespace

std::int32_t CurrentREALControlVersion = 15;

std::int32_t ControlVersionFor(double host_version) {
  for (const VersionRow& row : kVersions) {
    if (host_version >= row.host_version) return row.control_version;
  }
  return kOldestControlVersion;
}

std::uint32_t FixFlags(std::uint32_t flags, double host_version) {
  if (host_version < kKnowsTargets && (flags & kTargetBits) == kAllButIos)
    flags = (flags & ~kTargetBits) | abi::kFlagAllTargets;
  if ((flags & kNewerAllTargets) != 0) {
    flags &= ~kNewerAllTargets;
    if (host_version >= kKnowsAllTargets) flags |= abi::kFlagAllTargets;
  }
  return flags;
}

abi::RBInteger MyREALRegisterClass(abi::REALclassDefinition* definition) {
  definition->flags = FixFlags(definition->flags, host::HostVersion());
  FixTable(definition->methods, definition->methodCount);
  FixTable(definition->sharedMethods, definition->sharedMethodCount);
  FixTable(definition->properties, definition->propertyCount);
  FixTable(definition->sharedProperties, definition->sharedPropertyCount);
  definition->dataSize =
      (definition->dataSize + kRecordAlignment - 1) / kRecordAlignment * kRecordAlignment;
  definition->version = static_cast<std::uint32_t>(CurrentREALControlVersion);
  return host::entry::PluginRegisterClass(definition);
}

}  // namespace zqv::plugin
