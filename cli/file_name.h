// Safe file names. The sender of a message chose the names in it, so they are not trusted. A safe
// name is valid on every common file system, because files are copied between systems.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

namespace zqv::cli {

// The greatest length of the result of CleanFileName, in bytes.
inline constexpr std::size_t kMostNameBytes = 200;

// Makes a name safe. It removes folders, drive letters, control characters, invisible characters,
// and dots and blanks at the ends. It changes names of devices such as "con". It shortens the name
// to kMostNameBytes bytes of well-formed UTF-8 and keeps the extension. Returns "attachment" when
// nothing is left.
std::string CleanFileName(std::string_view name);

// Makes names unique.
class FileNames {
 public:
  // Returns `name` if it was not returned before, else "stem (2).extension", "stem (3).extension"
  // and so on. Names that differ only in the case of ASCII letters count as equal.
  std::string Take(const std::string& name);

 private:
  // Name in lower case -> highest number used.
  std::unordered_map<std::string, std::size_t> taken_;
};

}  // namespace zqv::cli
