// Random messages for the comparison of our parser with mimetic's: several parts, nested
// multiparts, attached messages, lines that resemble boundaries, and all kinds of line ends. Many
// texts have line ends and boundaries at the position where mimetic's buffer is full.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::test {

// mimetic's buffer is full after this many bytes of a text.
inline constexpr std::size_t kLibraryBuffer = 4093;

class MessageMaker {
 public:
  // An equal seed gives equal messages.
  explicit MessageMaker(std::uint64_t seed) : random_(seed) {}

  // Returns the next message, of 4 KB to a little more than 64 KB.
  std::string Make();

 private:
  std::size_t Below(std::size_t end) { return random_() % end; }
  bool OneIn(std::size_t count) { return Below(count) == 0; }

  void EndLine();
  void Add(std::string_view line);
  void AddPart(std::size_t depth, std::size_t size);
  void AddMultipart(std::size_t depth, std::size_t size);
  void AddText(std::size_t size);
  void AddLine(std::size_t length);
  void AddBoundaryLikeLine();
  void AddLineEndsAtEdge(std::size_t text_start);

  std::mt19937_64 random_;
  std::string message_;
  std::vector<std::string> boundaries_;  // of the unfinished multiparts, innermost last
  std::size_t line_end_ =
      0;  // index of the message's line end in kLineEnds, or larger for mixed line ends
};

}  // namespace zqv::test
