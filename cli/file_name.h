// Which name a part of a message gets in a folder. The name in the message was chosen by whoever
// sent it, so nothing of it is trusted; the rules hold for every common file system, since files
// travel on.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

namespace zqv::cli {

// The longest name that CleanFileName gives.
inline constexpr std::size_t kMostNameBytes = 200;

// A name without folders and drive letters, control characters and those that show nothing, dots
// and blanks at its ends, that no system takes for a device, of well-formed UTF-8 and at most
// kMostNameBytes bytes; its extension outlives the cut. "attachment" when nothing is left.
std::string CleanFileName(std::string_view name);

// Tells equal names apart.
class FileNames {
 public:
  // `name` when it is new, else "stem (2).extension", "stem (3).extension" ... Names that differ
  // in the case of ASCII letters only count as equal.
  std::string Take(const std::string& name);

 private:
  std::unordered_map<std::string, std::size_t>
      taken_;  // in lower case, with the highest number given
};

}  // namespace zqv::cli
