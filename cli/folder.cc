#include "cli/folder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "cli/utf8.h"

namespace zqv::cli {
namespace {

// The folder with links to the process's open files. It may be missing.
constexpr const char* kOpenFiles = "/proc/self/fd/";

[[noreturn]] void Fail(const std::string& path, const std::string& reason) {
  throw std::runtime_error(path + ": " + reason);
}

[[noreturn]] void FailWith(const std::string& path, int error) {
  const std::string reason = std::generic_category().message(error);
  if (error == ENOSPC || error == EDQUOT) throw DiskFull(path + ": " + reason);
  Fail(path, reason);
}

// Writes all bytes. Returns 0 or the errno of the failure.
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

std::string UnfinishedName(const std::string& name) {
  constexpr std::size_t kMostOfName = 200;  // file names may have 255 bytes
  return "." + name.substr(0, WholeSequences(name, kMostOfName)) + ".unfinished";
}

Folder::Folder(std::string path) : path_(std::move(path)), descriptor_(-1) {
  std::error_code error;
  std::filesystem::create_directories(path_, error);
  // A failure does not matter if the folder exists already or is a link to one; then open succeeds.
  descriptor_ = Descriptor(open(path_.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!descriptor_.IsOpen()) FailWith(path_, error ? error.value() : errno);
}

Folder::Folder(std::string path, Descriptor descriptor)
    : path_(std::move(path)), descriptor_(std::move(descriptor)) {}

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
  if (mkdirat(descriptor_.number(), name.c_str(), 0777) != 0 && errno != EEXIST)
    FailWith(path, errno);
  Descriptor opened(
      openat(descriptor_.number(), name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!opened.IsOpen()) FailWith(path, errno);
  return {std::move(path), std::move(opened)};
}

void Folder::RemoveOld(const std::string& name) const {
  struct stat status = {};
  if (fstatat(descriptor_.number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return;
  if (!S_ISREG(status.st_mode)) Fail(PathOf(name), "in the way, and not a plain file");
  // Removes the file and does not overwrite it, because it may have another name outside the
  // folder.
  if (unlinkat(descriptor_.number(), name.c_str(), 0) != 0) FailWith(PathOf(name), errno);
}

std::string Folder::Write(const std::string& name, std::string_view bytes, bool force) const {
  std::string path = CheckedPathOf(name);
  if (!force && Has(name)) FailWith(path, EEXIST);
  int error = WriteUnnamed(name, bytes, force);
  // The file system or the kernel lacks unnamed files, or /proc is missing.
  if (error == EOPNOTSUPP || error == EISDIR || error == ENOENT) {
    error = WriteNamed(name, bytes, force);
  }
  if (error != 0) FailWith(path, error);
  return path;
}

int Folder::WriteUnnamed(const std::string& name, std::string_view bytes, bool force) const {
  const Descriptor file(openat(descriptor_.number(), ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666));
  if (!file.IsOpen()) return errno;
  const int error = WriteAll(file.number(), bytes);
  if (error != 0) return error;
  if (force) RemoveOld(name);
  const std::string unnamed = kOpenFiles + std::to_string(file.number());
  const int done =
      linkat(AT_FDCWD, unnamed.c_str(), descriptor_.number(), name.c_str(), AT_SYMLINK_FOLLOW);
  return done == 0 ? 0 : errno;
}

int Folder::WriteNamed(const std::string& name, std::string_view bytes, bool force) const {
  const std::string unfinished = UnfinishedName(name);
  RemoveOld(unfinished);  // left by a run that was killed
  Descriptor file(openat(descriptor_.number(), unfinished.c_str(),
                         O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
  if (!file.IsOpen()) return errno;
  int error = WriteAll(file.number(), bytes);
  if (const int closing = file.Close(); error == 0) error = closing;
  if (error == 0 && force) RemoveOld(name);
  if (error == 0) error = Move(unfinished, name);
  if (error != 0) unlinkat(descriptor_.number(), unfinished.c_str(), 0);
  return error;
}

bool Folder::Has(const std::string& name) const {
  return faccessat(descriptor_.number(), name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
}

int Folder::Move(const std::string& from, const std::string& to) const {
  if (renameat2(descriptor_.number(), from.c_str(), descriptor_.number(), to.c_str(),
                RENAME_NOREPLACE) == 0)
    return 0;
  // The file system cannot rename without replacing. rename() may then replace an empty folder,
  // which does no harm.
  if (errno != EINVAL) return errno;
  if (Has(to)) return EEXIST;
  return renameat(descriptor_.number(), from.c_str(), descriptor_.number(), to.c_str()) == 0
             ? 0
             : errno;
}

void Folder::Rename(const std::string& from, const std::string& to) const {
  const std::string path = CheckedPathOf(to);
  if (const int error = Move(from, to); error != 0) FailWith(path, error);
}

void Folder::Remove(const std::string& name) const {
  const std::string path = CheckedPathOf(name);
  // Goes through the opened folder, because the names in its path may now mean other folders.
  const std::string opened = kOpenFiles + std::to_string(descriptor_.number()) + "/" + name;
  std::error_code error;
  std::filesystem::remove_all(std::filesystem::exists(kOpenFiles) ? opened : path, error);
  if (error) FailWith(path, error.value());
}

}  // namespace zqv::cli
