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
#include <stdexcept>
#include <string>
#include <vector>

#include "mime/limits.h"
#include "tests/support/thread_stack.h"
#include "tests/unit/mime/nested_message.h"
#include "tests/unit/mime/tree_difference.h"

namespace zqv::test {
namespace {

// How ours, with the texts and without, and the library's own stream constructor differ
// on `message`; empty when they agree.
std::string DifferenceFromTheLibrary(const std::string& message) {
  std::istringstream stream(message);
  const mimetic::MimeEntity expected(stream);
  mimetic::MimeEntity entity;
  mime::ParseMessage(message, entity);
  const std::string difference = FirstDifference(expected, entity);
  if (!difference.empty()) return difference;
  mime::MessageTexts texts;
  mimetic::MimeEntity without_texts;
  mime::ParseMessage(message, without_texts, texts);
  PutBack(texts, without_texts);
  return FirstDifference(expected, without_texts);
}

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
    EXPECT_EQ(DifferenceFromTheLibrary(message), "") << file;
    EXPECT_EQ(DifferenceFromTheLibrary(WithCrLf(message)), "") << file << " with CRLF";
  }
}

TEST(Parser, GivesTheLibrarysTreeForEverySample) { ExpectSameTrees(ZQV_SAMPLES, 14); }

TEST(Parser, GivesTheLibrarysTreeForEveryTestMessage) { ExpectSameTrees(ZQV_MESSAGES, 40); }

// Every message of up to `length` bytes of these; so every turn that a header can take.
void ExpectSameTreesOfAll(const std::string& bytes, std::size_t length) {
  std::vector<std::size_t> digits;
  while (digits.size() <= length) {
    std::string message;
    for (const std::size_t digit : digits) message += bytes[digit];
    const std::string difference = DifferenceFromTheLibrary(message);
    ASSERT_EQ(difference, "") << ::testing::PrintToString(message);
    std::size_t at = 0;
    while (at < digits.size() && ++digits[at] == bytes.size()) digits[at++] = 0;
    if (at == digits.size()) digits.push_back(0);
  }
}

TEST(Parser, LeavesTheBodiesOfLeavesWhereTheyLie) {
  const std::string message =
      "Content-Type: multipart/mixed; boundary=b\n\nbefore\n--b\n\nfirst\n--b\n\n--b--\nafter\n";
  mime::MessageTexts texts;
  mimetic::MimeEntity entity;
  mime::ParseMessage(message, entity, texts);
  const mimetic::MimeEntity& first = *entity.body().parts().front();
  EXPECT_EQ(first.body(), "");
  EXPECT_EQ(texts.BodyOf(first), "first");
  EXPECT_EQ(texts.BodyOf(first).data(), message.data() + message.find("first"));
  EXPECT_EQ(texts.BodyOf(entity), "") << "it has parts";
  EXPECT_EQ(entity.body().preamble(), "before");
}

// A line that is no field is read with the header, and the body begins with it.
TEST(Parser, CopiesABodyThatBeginsInItsHeader) {
  const std::string message = "A: b\nno field\nrest\n";
  mime::MessageTexts texts;
  mimetic::MimeEntity entity;
  mime::ParseMessage(message, entity, texts);
  EXPECT_EQ(entity.body(), "no field\nrest\n");
  EXPECT_EQ(texts.BodyOf(entity), "no field\nrest\n");
}

TEST(Parser, GivesTheLibrarysTreeForEveryShortMessage) {
  ExpectSameTreesOfAll(std::string("\r\n\t :;-aA\0\x01\x7F\xC3", 13), 3);
  ExpectSameTreesOfAll("\r\n :a\x01", 6);
  ExpectSameTreesOfAll("\r\n :a", 7);
}

TEST(Parser, GivesTheLibrarysTreeForEveryShortHeaderOfAMultipart) {
  const std::string head = "Content-Type: multipart/mixed; boundary=b\n\n--b\n";
  for (const char* first :
       {"\n", "\r\n", "\r", " ", ":", "A", "A:", "A: b", "A b", "\xC3", "--b"}) {
    for (const char* second : {"\n", "\r\n", "\r\r", "\n\n", "\n \n", "\n\t", ":", " "}) {
      for (const char* third : {"", "\n", "C: d\n\n", "--b\n", "\n--b--\n", " e\n"})
        EXPECT_EQ(DifferenceFromTheLibrary(head + first + second + third + "--b--\nend\n"), "");
    }
  }
}

TEST(Parser, FoldAfterIgnoredLineStays) {
  const std::string message = ":ignored\n  fold\nA: b\n\nbody";
  mimetic::MimeEntity entity;
  mime::ParseMessage(message, entity);
  ASSERT_EQ(entity.header().size(), 1U);
  EXPECT_EQ(entity.header().field("A").value(), " foldb");
  EXPECT_EQ(DifferenceFromTheLibrary(message), "");
}

TEST(Parser, GivesTheLibrarysTreeForLongHeaders) {
  for (std::size_t length = 120; length < 140; ++length) {
    const std::string text(length, 'x');
    for (const char* end : {"\n\n", "\n \n", "\r\n\r\n", "", "\n", " :\n\n", "\n\tfolded\n\n"}) {
      EXPECT_EQ(DifferenceFromTheLibrary(text + ": y" + end), "");
      EXPECT_EQ(DifferenceFromTheLibrary("A: " + text + end), "");
      EXPECT_EQ(DifferenceFromTheLibrary(text + end), "");
    }
  }
}

// The library copies bodies in blocks of 4 KB and forgets to trim a line end that falls between two
// of them; so every length around the ends of the first two blocks counts.
TEST(Parser, GivesTheLibrarysTreeForEveryBodyLengthAroundItsBlocks) {
  const std::string head = "Content-Type: multipart/mixed; boundary=b\n\n--b\n\n";
  for (const std::size_t block : {4'060U, 8'150U}) {
    for (std::size_t length = block; length < block + 60; ++length) {
      const std::string line(length, 'x');
      ASSERT_EQ(DifferenceFromTheLibrary(head + line + "\n--b--\n"), "") << length;
      ASSERT_EQ(DifferenceFromTheLibrary(head + line + "--b\n\nend\n--b--\n"), "") << length;
    }
  }
}

// Lines that end in each way, begin as boundaries do or not, and fill blocks to the byte or nearly.
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

TEST(Parser, GivesTheLibrarysTreeForLinesThatFillItsBlocks) {
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
    ASSERT_EQ(DifferenceFromTheLibrary(message), "") << ::testing::PrintToString(message);
    mimetic::MimeEntity entity;
    mime::ParseMessage(message, entity);
    if (!entity.body().parts().empty() && !entity.body().parts().front()->body().parts().empty())
      ++with_parts;
  }
  EXPECT_GT(with_parts, 1'000U);
}

// Changes a message at random, the same way on every run.
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

  // Of a length at which the library's copy buffer runs full, before a line of the message.
  void InsertLongLine(std::string& text) {
    std::vector<std::string> lines = Lines(text);
    const std::string line =
        std::string(4'083 + Below(14), Below(4) == 0 ? '-' : 'x') + (Below(2) == 0 ? "\n" : "");
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(Below(lines.size() + 1)), line);
    text = Join(lines);
  }

  std::mt19937 random_;
};

bool HasParts(const std::string& message) {
  mimetic::MimeEntity entity;
  mime::ParseMessage(message, entity);
  return !entity.body().parts().empty();
}

TEST(Parser, GivesTheLibrarysTreeForMutatedMessages) {
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
    ASSERT_EQ(DifferenceFromTheLibrary(message), "") << "mutation " << i << ":\n" << message;
  }
  // Mutations that destroy every structure would prove little.
  EXPECT_GT(with_parts, kMutations / 3);
}

// Two messages that differ in one respect, and the words that name it.
struct DifferentMessages {
  const char* name;
  const char* left;
  const char* right;
  const char* difference;
};

void PrintTo(const DifferentMessages& row, std::ostream* out) { *out << row.name; }

class TreeDifference : public ::testing::TestWithParam<DifferentMessages> {};

TEST_P(TreeDifference, IsSeen) {
  mimetic::MimeEntity left;
  mimetic::MimeEntity right;
  mime::ParseMessage(GetParam().left, left);
  mime::ParseMessage(GetParam().right, right);
  EXPECT_EQ(FirstDifference(left, right), GetParam().difference);
  EXPECT_EQ(FirstDifference(left, left), "");
}

#define ZQV_MULTIPART "Content-Type: multipart/mixed; boundary=b\n\n"
constexpr DifferentMessages kDifferentMessages[] = {
    {"FieldCount", "A: 1\n\n", "A: 1\nB: 2\n\n", "message: 1 or 2 fields"},
    {"FieldName", "A: 1\n\n", "a: 1\n\n", "message: the name of field 0"},
    {"FieldValue", "A: 1\nB: 2\n\n", "A: 1\nB: 2 \n\n", "message: the value of field 1"},
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

// The library has a second algorithm, for stronger iterators, which finds a boundary inside a line.
TEST(Parser, IsNotTheLibrarysAlgorithmForRandomAccess) {
  const std::string message = ZQV_MULTIPART "--b\n\nnot a --b\n\nboundary\n--b--\n";
  const mimetic::MimeEntity other(message.begin(), message.end());
  mimetic::MimeEntity entity;
  mime::ParseMessage(message, entity);
  EXPECT_EQ(entity.body().parts().size(), 1U);
  EXPECT_EQ(other.body().parts().size(), 2U);
  EXPECT_NE(FirstDifference(entity, other), "");
}

// A message of `parts` empty parts: the shortest there are.
std::string ManyParts(std::size_t parts) {
  std::string message = "Content-Type: multipart/mixed\n\n";
  for (std::size_t i = 0; i < parts; ++i) message += "--\n\n";
  return message;
}

std::string Refusal(const std::string& message, mimetic::MimeEntity& entity) {
  try {
    mime::ParseMessage(message, entity);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

TEST(ParserLimits, AcceptExactlyAHundredThousandEntities) {
  mimetic::MimeEntity entity;
  EXPECT_EQ(Refusal(ManyParts(99'999), entity), "");
  EXPECT_EQ(entity.body().parts().size(), 99'999U);
}

TEST(ParserLimits, RefuseOneEntityMoreAndKeepWhatWasParsed) {
  mimetic::MimeEntity entity;
  EXPECT_EQ(Refusal(ManyParts(100'000), entity), "the message has too many parts");
  EXPECT_EQ(entity.body().parts().size(), 99'999U);
}

// `repeated` as a message's text so often.
std::string Repeated(const std::string& start, const std::string& repeated, std::size_t times,
                     const std::string& end) {
  std::string message = start;
  for (std::size_t i = 0; i < times; ++i) message += repeated;
  return message + end;
}

TEST(ParserLimits, CountTheFieldsOfAllEntities) {
  const std::string outer = "Content-Type: message/rfc822\n\n";
  mimetic::MimeEntity entity;
  EXPECT_EQ(Refusal(Repeated(outer, "a:\n", mime::kMostFields - 1, "\n"), entity), "");
  mimetic::MimeEntity other;
  EXPECT_EQ(Refusal(Repeated(outer, "a:\n", mime::kMostFields, "\n"), other),
            "the message has too many fields");
  EXPECT_EQ(other.body().parts().size(), 1U);
}

TEST(ParserLimits, CountTheEntriesOfListFields) {
  constexpr const char* kTooMany = "the message has too many addresses or parameters";
  // A field has one entry more than it has separators.
  const std::string half = Repeated("\ncC: ", ",", mime::kMostEntries / 2 - 1, "\n");
  const std::pair<const char*, const char*> rows[] = {{"To: ", ","},
                                                      {"from: ", ","},
                                                      {"BCC: ", ";"},
                                                      {"Reply-To: ", ","},
                                                      {"Sender: ", ","},
                                                      {"Content-Type: a/b", ";"},
                                                      {"Content-Disposition: a", ";"}};
  for (const auto& [start, separator] : rows) {
    SCOPED_TRACE(start);
    mimetic::MimeEntity entity;
    EXPECT_EQ(Refusal(Repeated(start, separator, mime::kMostEntries / 2 - 1, half + "\n"), entity),
              "");
    mimetic::MimeEntity other;
    EXPECT_EQ(Refusal(Repeated(start, separator, mime::kMostEntries / 2, half + "\n"), other),
              kTooMany);
  }
}

TEST(ParserLimits, DoNotCountTheSeparatorsOfOtherFields) {
  mimetic::MimeEntity entity;
  EXPECT_EQ(Refusal(Repeated("Subject: ", ",;", mime::kMostEntries, "\n\n"), entity), "");
}

// What AdmitText says of a text with so many separators, nothing when it lets the text pass.
std::string RefusalOfText(std::size_t commas) {
  try {
    mime::AdmitText(std::string(commas, ','));
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

TEST(ParserLimits, HoldForATextThatIsParsedByItself) {
  EXPECT_EQ(RefusalOfText(mime::kMostEntries - 1), "");
  EXPECT_EQ(RefusalOfText(mime::kMostEntries), "the text has too many addresses");
}

TEST(ParserLimits, CountAgainForEachMessage) {
  for (int i = 0; i < 2; ++i) {
    mimetic::MimeEntity entity;
    EXPECT_EQ(Refusal(ManyParts(99'999), entity), "");
  }
}

// The levels below `entity`, by its first parts.
std::size_t LevelsOf(const mimetic::MimeEntity& entity) {
  std::size_t levels = 0;
  const mimetic::MimeEntity* inner = &entity;
  for (; !inner->body().parts().empty(); inner = inner->body().parts().front()) ++levels;
  return levels;
}

struct NestingRow {
  const char* name;
  Nesting nesting;
  std::size_t stack;
  std::size_t levels;  // which a release build must accept
};

void PrintTo(const NestingRow& row, std::ostream* out) { *out << row.name; }

// Instrumented builds use more stack a level, and so accept fewer.
std::size_t MustAccept(const NestingRow& row) {
  constexpr std::size_t kOfRelease = 1'800;
  return row.levels * kOfRelease / mime::kStackPerLevel;
}

class NestingLimit : public ::testing::TestWithParam<NestingRow> {};

TEST_P(NestingLimit, AcceptsWhatTheStackHolds) {
  RunOnStack(GetParam().stack, [] {
    const std::size_t levels = MustAccept(GetParam());
    mimetic::MimeEntity entity;
    EXPECT_EQ(Refusal(NestedMessage(GetParam().nesting, levels), entity), "");
    EXPECT_EQ(LevelsOf(entity), levels);
  });
}

// Frames of the test itself may cost or save a level between two measurements.
TEST_P(NestingLimit, RefusesTheNextLevelsAfterThoseThatItAccepts) {
  const std::size_t most = MostLevels(GetParam().nesting, GetParam().stack);
  EXPECT_GE(most, MustAccept(GetParam()));
  RunOnStack(GetParam().stack, [most] {
    mimetic::MimeEntity accepted;
    EXPECT_EQ(Refusal(NestedMessage(GetParam().nesting, most - 1), accepted), "");
    EXPECT_EQ(LevelsOf(accepted), most - 1);
    mimetic::MimeEntity refused;
    EXPECT_EQ(Refusal(NestedMessage(GetParam().nesting, most + 2), refused),
              "the message is nested too deeply");
    EXPECT_GE(LevelsOf(refused), most - 1);
    EXPECT_LE(LevelsOf(refused), most + 1);
  });
}

TEST_P(NestingLimit, RefusesAHundredThousandLevels) {
  RunOnStack(GetParam().stack, [] {
    mimetic::MimeEntity entity;
    EXPECT_EQ(Refusal(NestedMessage(GetParam().nesting, 100'000), entity),
              "the message is nested too deeply");
  });
}

constexpr NestingRow kNestings[] = {
    {"MultipartOnASmallStack", Nesting::kMultipart, kSmallStack, 250},
    {"MultipartOnALargeStack", Nesting::kMultipart, kLargeStack, 4'000},
    {"MessageOnASmallStack", Nesting::kMessage, kSmallStack, 250},
    {"MessageOnALargeStack", Nesting::kMessage, kLargeStack, 4'000},
    {"BothOnASmallStack", Nesting::kBoth, kSmallStack, 250},
    {"BothOnALargeStack", Nesting::kBoth, kLargeStack, 4'000},
};
INSTANTIATE_TEST_SUITE_P(Stacks, NestingLimit, ::testing::ValuesIn(kNestings),
                         [](const auto& row) { return row.param.name; });

TEST(NestingLimit, RefusesAHundredThousandLevelsOnTheFirstThread) {
  for (const Nesting nesting : {Nesting::kMultipart, Nesting::kMessage, Nesting::kBoth}) {
    mimetic::MimeEntity entity;
    EXPECT_NE(Refusal(NestedMessage(nesting, 100'000), entity), "");
  }
}

// The levels that ordinary mail has are accepted on any stack.
TEST(NestingLimit, AcceptsEightLevelsOnTheSmallestStack) {
  RunOnStack(64 * 1024, [] {
    for (const Nesting nesting : {Nesting::kMultipart, Nesting::kMessage, Nesting::kBoth}) {
      mimetic::MimeEntity entity;
      EXPECT_EQ(Refusal(NestedMessage(nesting, mime::kLevelsUnmeasured), entity), "");
      EXPECT_EQ(LevelsOf(entity), mime::kLevelsUnmeasured);
    }
  });
}

// Parts side by side are no deeper than one, at whatever level they are.
TEST(NestingLimit, CountsLevelsAndNotParts) {
  RunOnStack(kSmallStack, [] {
    std::string message = NestedMessage(Nesting::kMultipart, 12);
    for (int i = 0; i < 2'000; ++i) message += "--b\n\nx\n";
    mimetic::MimeEntity entity;
    EXPECT_EQ(Refusal(message, entity), "");
    const mimetic::MimeEntity* inner = &entity;
    while (inner->body().parts().size() == 1) inner = inner->body().parts().front();
    EXPECT_EQ(inner->body().parts().size(), 2'001U);
  });
}

}  // namespace
}  // namespace zqv::test
