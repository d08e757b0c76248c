// Random messages for the comparison of our parser with the MIME library's: several parts, nested
// multiparts, attached messages, lines that look like boundaries, all kinds of line ends, and above
// all texts that have their line ends and boundaries where the library's buffer is full.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::test {

// Bytes of a text that fill the library's buffer.
inline constexpr std::size_t kLibraryBuffer = 4093;

class MessageMaker {
 public:
  // Makes the same messages for the same seed.
  explicit MessageMaker(std::uint64_t seed) : random_(seed) {}

  // The next message, of 4 to 64 KB or a little more.
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
  std::vector<std::string> boundaries_;  // of the multiparts that are being made, innermost last
  std::size_t line_end_ = 0;             // which kind this message has
};

}  // namespace zqv::test
