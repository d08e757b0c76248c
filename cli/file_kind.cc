#include "cli/file_kind.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "base/ascii.h"
#include "base/unicode.h"
#include "cli/text.h"

namespace zqv::cli {
namespace {

struct Kind {
  std::string_view start;
  const char* words;
};
constexpr Kind kKinds[] = {
    {"\x7F"
     "ELF",
     "a program"},
    {"MZ", "a program"},
    {"#!", "a script"},
    {"\xD0\xCF\x11\xE0", "an OLE file, such as .msg, .doc or Thumbs.db"},
    {"PK\x05\x06", "an empty archive"},
    {"7z\xBC\xAF", "an archive of a kind that is not read"},
    {"Rar!", "an archive of a kind that is not read"},
    {"%PDF", "a PDF document"},
    {"\x89PNG", "a picture"},
    {"GIF8", "a picture"},
    {"\xFF\xD8\xFF", "a picture"},
    {"SQLite format 3", "a database"},
};

// Whether a character may be in the name of a field (RFC 5322, section 2.2).
bool IsNameCharacter(char c) { return c > ' ' && c < '\x7F' && c != ':'; }

// Whether a line begins like a field, such as "Subject: x". Blanks before the colon are accepted.
bool IsField(std::string_view line) {
  const auto end = std::find_if_not(line.begin(), line.end(), IsNameCharacter);
  const auto length = static_cast<std::size_t>(end - line.begin());
  const std::string_view rest = Trim(line.substr(length));
  return length > 0 && !rest.empty() && rest.front() == ':';
}

}  // namespace

std::string_view MessageInEmlx(std::string_view file) {
  const std::size_t line_end = file.find('\n');
  const std::optional<std::size_t> size = ReadNumber(Trim(file.substr(0, line_end)));
  const bool is_one = line_end != std::string_view::npos && size.has_value();
  return is_one ? file.substr(line_end + 1, *size) : std::string_view();
}

std::string WhyNotAMessage(std::string_view start) {
  start = base::WithoutByteOrderMark(start);
  for (const Kind& kind : kKinds) {
    if (start.substr(0, kind.start.size()) == kind.start) return kind.words;
  }
  // The library reports an empty file and a first byte above 0x7F itself.
  if (start.empty() || static_cast<unsigned char>(start.front()) >= 0x80) return {};
  bool has_zero = false;
  while (!start.empty()) {
    const std::size_t end = std::min(start.find_first_of("\r\n"), start.size());
    const std::string_view line = start.substr(0, end);
    if (IsField(line)) return {};
    has_zero = has_zero || line.find('\0') != std::string_view::npos;
    start.remove_prefix(std::min(start.size(), end + 1));
  }
  return has_zero ? "a file of bytes" : "a text without header fields";
}

}  // namespace zqv::cli
