// The capabilities of a stand-in host: its version, the entry points that are missing or faulty,
// the memory layout of its arrays, the constructors of its class Date. A default-constructed value
// describes a complete host of a recent version without faults.
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

// A fault of one entry point. `kMissing` makes the resolver return null. The other kinds apply to
// calls number `from_call` (counted from 1) to `from_call + calls - 1`.
struct Fault {
  enum class Kind {
    kMissing,    // the resolver returns null for the entry point
    kNothing,    // the call does nothing and returns nil, false or 0
    kThrows,     // the call throws std::runtime_error
    kThrowsInt,  // the call throws an int
  };
  Kind kind = Kind::kMissing;
  std::uint64_t from_call = 1;
  std::uint64_t calls = std::numeric_limits<std::uint64_t>::max();
};

// The memory layout of arrays. Each of the last six is wrong in exactly one respect.
enum class ArrayLayout {
  kByVersion,  // kNew from host version 2021.0 on, else kOld
  kOld,
  kNew,
  kWrongLocks,       // the field at byte 24 is not the lock count
  kWrongDimensions,  // the dimension count is not 1
  kWrongUpperBound,
  kNoStorage,   // the storage pointer is nil
  kWrongSlot0,  // the storage lacks element 0: its slot always holds nil
  kWrongSlot9,  // the storage lacks element 9 in the same way
};

// The constructor of class "Date" that "REALLoadObjectMethod" finds.
enum class DateFlavour { kSevenArguments, kSixArguments, kNoConstructor };

// The text that "PluginGetStringData" lends.
enum class StringDataFlavour {
  kPlain,         // four zero bytes follow the text
  kUnterminated,  // the four bytes after the text are not zero
  kSwappedUtf32,  // UTF-32 is in the other byte order, after a byte-order mark
};

struct Capabilities {
  double version = 2024.1;
  std::map<std::string, Fault, std::less<>> faults;  // by entry point name
  ArrayLayout array_layout = ArrayLayout::kByVersion;
  // True: an insertion beyond the end of an array does nothing. False: it is fatal.
  bool refuses_insertion_beyond_the_end = false;
  DateFlavour date_flavour = DateFlavour::kSevenArguments;
  StringDataFlavour string_data = StringDataFlavour::kPlain;
  // Names of classes for which "PluginNewInstance" returns nil. Case is ignored.
  std::set<std::string, std::less<>> unknown_classes;
  // Properties of native classes that cannot be read or written, such as "FolderItem.NativePath".
  std::set<std::string, std::less<>> missing_properties;
  // The encoding of the strings that "NativePath" and "URLPath" return. kUnknownEncoding gives
  // bytes in Mac Roman without a label. A path with a character that the encoding lacks is in
  // UTF-8.
  abi::Encoding path_encoding = abi::kUtf8;
  // Makes the result of "REALGetStringCFString", which the plug-in must release. Unset: the host
  // lacks that entry point. It is called while the host's mutex is held and must not call the host.
  std::function<abi::PlatformString(std::string_view bytes, abi::Encoding encoding)>
      platform_string;
  // False in benchmarks: the host counts locks and things, but does not detect misuse.
  bool ledger = true;
  // Additional bytes of stack that the host uses while it frees an object or array, to behave like
  // a host with large stack frames. They are in use while the destructor runs and while the
  // elements are released, so nested releases add up. 0: none.
  std::size_t release_stack = 0;
  // Limits of the quarantine, which keeps the memory of freed things unreadable, so that their use
  // is detected. When one limit is exceeded, the oldest memory leaves the quarantine.
  std::size_t quarantine_entries = 200'000;
  std::size_t quarantine_bytes = std::size_t{64} << 20;
};

}  // namespace zqv::standin
