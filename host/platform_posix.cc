// The functions of platform.h that macOS and Linux share: files through POSIX, local time through
// the C library.
#include <fcntl.h>
#include <unistd.h>

#include <ctime>

#include "host/platform.h"

namespace zqv::host {

// O_NONBLOCK: opening a named pipe would otherwise block until another process writes to it. lseek
// fails for pipes and other files that are not seekable.
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

// localtime_r reads the time zone only once in a process, unless tzset, localtime or mktime is
// called, too. So a change of the zone while the process runs may go unnoticed.
std::optional<std::int64_t> LocalTimeOffset() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  if (localtime_r(&now, &local) == nullptr) return std::nullopt;
  return local.tm_gmtoff;
}

}  // namespace zqv::host
