#include "mime/parser.h"

#include <gtest/gtest.h>
#include <mimetic/mimetic.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "mime/message.h"
#include "tests/unit/mime/tree_difference.h"

namespace zqv::test {
namespace {

std::vector<std::filesystem::path> FilesBelow(const char* folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.path().extension() == ".eml") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string Read(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::string WithCrLf(const std::string& text) {
  std::string with;
  for (const char c : text) {
    if (c == '\n') with += '\r';
    with += c;
  }
  return with;
}

void ExpectSameTrees(const char* folder, std::size_t at_least) {
  const auto files = FilesBelow(folder);
  EXPECT_GE(files.size(), at_least);
  for (const auto& file : files) {
    const std::string message = Read(file);
    EXPECT_EQ(DifferenceFromTheReference(message), "") << file;
    EXPECT_EQ(DifferenceFromTheReference(WithCrLf(message)), "") << file << " with CRLF";
  }
}

TEST(Parser, GivesTheReferencesTreeForEverySample) { ExpectSameTrees(ZQV_SAMPLES, 14); }

TEST(Parser, GivesTheReferencesTreeForEveryTestMessage) { ExpectSameTrees(ZQV_MESSAGES, 40); }

// Compares the trees of every message of up to `length` of these bytes, which covers every sequence
// of states in a header.
void ExpectSameTreesOfAll(const std::string& bytes, std::size_t length) {
  std::vector<std::size_t> digits;
  while (digits.size() <= length) {
    std::string message;
    for (const std::size_t digit : digits) message += bytes[digit];
    const std::string difference = DifferenceFromTheReference(message);
    ASSERT_EQ(difference, "") << ::testing::PrintToString(message);
    std::size_t at = 0;
    while (at < digits.size() && ++digits[at] == bytes.size()) digits[at++] = 0;
    if (at == digits.size()) digits.push_back(0);
  }
}

TEST(Parser, GivesTheReferencesTreeForEveryShortMessage) {
  ExpectSameTreesOfAll(std::string("\r\n\t :;-aA\0\x01\x7F\xC3", 13), 3);
  ExpectSameTreesOfAll("\r\n :a\x01", 6);
  ExpectSameTreesOfAll("\r\n :a", 7);
}

TEST(Parser, GivesTheReferencesTreeForEveryShortHeaderOfAMultipart) {
  const std::string head = "Content-Type: multipart/mixed; boundary=b\n\n--b\n";
  for (const char* first :
       {"\n", "\r\n", "\r", " ", ":", "A", "A:", "A: b", "A b", "\xC3", "--b"}) {
    for (const char* second : {"\n", "\r\n", "\r\r", "\n\n", "\n \n", "\n\t", ":", " "}) {
      for (const char* third : {"", "\n", "C: d\n\n", "--b\n", "\n--b--\n", " e\n"})
        EXPECT_EQ(DifferenceFromTheReference(head + first + second + third + "--b--\nend\n"), "");
    }
  }
}

// The two quirks of the parser that docs/quirks.md lists under this test's name.
TEST(Parser, GivesTheReferencesTree) {
  const auto kind = [](const std::string& type) {
    const std::string message = "Content-Type: " + type + "\n\nA: b\n\nbody\n";
    EXPECT_EQ(DifferenceFromTheReference(message), "") << type;
    return mime::Message(message).top().kind;
  };
  EXPECT_EQ(kind("multipart/mixed"), mime::PartKind::kMultipart);
  EXPECT_EQ(kind("MultiPart/x"), mime::PartKind::kMultipart);
  EXPECT_EQ(kind("message/rfc822"), mime::PartKind::kMessage);
  EXPECT_EQ(kind("Message/RFC822; a=b"), mime::PartKind::kMessage);
  EXPECT_EQ(kind("message /rfc822"), mime::PartKind::kLeaf);
  EXPECT_EQ(kind("message/ rfc822"), mime::PartKind::kLeaf);
  EXPECT_EQ(kind("message/rfc"), mime::PartKind::kLeaf);
  EXPECT_EQ(kind("text/plain"), mime::PartKind::kLeaf);

  // The line "x --b" is not a header field, so it ends the header. The parser had scanned "x " by
  // then, so it finds the boundary in the middle of the line.
  const std::string message =
      "Content-Type: multipart/mixed; boundary=b\n\n--b\nx --b\n\nlast\n--b--\n";
  EXPECT_EQ(DifferenceFromTheReference(message), "");
  const mime::Message parsed(message);
  ASSERT_EQ(parsed.parts().size(), 3U);
  EXPECT_EQ(parsed.parts()[1].body, "x ");
  EXPECT_EQ(parsed.parts()[2].body, "last");
}

TEST(Parser, FoldAfterIgnoredLineStays) {
  const std::string message = ":ignored\n  fold\nA: b\n\nbody";
  const mime::Message parsed(message);
  ASSERT_EQ(parsed.fields().size(), 1U);
  EXPECT_EQ(parsed.fields()[0].name, "A");
  EXPECT_EQ(parsed.fields()[0].value, " foldb");
  EXPECT_EQ(DifferenceFromTheReference(message), "");
}

TEST(Parser, GivesTheReferencesTreeForLongHeaders) {
  for (std::size_t length = 120; length < 140; ++length) {
    const std::string text(length, 'x');
    for (const char* end : {"\n\n", "\n \n", "\r\n\r\n", "", "\n", " :\n\n", "\n\tfolded\n\n"}) {
      EXPECT_EQ(DifferenceFromTheReference(text + ": y" + end), "");
      EXPECT_EQ(DifferenceFromTheReference("A: " + text + end), "");
      EXPECT_EQ(DifferenceFromTheReference(text + end), "");
    }
  }
}

// mimetic copies bodies in blocks of 4 KB, and does not remove a line end that lies across the end
// of a block. The test covers every length around the ends of the first two blocks.
TEST(Parser, GivesTheReferencesTreeForEveryBodyLengthAroundItsBlocks) {
  const std::string head = "Content-Type: multipart/mixed; boundary=b\n\n--b\n\n";
  for (const std::size_t block : {4'060U, 8'150U}) {
    for (std::size_t length = block; length < block + 60; ++length) {
      const std::string line(length, 'x');
      ASSERT_EQ(DifferenceFromTheReference(head + line + "\n--b--\n"), "") << length;
      ASSERT_EQ(DifferenceFromTheReference(head + line + "--b\n\nend\n--b--\n"), "") << length;
    }
  }
}

// The parser skips plain lines 64 bytes at a time, and then 16.
TEST(Parser, GivesTheReferencesTreeForABoundaryAtEachOffset) {
  const std::string head = "Content-Type: multipart/mixed; boundary=b\n\n--b\n\n";
  for (std::size_t length = 0; length < 4 * 64; ++length) {
    const std::string line(length, 'x');
    ASSERT_EQ(DifferenceFromTheReference(head + line + "\n--b\n\nend" + std::string(300, 'y')), "")
        << length;
    ASSERT_EQ(DifferenceFromTheReference(head + line + "-\n" + line + "\n--b--\n" + line), "")
        << length;
  }
}

// A random line: any line end, with or without "--" at its start, and often as long as a block or
// nearly so.
std::string AnyLine(std::mt19937& random) {
  static constexpr const char* kStarts[] = {"",    "",     "",    "-",      "--",  "--b",
                                            "--c", "--b-", "---", "--b--x", "x--", " --b"};
  static constexpr const char* kEnds[] = {"\n", "\n", "\n", "\r\n", "\r\n", "\r", "\n\r", ""};
  static constexpr std::size_t kLengths[] = {0, 0, 1, 2, 76, 76, 1'000, 2'040, 4'080, 4'090};
  const auto below = [&](std::size_t end) { return random() % end; };
  const std::size_t length = kLengths[below(std::size(kLengths))] + below(8);
  return kStarts[below(std::size(kStarts))] + std::string(length, 'x') +
         kEnds[below(std::size(kEnds))];
}

TEST(Parser, GivesTheReferencesTreeForLinesThatFillItsBlocks) {
  std::mt19937 random(1);
  std::size_t with_parts = 0;
  for (int i = 0; i < 4'000; ++i) {
    std::string message =
        "Content-Type: multipart/mixed; boundary=c\n\n--c\nContent-Type: multipart/mixed; "
        "boundary=b\n\n";
    for (std::size_t lines = 1 + random() % 12; lines > 0; --lines) {
      message += AnyLine(random);
      if (random() % 4 == 0) message += "\n--b\n\n";
    }
    if (random() % 2 == 0) message += "\n--b--\nepilogue\n--c--\n";
    ASSERT_EQ(DifferenceFromTheReference(message), "") << ::testing::PrintToString(message);
    const mime::Message parsed(message);
    if (parsed.parts().size() > 2 && parsed.parts()[1].child_count > 0) ++with_parts;
  }
  EXPECT_GT(with_parts, 1'000U);
}

// Makes random changes to a message, the same ones on every run.
class Mutator {
 public:
  explicit Mutator(std::uint32_t seed) : random_(seed) {}

  std::size_t Below(std::size_t end) { return end == 0 ? 0 : random_() % end; }

  std::string Mutate(std::string text) {
    for (std::size_t steps = 1 + Below(4); steps > 0; --steps) {
      switch (Below(8)) {
        case 0:
          FlipBit(text);
          break;
        case 1:
          Cut(text);
          break;
        case 2:
          SwapLines(text);
          break;
        case 3:
          DoubleBoundary(text);
          break;
        case 4:
          Insert(text, std::string(1, '\0'));
          break;
        case 5:
          InsertLongLine(text);
          break;
        case 6:
          Insert(text, kInsertions[Below(std::size(kInsertions))]);
          break;
        default:
          text = WithCrLf(text);
          break;
      }
    }
    return text;
  }

 private:
  static constexpr const char* kInsertions[] = {
      "\n",
      "\r",
      "\r\n",
      "\n\r",
      "\n\n",
      "--",
      "\n--\n",
      ":",
      " ",
      "\t",
      ";",
      "\"",
      "\nContent-Type: multipart/mixed; boundary=\"b\"\n\n--b\n",
      "\n--b\n",
      "\n--b--\n",
      "Content-Type: message/rfc822\n\n"};

  void Insert(std::string& text, const std::string& what) {
    text.insert(Below(text.size() + 1), what);
  }

  void FlipBit(std::string& text) {
    if (text.empty()) return;
    char& byte = text[Below(text.size())];
    byte = static_cast<char>(static_cast<unsigned char>(byte) ^ (1U << Below(8)));
  }

  void Cut(std::string& text) {
    const std::size_t from = Below(text.size() + 1);
    text.erase(from, Below(2) == 0 ? std::string::npos : Below(60));
  }

  static std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = std::min(text.find('\n', at), text.size() - 1);
      lines.push_back(text.substr(at, end + 1 - at));
      at = end + 1;
    }
    return lines;
  }

  static std::string Join(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line;
    return text;
  }

  void SwapLines(std::string& text) {
    std::vector<std::string> lines = Lines(text);
    if (!lines.empty()) std::swap(lines[Below(lines.size())], lines[Below(lines.size())]);
    text = Join(lines);
  }

  void DoubleBoundary(std::string& text) {
    std::vector<std::string> lines = Lines(text);
    std::vector<std::size_t> boundaries;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (lines[i].compare(0, 2, "--") == 0) boundaries.push_back(i);
    }
    if (boundaries.empty()) return;
    const std::string boundary = lines[boundaries[Below(boundaries.size())]];
    const std::size_t at =
        Below(2) == 0 ? boundaries[Below(boundaries.size())] : Below(lines.size());
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at), boundary);
    text = Join(lines);
  }

  // Inserts a line of such a length that mimetic's copy buffer is full before another line of the
  // message.
  void InsertLongLine(std::string& text) {
    std::vector<std::string> lines = Lines(text);
    const std::string line =
        std::string(4'083 + Below(14), Below(4) == 0 ? '-' : 'x') + (Below(2) == 0 ? "\n" : "");
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(Below(lines.size() + 1)), line);
    text = Join(lines);
  }

  std::mt19937 random_;
};

bool HasParts(const std::string& message) { return mime::Message(message).top().child_count > 0; }

TEST(Parser, GivesTheReferencesTreeForMutatedMessages) {
  constexpr int kMutations = 6'000;
  std::vector<std::string> seeds;
  std::vector<std::string> multiparts;
  for (const char* folder : {ZQV_SAMPLES, ZQV_MESSAGES}) {
    for (const auto& file : FilesBelow(folder)) {
      seeds.push_back(Read(file));
      if (HasParts(seeds.back())) multiparts.push_back(seeds.back());
    }
  }
  ASSERT_FALSE(multiparts.empty());
  Mutator mutator(20'240'607);
  int with_parts = 0;
  for (int i = 0; i < kMutations; ++i) {
    const auto& from = i % 2 == 0 ? seeds : multiparts;
    const std::string message = mutator.Mutate(from[mutator.Below(from.size())]);
    if (HasParts(message)) ++with_parts;
    ASSERT_EQ(DifferenceFromTheReference(message), "") << "mutation " << i << ":\n" << message;
  }
  // Most mutated messages should keep a structure, because a comparison of single parts would show
  // little.
  EXPECT_GT(with_parts, kMutations / 3);
}

// Two messages that differ in one respect, and the description that the comparison must give.
struct DifferentMessages {
  const char* name;
  const char* reference;
  const char* message;
  const char* difference;
};

void PrintTo(const DifferentMessages& row, std::ostream* out) { *out << row.name; }

class TreeDifference : public ::testing::TestWithParam<DifferentMessages> {};

TEST_P(TreeDifference, IsSeen) {
  const std::string text = GetParam().reference;
  std::istringstream stream(text);
  const mimetic::MimeEntity reference(stream);
  EXPECT_EQ(FirstDifference(reference, mime::Message(GetParam().message)), GetParam().difference);
  EXPECT_EQ(FirstDifference(reference, mime::Message(text)), "");
}

#define ZQV_MULTIPART "Content-Type: multipart/mixed; boundary=b\n\n"
constexpr DifferentMessages kDifferentMessages[] = {
    {"FieldCount", "A: 1\n\n", "A: 1\nB: 2\n\n", "message: 1 or 2 fields"},
    {"FieldName", "A: 1\n\n", "a: 1\n\n", "message: the name of field 0"},
    {"FieldValue", "A: 1\nB: 2\n\n", "A: 1\nB: 2 \n\n", "message: the value of field 1"},
    {"Kind", "Content-Type: text/plain\n\n", "Content-Type: message/rfc822\n\n",
     "message: the kind"},
    {"Body", "A: 1\n\nx\n", "A: 1\n\nx\r\n", "message: the body"},
    {"Preamble", ZQV_MULTIPART "p\n--b\n\n--b--\n", ZQV_MULTIPART "q\n--b\n\n--b--\n",
     "message: the preamble"},
    {"Epilogue", ZQV_MULTIPART "--b\n\n--b--\np\n", ZQV_MULTIPART "--b\n\n--b--\nq\n",
     "message: the epilogue"},
    {"PartCount", ZQV_MULTIPART "--b\n\n--b--\n", ZQV_MULTIPART "--b\n\n--b\n\n--b--\n",
     "message: 1 or 2 parts"},
    {"BodyOfAPart", ZQV_MULTIPART "--b\n\n--b\n\nx\n--b--\n",
     ZQV_MULTIPART "--b\n\n--b\n\ny\n--b--\n", "message, part 1: the body"},
    {"FieldOfADeepPart", ZQV_MULTIPART "--b\nContent-Type: message/rfc822\n\nA: 1\n\n--b--\n",
     ZQV_MULTIPART "--b\nContent-Type: message/rfc822\n\nA: 2\n\n--b--\n",
     "message, part 0, part 0: the value of field 0"},
};
INSTANTIATE_TEST_SUITE_P(Messages, TreeDifference, ::testing::ValuesIn(kDifferentMessages),
                         [](const auto& row) { return row.param.name; });

// mimetic has a second algorithm for random-access iterators, which finds a boundary inside a line.
// Our parser follows the one for streams.
TEST(Parser, IsNotMimeticsAlgorithmForRandomAccess) {
  const std::string message = ZQV_MULTIPART "--b\n\nnot a --b\n\nboundary\n--b--\n";
  const mimetic::MimeEntity other(message.begin(), message.end());
  const mime::Message parsed(message);
  EXPECT_EQ(parsed.top().child_count, 1U);
  EXPECT_EQ(other.body().parts().size(), 2U);
  EXPECT_NE(FirstDifference(other, parsed), "");
}

// A boundary of an outer multipart ends the parse. The text after it is in no part.
TEST(Parser, InnerMultipartWithoutEndLosesTheRest) {
  const std::string parsed_bytes =
      ZQV_MULTIPART "--b\nContent-Type: multipart/mixed; boundary=i\n\n--i\n\ninner\n--b\n";
  const std::string message = parsed_bytes + "\nlost\n--b--\nepilogue\n";
  const mime::Message parsed(message);
  ASSERT_EQ(parsed.parts().size(), 3U);
  EXPECT_EQ(parsed.top().child_count, 1U);
  EXPECT_EQ(parsed.parts()[2].body, "inner");
  EXPECT_EQ(parsed.top().epilogue, "");
  EXPECT_EQ(parsed.parsed_size(), parsed_bytes.size());
  EXPECT_EQ(DifferenceFromTheReference(message), "");
  const std::string closing =
      ZQV_MULTIPART "--b\nContent-Type: multipart/mixed; boundary=i\n\n--i\n\ninner\n--b--\nlost\n";
  EXPECT_EQ(DifferenceFromTheReference(closing), "");
  EXPECT_EQ(mime::Message(closing).top().epilogue, "");
  EXPECT_FALSE(mime::Message(closing).top().is_closed);
}

}  // namespace
}  // namespace zqv::test
