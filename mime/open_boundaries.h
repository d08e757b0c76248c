// The boundaries of the multiparts that are being read.
//
// A message may nest thousands of multiparts and have a million lines that begin like a boundary:
// asking each boundary about each line would cost the product. Here a line costs its length.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zqv::mime {

class OpenBoundaries {
 public:
  // `boundary` with the two hyphens in front.
  void Push(std::string boundary);
  // The innermost is done with; there must be one.
  void Pop();

  bool IsEmpty() const { return open_.empty(); }
  std::string_view Innermost() const { return open_.back().text; }
  // Whether `line` begins with any of them.
  bool AnyBegins(std::string_view line) const;

 private:
  struct Boundary {
    std::string text;
    std::uint64_t hash;
    bool is_known;  // an equal one was open already, and stands for both
  };

  bool Finds(std::uint64_t hash, std::string_view text) const;

  std::vector<Boundary> open_;  // innermost last
  // Those that are not known twice: how many have each length, and where they are by hash.
  std::vector<std::uint32_t> lengths_;
  std::unordered_multimap<std::uint64_t, std::size_t> by_hash_;
};

}  // namespace zqv::mime
