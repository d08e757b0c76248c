// What a stand-in host can do: its version, which entry points it lacks or breaks, the memory
// layout of its arrays, the constructors of its Date class. Plain data; a default-made value is a
// complete, faultless host of a recent version.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "abi/encodings.h"
#include "abi/records.h"

namespace zqv::standin {

// How one entry point misbehaves. `kMissing` concerns the resolver, which then gives null; the
// other kinds concern the calls number `from_call` (counted from 1) to `from_call + calls - 1`.
struct Fault {
  enum class Kind {
    kMissing,    // the resolver gives null
    kNothing,    // the call gives nil, false or 0 and does nothing
    kThrows,     // the call throws std::runtime_error
    kThrowsInt,  // the call throws an int
  };
  Kind kind = Kind::kMissing;
  std::uint64_t from_call = 1;
  std::uint64_t calls = std::numeric_limits<std::uint64_t>::max();
};

// Where an array keeps its fields in memory. The last six are broken in one respect each.
enum class ArrayLayout {
  kByVersion,  // kNew from host version 2021.0 on, else kOld
  kOld,
  kNew,
  kWrongLocks,       // the field at byte 24 is not the lock count
  kWrongDimensions,  // the dimension count is not 1
  kWrongUpperBound,
  kNoStorage,   // the storage pointer is nil
  kWrongSlot0,  // the storage that the pointer names never holds element 0
  kWrongSlot9,  // the same for element 9
};

// Which constructor the class "Date" offers through "REALLoadObjectMethod".
enum class DateFlavour { kSevenArguments, kSixArguments, kNoConstructor };

// What "PluginGetStringData" lends.
enum class StringDataFlavour {
  kPlain,         // four zero bytes follow the text
  kUnterminated,  // the four bytes after the text are not zero
  kSwappedUtf32,  // UTF-32 comes in the other byte order, after a byte-order mark
};

struct Capabilities {
  double version = 2024.1;
  std::map<std::string, Fault, std::less<>> faults;  // by entry point name
  ArrayLayout array_layout = ArrayLayout::kByVersion;
  // Nothing is inserted beyond an array's end; otherwise that is fatal.
  bool refuses_insertion_beyond_the_end = false;
  DateFlavour date_flavour = DateFlavour::kSevenArguments;
  StringDataFlavour string_data = StringDataFlavour::kPlain;
  // Class names for which "PluginNewInstance" gives nil; case is ignored.
  std::set<std::string, std::less<>> unknown_classes;
  // Properties of native classes that cannot be read or written: "FolderItem.NativePath".
  std::set<std::string, std::less<>> missing_properties;
  // Of the strings that "NativePath" and "URLPath" give; kUnknownEncoding stands for Mac Roman
  // bytes without a label. A path that it cannot hold stays in UTF-8.
  abi::Encoding path_encoding = abi::kUtf8;
  // Offers "REALGetStringCFString" when set; what it returns is the plug-in's to release.
  // It is called with the host's lock held and must not call the host.
  std::function<abi::PlatformString(std::string_view bytes, abi::Encoding encoding)>
      platform_string;
  // Off for benchmarks: only lock counts remain, and misuse is not recognised.
  bool ledger = true;
  // Bytes of stack that the host takes for each release of an object or array, over and above its
  // own small frames: it stands for a host with large ones. They are in use while the destructor
  // runs and while the elements are released, so nested releases add up. 0: none.
  std::size_t release_stack = 0;
  // Freed things are held back, unreadable, so that their use is recognised.
  std::size_t quarantine_entries = 200'000;
  std::size_t quarantine_bytes = std::size_t{64} << 20;
};

}  // namespace zqv::standin
