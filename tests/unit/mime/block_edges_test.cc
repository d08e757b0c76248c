// mimetic reads a text through a buffer that is full at 4,093 bytes, and its result depends on the
// line ends at the buffer's edge. Our parser must give the same result, whatever bytes lie there.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "mime/message.h"
#include "tests/support/every_text.h"
#include "tests/unit/mime/message_maker.h"
#include "tests/unit/mime/tree_difference.h"

namespace zqv::test {
namespace {

// Every run of one to five CRs and LFs, and runs of three to five CRLFs or LFCRs.
std::vector<std::string> Runs() {
  std::vector<std::string> runs;
  for (unsigned length = 1; length <= 5; ++length) {
    for (unsigned bits = 0; bits < 1U << length; ++bits) {
      std::string run;
      for (unsigned i = 0; i < length; ++i) run += (bits >> i & 1U) != 0 ? '\r' : '\n';
      runs.push_back(run);
    }
  }
  for (const char* pair : {"\r\n", "\n\r"}) {
    std::string run;
    for (int count = 1; count <= 5; ++count) {
      run += pair;
      if (run.size() > 5) runs.push_back(run);
    }
  }
  return runs;
}

// What follows the run of line ends, and whether the text before the run is a single line.
struct EdgeRow {
  const char* name;
  std::string_view behind;
  bool is_one_line;
};

void PrintTo(const EdgeRow& row, std::ostream* out) { *out << row.name; }

// Our parser searches a text in blocks of sixteen bytes, from the start of a line. The distance
// from there to the buffer's edge must therefore take every value modulo sixteen. For the first
// edge, a first line of that length, which begins with "-", sets the distance; for the second, the
// length of all lines does.
constexpr std::size_t kAlignments = 16;
constexpr std::size_t kAlignmentStep = kIsSlowBuild ? 5 : 1;
// The lengths of the text before the line ends are those around an edge.
constexpr std::size_t kLengths = 41;
constexpr std::size_t kLengthStep = kIsSlowBuild ? 4 : 1;

struct Layout {
  std::string text;                // long enough for both edges
  std::vector<std::size_t> edges;  // offsets in the text at which mimetic's buffer is full
};

Layout OneLine() { return {std::string(3 * kLibraryBuffer, 'x'), {4'093, 8'186}}; }

// Lines that end in CRLF. When a line does not fit into the buffer, the buffer restarts at that
// line.
Layout Lines(std::size_t alignment) {
  Layout layout{"-" + std::string(alignment, 'x') + "\r\n", {}};
  const std::string line = std::string(60 + alignment, 'x') + "\r\n";
  std::size_t edge = kLibraryBuffer;
  while (layout.edges.size() < 2) {
    const std::size_t line_start = layout.text.size();
    layout.text += line;
    if (layout.text.size() <= edge) continue;
    layout.edges.push_back(edge);
    edge = line_start + kLibraryBuffer;
  }
  layout.text.append(kLibraryBuffer, 'x');
  return layout;
}

class BlockEdges : public ::testing::TestWithParam<EdgeRow> {
 protected:
  // Compares every run at each position around the edges. A header field of `alignment` bytes
  // before the text moves the text in memory. Counts the comparisons.
  ::testing::AssertionResult AgreeAround(const Layout& layout, std::size_t alignment) {
    const std::string head =
        "Content-Type: multipart/mixed; boundary=o\n\n--o\n"
        "Content-Type: multipart/mixed; boundary=b\n\n--b\nA: " +
        std::string(alignment, 'x') + "\n\n";
    for (const std::size_t edge : layout.edges) {
      for (std::size_t i = 0; i < kLengths; i += kLengthStep) {
        const std::size_t length = edge - 23 + i;
        const std::string text = head + layout.text.substr(0, length);
        for (const std::string& run : runs_) {
          const std::string difference =
              DifferenceFromTheReference(text + run + std::string(GetParam().behind));
          ++compared_;
          if (difference.empty()) continue;
          return ::testing::AssertionFailure() << difference << ", after " << length
                                               << " bytes and " << ::testing::PrintToString(run);
        }
      }
    }
    return ::testing::AssertionSuccess();
  }

  const std::vector<std::string> runs_ = Runs();
  std::size_t compared_ = 0;
};

TEST_P(BlockEdges, GiveTheReferencesTreeForEveryRunOfLineEnds) {
  std::size_t layouts = 0;
  if (GetParam().is_one_line) {
    ASSERT_TRUE(AgreeAround(OneLine(), 0));
    ++layouts;
  } else {
    for (std::size_t alignment = 0; alignment < kAlignments; alignment += kAlignmentStep) {
      ASSERT_TRUE(AgreeAround(Lines(alignment), alignment)) << alignment;
      ++layouts;
    }
  }
  EXPECT_EQ(compared_, layouts * 2 * (1 + (kLengths - 1) / kLengthStep) * (62 + 6));
}

constexpr EdgeRow kEdges[] = {
    // clang-format off
    {"End",                    "",                                     false},
    {"EndAfterOneLine",        "",                                     true},
    {"Boundary",               "--b\n\nnext\n--b--\nend\n--o--\n",     false},
    {"BoundaryAfterOneLine",   "--b\n\nnext\n--b--\nend\n--o--\n",     true},
    {"Closing",                "--b--\r\nend\r\n--o--\r\n",            false},
    {"OuterBoundary",          "--o\r\n\r\nnext\r\n--o--\r\n",         false},
    {"Hyphen",                 "-\r\nx\r\n--b--\r\n",                  false},
    {"HyphenAndEnd",           "-",                                    true},
    {"TwoHyphens",             "--\nx\n--b--\n",                       false},
    {"TwoHyphensAfterOneLine", "--x\n\n--b--\n",                       true},
    {"Letter",                 "x\r\n--b--\r\n",                       false},
    {"LetterAfterOneLine",     "x\r--b--\r",                           true},
    // clang-format on
};
INSTANTIATE_TEST_SUITE_P(Behind, BlockEdges, ::testing::ValuesIn(kEdges),
                         [](const auto& row) { return row.param.name; });

TEST(BlockEdgesOfRandomMessages, GiveTheReferencesTree) {
  constexpr std::uint64_t kMessages = 3'000;
  std::size_t parts = 0;
  for (std::uint64_t seed = 1; seed <= kMessages; ++seed) {
    const std::string message = MessageMaker(seed).Make();
    ASSERT_EQ(DifferenceFromTheReference(message), "") << "message " << seed;
    parts += mime::Message(message).parts().size();
  }
  EXPECT_GT(parts, 3 * kMessages) << "most messages should have several parts";
}

}  // namespace
}  // namespace zqv::test
