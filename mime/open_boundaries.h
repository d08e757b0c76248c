// The boundaries of the multiparts that the parser is inside of, as a stack, with a fast test
// whether a line begins with one of them.
//
// A message may nest thousands of multiparts and contain a million lines that begin with "--".
// Comparing each line with each boundary would take the product of both. With the index here, a
// line takes time in proportion to its length.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zqv::mime {

// Stands before the boundary parameter in a boundary line, and also after it in a closing one
// (RFC 2046, section 5.1.1).
inline constexpr std::string_view kHyphens = "--";

class OpenBoundaries {
 public:
  // Opens a multipart. `boundary` is the parameter, without leading hyphens. [borrowed: it must
  // outlive this object]
  void Push(std::string_view boundary) { open_.push_back({boundary, 0, false}); }
  // Closes the innermost multipart. There must be one.
  void Pop();

  bool IsEmpty() const { return open_.empty(); }
  // The boundary of the innermost multipart. There must be one.
  std::string_view Innermost() const { return open_.back().text; }
  // Whether `line`, without its leading hyphens, begins with any of the open boundaries.
  bool AnyBegins(std::string_view line);

 private:
  struct Boundary {
    std::string_view text;
    std::uint64_t hash;
    bool is_duplicate;  // not in the index, because an equal boundary is
  };

  void Index();
  bool Finds(std::uint64_t hash, std::string_view text) const;

  std::vector<Boundary> open_;  // innermost last
  // The index covers the first `indexed_` boundaries. It is brought up to date when it is used,
  // which is never as long as only a few boundaries are open.
  std::size_t indexed_ = 0;
  std::vector<std::uint32_t> lengths_;  // number of distinct indexed boundaries of each length
  std::unordered_multimap<std::uint64_t, std::size_t> by_hash_;  // from a hash to indexes in open_
};

}  // namespace zqv::mime
