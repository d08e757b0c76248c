// Declarations of all entry points, made from the list that host and plug-in share. An entry point
// without an implementation is an error of the linker.
#pragma once

#include <cstddef>
#include <cstdint>

#include "abi/encodings.h"
#include "abi/records.h"
#include "standin/host_lock.h"
#include "standin/invoke.h"

namespace zqv::standin {

// Numbers of the entry points, in the order of the list; kEntryCount is their count.
enum EntryId : std::size_t {
#define ZQV_ENTRY_POINT(name, result, arguments, ownership) k##name,
#include "abi/entry_points.def"
  kEntryCount
};

// Marks that the host runs and holds its mutex. It is created at the start of every entry point, of
// the resolver, and of every function whose address one of them returned.
class EntryScope {
 public:
  EntryScope() : plugin_(false) {}

 private:
  const PluginScope plugin_;
  const HostLock lock_;
};

// The implementations of the entry points. They run after the call was counted and if no fault
// prevents it.
namespace entry {

// The shared list names the interface's types without their namespace.
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
