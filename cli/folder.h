// The folder that files are written into.
//
// Invariant: nothing outside the folder is touched. Names are looked up from the opened folder
// itself, a name that holds a slash is refused, and no link in the folder is ever followed.
// A file appears whole or not at all, even when the process is killed. Where the file system has no
// files without names, what a killed process was writing may stay under its unfinished name.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "cli/descriptor.h"

namespace zqv::cli {

// Nothing more can be written: the disk is full, or what a user may have of it.
class DiskFull : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What a thing is called until all of it is there: hidden, and the same each time.
std::string UnfinishedName(const std::string& name);

class Folder {
 public:
  // Opens the folder at `path`, making it and those above it when missing. Throws
  // std::runtime_error, naming path and reason, and of a full disk DiskFull; so do the others.
  explicit Folder(std::string path);

  // The folder in this one, made when missing.
  Folder Sub(const std::string& name) const;

  // Writes a new file and gives its path. With `force` a plain file of that name is replaced; what
  // else has the name is in the way.
  std::string Write(const std::string& name, std::string_view bytes, bool force) const;

  // Whether there is anything of this name, be it a link that leads nowhere.
  bool Has(const std::string& name) const;
  // Gives a thing in this folder a new name that nothing has yet.
  void Rename(const std::string& from, const std::string& to) const;
  // Removes a thing in this folder with all that is in it, if there is one.
  void Remove(const std::string& name) const;

 private:
  Folder(std::string path, Descriptor descriptor);

  std::string PathOf(const std::string& name) const;
  // Throws for what is no name.
  std::string CheckedPathOf(const std::string& name) const;
  void RemoveOld(const std::string& name) const;
  // Both give 0 or the errno of what went wrong.
  int WriteUnnamed(const std::string& name, std::string_view bytes, bool force) const;
  int WriteNamed(const std::string& name, std::string_view bytes, bool force) const;
  // 0 or an errno; replaces nothing.
  int Move(const std::string& from, const std::string& to) const;

  std::string path_;
  Descriptor descriptor_;
};

}  // namespace zqv::cli
