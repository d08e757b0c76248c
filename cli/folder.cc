#include "cli/folder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace zqv::cli {
namespace {

[[noreturn]] void Fail(const std::string& path, const std::string& reason) {
  throw std::runtime_error(path + ": " + reason);
}

[[noreturn]] void FailWith(const std::string& path, int error) {
  Fail(path, std::generic_category().message(error));
}

// 0, or the errno of what went wrong.
int WriteAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

}  // namespace

Folder::Folder(std::string path) : path_(std::move(path)) {
  std::error_code error;
  std::filesystem::create_directories(path_, error);
  // That it exists already, or is a link to a folder, is no reason to stop.
  descriptor_ = open(path_.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (descriptor_ < 0) FailWith(path_, error ? error.value() : errno);
}

Folder::~Folder() { close(descriptor_); }

std::string Folder::PathOf(const std::string& name) const {
  return path_ + (path_.back() == '/' ? "" : "/") + name;
}

void Folder::RemoveOld(const std::string& name) const {
  struct stat status = {};
  if (fstatat(descriptor_, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return;
  if (!S_ISREG(status.st_mode)) Fail(PathOf(name), "in the way, and not a plain file");
  // Removed rather than emptied: another name of the same file may lie outside the folder.
  if (unlinkat(descriptor_, name.c_str(), 0) != 0) FailWith(PathOf(name), errno);
}

std::string Folder::Write(const std::string& name, std::string_view bytes, bool force) const {
  std::string path = PathOf(name);
  if (name.empty() || name.find('/') != std::string::npos) Fail(path, "not a name of a file");
  if (force) RemoveOld(name);
  const int file =
      openat(descriptor_, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
  if (file < 0) FailWith(path, errno);
  int error = WriteAll(file, bytes);
  if (close(file) != 0 && error == 0) error = errno;
  if (error != 0) {
    unlinkat(descriptor_, name.c_str(), 0);
    FailWith(path, error);
  }
  return path;
}

}  // namespace zqv::cli
