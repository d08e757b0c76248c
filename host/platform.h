// The functions that each platform implements: files, local time and, on macOS, its string objects.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "abi/records.h"

namespace zqv::host {

// The path of a FolderItem [borrowed], as OpenForReading takes it. Empty when the host does not
// give it, when it gives something other than a file URL, or when it cannot be converted.
std::string FilePath(abi::REALobject file);

struct CloseFile {
  void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
// Owns an open file, or null.
using File = std::unique_ptr<std::FILE, CloseFile>;

// Opens a file for reading in binary mode. `path` must not be empty. Null when the file cannot be
// opened or is not seekable, such as a pipe. Does not block.
File OpenForReading(const std::string& path);

// The length of an open file in bytes; negative when it cannot be determined. Changes the position.
std::int64_t LengthOf(std::FILE* file);

// How far local time is ahead of UTC at this moment, in seconds. Nullopt when it cannot be
// determined.
std::optional<std::int64_t> LocalTimeOffset();

#if defined(__APPLE__) || defined(ZQV_PLATFORM_MACOS)
// Creates a CFString with the text of `string` [borrowed], which the caller must release. Null for
// nil and when it cannot be made.
abi::PlatformString RBString2CFString(abi::REALstring string);
#endif

}  // namespace zqv::host
