// The boundaries of the multiparts that are being read.
//
// A message may nest thousands of multiparts and have a million lines that begin like a boundary:
// asking each boundary about each line would cost the product. Here a line costs its length.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zqv::mime {

// Stand before the boundary parameter in every boundary, and behind it in a closing one.
inline constexpr std::string_view kHyphens = "--";

class OpenBoundaries {
 public:
  // `boundary` is the parameter, without hyphens. It must outlive this.
  void Push(std::string_view boundary) { open_.push_back({boundary, 0, false}); }
  // Closes the innermost; there must be one.
  void Pop();

  bool IsEmpty() const { return open_.empty(); }
  std::string_view Innermost() const { return open_.back().text; }
  // Whether `line`, its two hyphens taken off, begins with any of them.
  bool AnyBegins(std::string_view line);

 private:
  struct Boundary {
    std::string_view text;
    std::uint64_t hash;
    bool is_known;  // an equal one was open already, and stands for both
  };

  void Index();
  bool Finds(std::uint64_t hash, std::string_view text) const;

  std::vector<Boundary> open_;  // innermost last
  // The first so many are found by length and hash. The others have not been asked for: mail with a
  // few levels never needs the index.
  std::size_t indexed_ = 0;
  std::vector<std::uint32_t> lengths_;  // how many have each length, those that are known left out
  std::unordered_multimap<std::uint64_t, std::size_t> by_hash_;  // indexes of the same
};

}  // namespace zqv::mime
