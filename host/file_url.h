// A file URL (RFC 8089) taken apart, which each platform writes as a path in its own way.
#pragma once

#include <string>
#include <string_view>

namespace zqv::host {

struct FileUrl {
  std::string_view server;  // as written; empty for this machine
  std::string path;         // percent escapes decoded; begins with a slash
};

// The path as this platform's system takes it; empty where it has none for such a URL.
std::string PathOfUrl(const FileUrl& url);

}  // namespace zqv::host
