// The entry points, declared from the list that host and plug-in share: one that is not written
// fails to link.
#pragma once

#include <cstddef>
#include <cstdint>

#include "abi/encodings.h"
#include "abi/records.h"
#include "standin/host_lock.h"
#include "standin/invoke.h"

namespace zqv::standin {

// Their numbers, in the order of the list.
// kEntryCount is how many there are.
enum EntryId : std::size_t {
#define ZQV_ENTRY_POINT(name, result, arguments, ownership) k##name,
#include "abi/entry_points.def"
  kEntryCount
};

// A call of an entry point, of the resolver or of a function that either gave: the plug-in does not
// run meanwhile, and the host's lock is held.
class EntryScope {
 public:
  EntryScope() : plugin_(false) {}

 private:
  const PluginScope plugin_;
  const HostLock lock_;
};

// What each does once its call was counted and no fault has stopped it.
namespace entry {

// The list names the interface's types without their namespace.
using abi::PlatformString;
using abi::RBBoolean;
using abi::RBInteger;
using abi::REALarray;
using abi::REALclassDefinition;
using abi::REALobject;
using abi::REALstring;
using abi::REALstringData;

#define ZQV_ENTRY_POINT(name, result, arguments, ownership) result name arguments;
#include "abi/entry_points.def"

}  // namespace entry
}  // namespace zqv::standin
