// Up to eight open boundaries are compared with a line one by one. More open boundaries are kept in
// a hash table. Then each prefix of the line that is as long as at least one boundary is looked up;
// the hashes of the prefixes are computed incrementally:
//
//   open "b1", "b22"; line "b22--"     looks up the prefixes "b2" and "b22"
#include "mime/open_boundaries.h"

#include <algorithm>

#include "base/fnv.h"

namespace zqv::mime {
namespace {

constexpr std::size_t kFew = 8;

bool Begins(std::string_view line, std::string_view start) {
  return line.substr(0, start.size()) == start;
}

}  // namespace

void OpenBoundaries::Pop() {
  const Boundary last = open_.back();
  open_.pop_back();
  if (indexed_ <= open_.size()) return;
  indexed_ = open_.size();
  if (last.is_duplicate) return;
  --lengths_[last.text.size()];
  const auto [found, end] = by_hash_.equal_range(last.hash);
  by_hash_.erase(
      std::find_if(found, end, [&](const auto& entry) { return entry.second == indexed_; }));
}

// Adds the boundaries that are not yet in the index to it.
void OpenBoundaries::Index() {
  for (; indexed_ < open_.size(); ++indexed_) {
    Boundary& boundary = open_[indexed_];
    const std::size_t length = boundary.text.size();
    boundary.hash = base::Fnv(boundary.text);
    boundary.is_duplicate = Finds(boundary.hash, boundary.text);
    if (boundary.is_duplicate) continue;
    if (length >= lengths_.size()) lengths_.resize(length + 1);
    by_hash_.emplace(boundary.hash, indexed_);
    ++lengths_[length];
  }
}

// Whether the index has a boundary equal to `text`, whose hash is `hash`.
bool OpenBoundaries::Finds(std::uint64_t hash, std::string_view text) const {
  const auto [found, end] = by_hash_.equal_range(hash);
  return std::any_of(found, end,
                     [&](const auto& entry) { return open_[entry.second].text == text; });
}

bool OpenBoundaries::AnyBegins(std::string_view line) {
  if (open_.size() <= kFew) {
    return std::any_of(open_.begin(), open_.end(),
                       [&](const Boundary& boundary) { return Begins(line, boundary.text); });
  }
  Index();
  std::uint64_t hash = base::kFnvOfNothing;
  for (std::size_t length = 0; length < lengths_.size(); ++length) {
    if (lengths_[length] > 0 && Finds(hash, line.substr(0, length))) return true;
    if (length == line.size()) break;
    hash = base::ExtendFnv(hash, line[length]);
  }
  return false;
}

}  // namespace zqv::mime
