// A stack of the boundaries of the open multiparts, which are those that the parser is inside of,
// with a fast test whether a line begins with one of these boundaries.
//
// A message may nest thousands of multiparts and contain a million lines that begin with "--".
// Comparing each line with each boundary would take time in proportion to the product of both
// numbers. With the index here, a line takes time in proportion to its length.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zqv::mime {

// The hyphens before the boundary parameter in a boundary line, and also after it in a closing
// boundary line (RFC 2046, section 5.1.1).
inline constexpr std::string_view kHyphens = "--";

class OpenBoundaries {
 public:
  // Opens a multipart. `boundary` is its boundary parameter, without kHyphens. [borrowed: the bytes
  // must outlive this object]
  void Push(std::string_view boundary) { open_.push_back({boundary, 0, false}); }
  // Closes the innermost open multipart. There must be one.
  void Pop();

  bool IsEmpty() const { return open_.empty(); }
  // The boundary of the innermost open multipart. There must be one.
  std::string_view Innermost() const { return open_.back().text; }
  // Whether `line`, given without its leading kHyphens, begins with any of the open boundaries.
  bool AnyBegins(std::string_view line);

 private:
  struct Boundary {
    std::string_view text;
    std::uint64_t hash;  // of `text`; set when the boundary is added to the index
    bool is_duplicate;   // left out of the index, because an equal boundary is in it
  };

  void Index();
  bool Finds(std::uint64_t hash, std::string_view text) const;

  std::vector<Boundary> open_;  // innermost last
  // The index, made of the three members below, covers the first `indexed_` boundaries. AnyBegins
  // brings it up to date, and uses it only when more than a few boundaries are open.
  std::size_t indexed_ = 0;
  std::vector<std::uint32_t> lengths_;  // number of distinct indexed boundaries of each length
  std::unordered_multimap<std::uint64_t, std::size_t> by_hash_;  // from a hash to indexes in open_
};

}  // namespace zqv::mime
