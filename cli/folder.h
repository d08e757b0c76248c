// The folder that files are written into.
//
// Nothing outside the folder is changed: names are looked up relative to the opened folder, names
// with a slash are rejected, and links in the folder are not followed. A file appears complete or
// not at all, even when the process is killed. On file systems without unnamed files (O_TMPFILE) a
// killed process may leave a file under its temporary name.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "cli/descriptor.h"

namespace zqv::cli {

// Nothing more can be written: the disk or the user's quota is full.
class DiskFull : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The temporary name of a file or folder until it is complete. It is hidden, and always the same
// for the same name.
std::string UnfinishedName(const std::string& name);

class Folder {
 public:
  // Opens the folder at `path`. Creates it and its parents if they do not exist. All functions
  // throw std::runtime_error with path and reason, or DiskFull.
  explicit Folder(std::string path);

  // Opens a folder in this one. Creates it if it does not exist.
  Folder Sub(const std::string& name) const;

  // Writes a file and returns its path. If the name exists already, it throws, unless `force` is
  // set and the name is that of a regular file: then the file is replaced.
  std::string Write(const std::string& name, std::string_view bytes, bool force) const;

  // Whether the name exists, also as a broken link.
  bool Has(const std::string& name) const;
  // Renames a file or folder. Throws when `to` exists.
  void Rename(const std::string& from, const std::string& to) const;
  // Removes a file, or a folder with its contents. Does nothing when the name does not exist.
  void Remove(const std::string& name) const;

 private:
  Folder(std::string path, Descriptor descriptor);

  std::string PathOf(const std::string& name) const;
  // Throws when `name` is not a valid name in a folder.
  std::string CheckedPathOf(const std::string& name) const;
  void RemoveOld(const std::string& name) const;
  // Return 0 or the errno of the failure.
  int WriteUnnamed(const std::string& name, std::string_view bytes, bool force) const;
  int WriteNamed(const std::string& name, std::string_view bytes, bool force) const;
  // Renames without replacing. Returns 0 or the errno of the failure.
  int Move(const std::string& from, const std::string& to) const;

  std::string path_;
  Descriptor descriptor_;
};

}  // namespace zqv::cli
