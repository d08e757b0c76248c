// What a port provides: how a file reference of the host becomes a path and is opened, the local
// time, and, where the platform has string objects of its own, a host string as one of those.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "abi/records.h"

namespace zqv::host {

// The file-system path of a FolderItem [borrowed] as OpenForReading takes it; empty when there is
// none: the property cannot be read, is no file URL, or does not convert.
std::string FilePath(abi::REALobject file);

struct CloseFile {
  void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
// An owner of an open file, or of nothing.
using File = std::unique_ptr<std::FILE, CloseFile>;

// The file at that path, which is not empty, opened for reading its bytes as they are. Null when it
// cannot be opened and when it is nothing to read whole, such as a pipe or a device. Never waits
// for anybody.
File OpenForReading(const std::string& path);

// The length of an open file in bytes; negative when it has none. Moves the position.
std::int64_t LengthOf(std::FILE* file);

// Seconds that this machine's local time is ahead of UTC now. Nothing when it cannot be had.
std::optional<std::int64_t> LocalTimeOffset();

#if defined(__APPLE__) || defined(ZQV_PLATFORM_MACOS)
// A new platform string of the text of `string` [borrowed], which the caller releases, or null.
abi::PlatformString RBString2CFString(abi::REALstring string);
#endif

}  // namespace zqv::host
