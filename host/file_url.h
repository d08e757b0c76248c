// A parsed file URL (RFC 8089), and its conversion to a path, which each platform defines.
#pragma once

#include <string>
#include <string_view>

namespace zqv::host {

struct FileUrl {
  std::string_view server;  // empty for this machine [borrowed from the URL]
  std::string path;         // begins with a slash; percent escapes are decoded
};

// Converts to a path of this platform, in UTF-8. Empty when the platform has no path for the URL.
std::string PathOfUrl(const FileUrl& url);

}  // namespace zqv::host
