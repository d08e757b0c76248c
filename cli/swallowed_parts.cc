#include "cli/swallowed_parts.h"

#include <algorithm>
#include <cstddef>

#include "base/ascii.h"
#include "cli/line_numbers.h"
#include "mime/line_ends.h"
#include "mime/open_boundaries.h"

namespace zqv::cli {
namespace {

using mime::kHyphens;
using mime::PartIndex;

bool IsPrefix(std::string_view prefix, std::string_view text) {
  return text.substr(0, prefix.size()) == prefix;
}

// Whether a line is a boundary, also a closing one.
bool IsDelimiter(std::string_view line, std::string_view boundary) {
  return IsPrefix(kHyphens, line) && IsPrefix(boundary, line.substr(kHyphens.size()));
}
bool IsClosing(std::string_view line, std::string_view boundary) {
  return IsPrefix(kHyphens, line.substr(kHyphens.size() + boundary.size()));
}

const char* EndOf(std::string_view text) { return text.data() + text.size(); }

// The text from `begin` to `end`. Empty when `end` is before `begin`.
std::string_view Between(const char* begin, const char* end) {
  return {begin, end > begin ? static_cast<std::size_t>(end - begin) : 0};
}

// Finds the part that ends at a boundary in the header of part `index`: the part itself or the
// ancestor whose parent is the multipart of that boundary.
PartIndex FindDivided(const std::vector<mime::Part>& parts, PartIndex index,
                      std::string_view line) {
  while (parts[index].parent != mime::kNoPart) {
    const mime::Part& around = parts[parts[index].parent];
    if (around.kind == mime::PartKind::kMultipart && IsDelimiter(line, around.boundary)) break;
    index = parts[index].parent;
  }
  return index;
}

// Where the text before a boundary ends. The line end before the boundary line at `at` belongs to
// the boundary.
const char* EndBefore(const char* at, const char* begin) {
  if (at - begin >= 2 && mime::IsPair(at[-1], at[-2])) return at - 2;
  return at - begin >= 1 && base::IsLineEnd(at[-1]) ? at - 1 : at;
}

}  // namespace

std::vector<std::string_view> PartsBetween(std::string_view text, std::string_view boundary) {
  std::vector<std::string_view> parts;
  const char* begin = nullptr;    // of the current part
  const char* end = text.data();  // of the last line, without its line end
  bool is_closed = false;
  ForEachLine(text, [&](std::string_view line, std::string_view line_end) {
    if (!is_closed && IsDelimiter(line, boundary)) {
      if (begin != nullptr) parts.push_back(Between(begin, end));
      is_closed = IsClosing(line, boundary);
      begin = is_closed ? nullptr : EndOf(line) + line_end.size();
    }
    end = EndOf(line);
  });
  if (begin != nullptr) parts.push_back(Between(begin, EndOf(text)));
  return parts;
}

std::vector<PartExtent> ExtentsOf(const MessageSource& source) {
  const std::vector<mime::Part>& parts = source.parts();
  std::vector<PartExtent> extents(parts.size());
  for (PartIndex i = 0; i < parts.size(); ++i) {
    const std::string_view whole = parts[i].whole;
    extents[i].own = Between(whole.data(), std::min(EndOf(whole), EndOf(source.written())));
  }
  const std::vector<std::string_view> lines = BoundariesInHeaders(source);
  std::string_view swallowed;
  for (PartIndex i = 0; i < parts.size(); ++i) {
    const char* const begin = parts[i].whole.data();
    if (begin > swallowed.data() && begin < EndOf(swallowed)) {
      extents[i].is_swallowed = true;
      continue;
    }
    if (lines[i].data() == nullptr) continue;
    const PartIndex divided = FindDivided(parts, i, lines[i]);
    if (parts[divided].parent == mime::kNoPart) continue;
    const std::string_view whole = extents[divided].own;
    const char* const end = EndBefore(lines[i].data(), whole.data());
    swallowed = Between(lines[i].data(), EndOf(whole));
    for (PartIndex at = i; at != parts[divided].parent; at = parts[at].parent) {
      extents[at].own = Between(parts[at].whole.data(), end);
    }
    extents[divided].swallowed = PartsBetween(swallowed, parts[parts[divided].parent].boundary);
  }
  return extents;
}

}  // namespace zqv::cli
