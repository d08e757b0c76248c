// The multiparts whose closing delimiter has not come yet, and which of them a line belongs to.
//
// A delimiter line begins with two hyphens and the boundary (RFC 2046, section 5.1.1); what follows
// on it does not matter. Of several that fit the innermost counts. A line costs its length, however
// many are open.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zqv::cli {

class OpenMultiparts {
 public:
  // What a delimiter line says: which multipart it is of, counted from the outermost, and whether
  // it closes that.
  struct Delimiter {
    std::size_t depth;
    bool closes;
  };

  // The boundary of a multipart within all that are open.
  void Push(std::string_view boundary);
  // The innermost is done with; there must be one.
  void Pop();
  std::size_t size() const { return open_.size(); }

  // Nothing for a line that is none. `line` has no line end.
  std::optional<Delimiter> Find(std::string_view line) const;

 private:
  // With both hyphens. A longer boundary, which is against the rules, is looked for only as that
  // of the innermost multipart, and as a whole line.
  static constexpr std::size_t kLongest = 72;

  std::optional<std::size_t> FindText(std::string_view text) const;
  std::optional<std::size_t> FindOuter(std::string_view line) const;

  std::vector<std::string> open_;  // with the hyphens; innermost last
  std::unordered_map<std::string, std::vector<std::size_t>> depths_;  // of each text
  std::array<std::size_t, kLongest + 1> count_by_length_ = {};
};

}  // namespace zqv::cli
