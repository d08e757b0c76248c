#include "mime/open_boundaries.h"

#include <algorithm>
#include <utility>

#include "base/fnv.h"

namespace zqv::mime {

void OpenBoundaries::Push(std::string boundary) {
  const std::uint64_t hash = base::Fnv(boundary);
  const std::size_t length = boundary.size();
  const bool is_known = Finds(hash, boundary);
  if (!is_known) {
    if (length >= lengths_.size()) lengths_.resize(length + 1);
    by_hash_.emplace(hash, open_.size());
  }
  open_.push_back({std::move(boundary), hash, is_known});
  if (!is_known) ++lengths_[length];
}

void OpenBoundaries::Pop() {
  const Boundary& last = open_.back();
  if (!last.is_known) {
    --lengths_[last.text.size()];
    auto [found, end] = by_hash_.equal_range(last.hash);
    by_hash_.erase(std::find_if(
        found, end, [&](const auto& entry) { return entry.second == open_.size() - 1; }));
  }
  open_.pop_back();
}

bool OpenBoundaries::Finds(std::uint64_t hash, std::string_view text) const {
  const auto [found, end] = by_hash_.equal_range(hash);
  return std::any_of(found, end,
                     [&](const auto& entry) { return open_[entry.second].text == text; });
}

bool OpenBoundaries::AnyBegins(std::string_view line) const {
  std::uint64_t hash = base::kFnvOfNothing;
  for (std::size_t length = 1; length <= line.size() && length < lengths_.size(); ++length) {
    hash = base::ExtendFnv(hash, line[length - 1]);
    if (lengths_[length] > 0 && Finds(hash, line.substr(0, length))) return true;
  }
  return false;
}

}  // namespace zqv::mime
