#include "tests/support/unnamed_file.h"

#include <unistd.h>

#if defined(__linux__)
#include <sys/mman.h>
#else
#include <fcntl.h>

#include <cstdlib>
#endif

#include <cstddef>

namespace zqv::test {

int OpenUnnamedFile() {
#if defined(__linux__)
  return memfd_create("test", MFD_CLOEXEC);
#else
  const char* const folder = std::getenv("TMPDIR");
  std::string path = std::string(folder != nullptr ? folder : "/tmp") + "/zqv-XXXXXX";
  const int descriptor = mkstemp(path.data());
  if (descriptor < 0) return descriptor;
  unlink(path.c_str());
  fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  return descriptor;
#endif
}

std::string TextOfFile(int descriptor) {
  std::string text(static_cast<std::size_t>(lseek(descriptor, 0, SEEK_END)), '\0');
  const ssize_t got = pread(descriptor, text.data(), text.size(), 0);
  text.resize(got < 0 ? 0 : static_cast<std::size_t>(got));
  return text;
}

}  // namespace zqv::test
