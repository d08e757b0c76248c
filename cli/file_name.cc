#include "cli/file_name.h"

#include <algorithm>
#include <array>

#include "base/ascii.h"
#include "cli/utf8.h"
#include "standin/text.h"

namespace zqv::cli {
namespace {

// A longer suffix, or one with a blank, does not count as an extension.
constexpr std::size_t kMostExtensionBytes = 20;
constexpr std::string_view kNameless = "attachment";
constexpr std::string_view kTrimmed = ". ";

bool IsHidden(char32_t c) { return IsControl(c) || IsInvisible(c) || c == 0x200C || c == 0x200D; }

// Removes invisible characters and replaces malformed bytes by underscores.
std::string Visible(std::string_view name) {
  std::string visible;
  while (!name.empty()) {
    const CodePoint c = FirstCodePoint(name);
    if (!c.valid) {
      visible += '_';
    } else if (!IsHidden(c.value)) {
      visible += name.substr(0, c.bytes);
    }
    name.remove_prefix(c.bytes);
  }
  return visible;
}

std::string_view LastComponent(std::string_view path) {
  constexpr std::string_view kSeparators = "/\\";
  const std::size_t last = path.find_last_not_of(kSeparators);
  if (last == std::string_view::npos) return {};
  path = path.substr(0, last + 1);
  const std::size_t separator = path.find_last_of(kSeparators);
  return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

std::string_view TrimEnds(std::string_view name) {
  const std::size_t first = name.find_first_not_of(kTrimmed);
  if (first == std::string_view::npos) return {};
  return name.substr(first, name.find_last_not_of(kTrimmed) - first + 1);
}

bool HasDriveLetter(std::string_view name) {
  return name.size() >= 2 && name[1] == ':' && base::IsLetter(name[0]);
}

std::string_view WithoutDrive(std::string_view name) {
  name = TrimEnds(name);
  while (HasDriveLetter(name)) name = TrimEnds(name.substr(2));
  return name;
}

// The position of the extension's dot; the end when there is no extension.
std::size_t ExtensionStart(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return name.size();
  const std::string_view extension = name.substr(dot);
  const bool is_one =
      extension.size() <= kMostExtensionBytes && extension.find(' ') == std::string_view::npos;
  return is_one ? dot : name.size();
}

std::string Cut(std::string_view name) {
  if (name.size() <= kMostNameBytes) return std::string(name);
  const std::string_view extension = name.substr(ExtensionStart(name));
  const std::string_view stem = name.substr(0, name.size() - extension.size());
  const std::size_t length = WholeSequences(stem, kMostNameBytes - extension.size());
  return std::string(TrimEnds(stem.substr(0, length))) + std::string(extension);
}

// Whether a system takes the name for a device, which does not depend on the extension.
bool IsDevice(std::string_view name) {
  static constexpr std::array<std::string_view, 6> kDevices = {"con", "prn",    "aux",
                                                               "nul", "conin$", "conout$"};
  static constexpr std::array<std::string_view, 2> kNumbered = {"com", "lpt"};
  const std::string stem = standin::LowerName(TrimEnds(name.substr(0, name.find('.'))));
  if (std::find(kDevices.begin(), kDevices.end(), stem) != kDevices.end()) return true;
  if (stem.size() != 4 || !base::IsDigit(stem[3])) return false;
  return std::find(kNumbered.begin(), kNumbered.end(), stem.substr(0, 3)) != kNumbered.end();
}

}  // namespace

std::string CleanFileName(std::string_view name) {
  const std::string visible = Visible(name);
  const std::string cut = Cut(WithoutDrive(LastComponent(visible)));
  if (cut.empty()) return std::string(kNameless);
  return IsDevice(cut) ? Cut("_" + cut) : cut;
}

std::string FileNames::Take(const std::string& name) {
  std::size_t& highest = taken_[standin::LowerName(name)];
  if (highest == 0) {
    highest = 1;
    return name;
  }
  const std::size_t extension = ExtensionStart(name);
  while (true) {
    std::string numbered =
        name.substr(0, extension) + " (" + std::to_string(++highest) + ")" + name.substr(extension);
    if (taken_.try_emplace(standin::LowerName(numbered), 1).second) return numbered;
  }
}

}  // namespace zqv::cli
