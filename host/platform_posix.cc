// What macOS and Linux have in common: files by POSIX, local time by the C library.
#include <fcntl.h>
#include <unistd.h>

#include <ctime>

#include "host/platform.h"

namespace zqv::host {

// Opened without blocking: a pipe would wait for somebody to write into it. What cannot be
// positioned is no file to read whole.
File OpenForReading(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return nullptr;
  File file(lseek(descriptor, 0, SEEK_CUR) >= 0 ? fdopen(descriptor, "rb") : nullptr);
  if (file == nullptr) close(descriptor);
  return file;
}

std::int64_t LengthOf(std::FILE* file) {
  return std::fseek(file, 0, SEEK_END) == 0 ? std::ftell(file) : -1;
}

// localtime_r looks at the zone's file for the first call in the process alone, and again only
// after somebody else has called tzset, localtime or mktime.
std::optional<std::int64_t> LocalTimeOffset() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  if (localtime_r(&now, &local) == nullptr) return std::nullopt;
  return local.tm_gmtoff;
}

}  // namespace zqv::host
