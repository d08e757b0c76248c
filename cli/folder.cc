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

// Where the system shows a program's open files, unless that is switched off.
constexpr const char* kOpenFiles = "/proc/self/fd/";

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

Folder::Folder(std::string path, int descriptor)
    : path_(std::move(path)), descriptor_(descriptor) {}

Folder::~Folder() {
  if (descriptor_ >= 0) close(descriptor_);
}

Folder::Folder(Folder&& other) noexcept
    : path_(std::move(other.path_)), descriptor_(std::exchange(other.descriptor_, -1)) {}

Folder& Folder::operator=(Folder&& other) noexcept {
  std::swap(path_, other.path_);
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

std::string Folder::PathOf(const std::string& name) const {
  return path_ + (path_.back() == '/' ? "" : "/") + name;
}

std::string Folder::CheckedPathOf(const std::string& name) const {
  std::string path = PathOf(name);
  if (name.empty() || name.find('/') != std::string::npos) Fail(path, "not a name of a file");
  return path;
}

Folder Folder::Sub(const std::string& name) const {
  std::string path = CheckedPathOf(name);
  if (mkdirat(descriptor_, name.c_str(), 0777) != 0 && errno != EEXIST) FailWith(path, errno);
  const int opened =
      openat(descriptor_, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (opened < 0) FailWith(path, errno);
  return {std::move(path), opened};
}

void Folder::RemoveOld(const std::string& name) const {
  struct stat status = {};
  if (fstatat(descriptor_, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return;
  if (!S_ISREG(status.st_mode)) Fail(PathOf(name), "in the way, and not a plain file");
  // Removed rather than emptied: another name of the same file may lie outside the folder.
  if (unlinkat(descriptor_, name.c_str(), 0) != 0) FailWith(PathOf(name), errno);
}

std::string Folder::Write(const std::string& name, std::string_view bytes, bool force) const {
  std::string path = CheckedPathOf(name);
  if (!force && Has(name)) FailWith(path, EEXIST);
  int error = WriteUnnamed(name, bytes, force);
  // A file system or a kernel without such files, or a system that does not show open ones.
  if (error == EOPNOTSUPP || error == EISDIR || error == ENOENT) {
    if (force) RemoveOld(name);
    error = WriteNamed(name, bytes);
  }
  if (error != 0) FailWith(path, error);
  return path;
}

int Folder::WriteUnnamed(const std::string& name, std::string_view bytes, bool force) const {
  const int file = openat(descriptor_, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
  if (file < 0) return errno;
  int error = WriteAll(file, bytes);
  if (error == 0) {
    if (force) RemoveOld(name);
    const std::string unnamed = kOpenFiles + std::to_string(file);
    if (linkat(AT_FDCWD, unnamed.c_str(), descriptor_, name.c_str(), AT_SYMLINK_FOLLOW) != 0) {
      error = errno;
    }
  }
  close(file);
  return error;
}

int Folder::WriteNamed(const std::string& name, std::string_view bytes) const {
  const int file =
      openat(descriptor_, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
  if (file < 0) return errno;
  int error = WriteAll(file, bytes);
  if (close(file) != 0 && error == 0) error = errno;
  if (error != 0) unlinkat(descriptor_, name.c_str(), 0);
  return error;
}

bool Folder::Has(const std::string& name) const {
  return faccessat(descriptor_, name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
}

void Folder::Rename(const std::string& from, const std::string& to) const {
  const std::string path = CheckedPathOf(to);
  if (renameat2(descriptor_, from.c_str(), descriptor_, to.c_str(), RENAME_NOREPLACE) == 0) return;
  // Not every file system can refuse to replace; an empty folder of the name does no harm then.
  if (errno != EINVAL || Has(to)) FailWith(path, errno == EINVAL ? EEXIST : errno);
  if (renameat(descriptor_, from.c_str(), descriptor_, to.c_str()) != 0) FailWith(path, errno);
}

void Folder::Remove(const std::string& name) const {
  const std::string path = CheckedPathOf(name);
  // By way of the opened folder, since the names above it may mean another one by now.
  const std::string opened = kOpenFiles + std::to_string(descriptor_) + "/" + name;
  std::error_code error;
  std::filesystem::remove_all(std::filesystem::exists(kOpenFiles) ? opened : path, error);
  if (error) FailWith(path, error.value());
}

}  // namespace zqv::cli
