// What a port provides: how a file reference of the host becomes a path and, where the platform has
// string objects of its own, a host string as one of those.
#pragma once

#include <string>

#include "abi/records.h"

namespace zqv::host {

// The file-system path of a FolderItem [borrowed] as bytes for fopen; empty when there is none: the
// property cannot be read, is no file URL, or does not convert.
std::string FilePath(abi::REALobject file);

#if defined(__APPLE__) || defined(ZQV_PLATFORM_MACOS)
// A new platform string of the text of `string` [borrowed], which the caller releases, or null.
abi::PlatformString RBString2CFString(abi::REALstring string);
#endif

}  // namespace zqv::host
