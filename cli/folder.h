// The folder that parts are written into.
//
// Invariant: nothing outside the folder is touched. Names are looked up from the opened folder
// itself, a name that holds a slash is refused, and no link in the folder is ever followed.
#pragma once

#include <string>
#include <string_view>

namespace zqv::cli {

class Folder {
 public:
  // Opens the folder at `path`, making it and those above it when missing. Throws
  // std::runtime_error, naming path and reason.
  explicit Folder(std::string path);
  ~Folder();
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  // Writes a new file and gives its path. With `force` a plain file of that name is removed first.
  // Throws std::runtime_error, naming path and reason; a file that could not be written whole is
  // removed.
  std::string Write(const std::string& name, std::string_view bytes, bool force) const;

 private:
  std::string PathOf(const std::string& name) const;
  void RemoveOld(const std::string& name) const;

  const std::string path_;
  int descriptor_ = -1;
};

}  // namespace zqv::cli
