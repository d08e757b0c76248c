#include "mime/message.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mime/limits.h"
#include "tests/support/thread_stack.h"
#include "tests/unit/mime/nested_message.h"

namespace zqv::test {
namespace {

using mime::HeaderEnd;
using mime::Message;
using mime::Part;
using mime::PartIndex;
using mime::PartKind;
using mime::Visit;
using ::testing::ElementsAre;

bool IsIn(std::string_view text, std::string_view message) {
  return text.data() >= message.data() && text.data() < message.data() + message.size();
}

// What ends the first header, the bytes of that header, and the body after it.
struct EndRow {
  const char* name;
  std::string_view text;
  HeaderEnd end;
  std::string_view header;
  std::string_view body;
};

TEST(Message, ReportsWhereAHeaderEnds) {
  constexpr EndRow kRows[] = {
      {"empty line", "A: b\r\n\r\nbody", HeaderEnd::kEmptyLine, "A: b\r\n\r\n", "body"},
      {"no field", "A: b\nno field\nbody", HeaderEnd::kOtherLine, "A: b\n", "no field\nbody"},
      {"end", "A: b\nC: d", HeaderEnd::kMessageEnd, "A: b\nC: d", ""},
      {"nothing", "", HeaderEnd::kMessageEnd, "", ""},
  };
  for (const EndRow& row : kRows) {
    const Message message(row.text);
    EXPECT_EQ(message.top().header_end, row.end) << row.name;
    EXPECT_EQ(message.top().header, row.header) << row.name;
    EXPECT_EQ(message.top().body, row.body) << row.name;
    EXPECT_EQ(message.top().whole, row.text) << row.name;
    EXPECT_EQ(message.parsed_size(), row.text.size()) << row.name;
  }
}

constexpr std::string_view kNested =
    "Content-Type: multipart/mixed; boundary=o\r\n"
    "\r\n"
    "before\r\n"
    "--o\r\n"
    "Content-Type: multipart/alternative; boundary=i\r\n"
    "\r\n"
    "--i\r\n"
    "A: 1\r\n"
    "\r\n"
    "one\r\n"
    "--i\r\n"
    "A: 2\r\n"
    "\r\n"
    "two\r\n"
    "--i--\r\n"
    "inner end\r\n"
    "--o\r\n"
    "Content-Type: message/rfc822\r\n"
    "\r\n"
    "A: 3\r\n"
    "\r\n"
    "three\r\n"
    "--o--\r\n"
    "after\r\n";

TEST(Message, IsOneListOfParts) {
  const Message message(kNested);
  const std::vector<Part>& parts = message.parts();
  ASSERT_EQ(parts.size(), 6U);
  std::vector<PartIndex> parents;
  std::vector<PartIndex> first_children;
  std::vector<PartIndex> next_siblings;
  std::vector<std::uint32_t> child_counts;
  for (const Part& part : parts) {
    parents.push_back(part.parent);
    first_children.push_back(part.first_child);
    next_siblings.push_back(part.next_sibling);
    child_counts.push_back(part.child_count);
  }
  constexpr PartIndex kNo = mime::kNoPart;
  EXPECT_THAT(parents, ElementsAre(kNo, 0U, 1U, 1U, 0U, 4U));
  EXPECT_THAT(first_children, ElementsAre(1U, 2U, kNo, kNo, 5U, kNo));
  EXPECT_THAT(next_siblings, ElementsAre(kNo, 4U, 3U, kNo, kNo, kNo));
  EXPECT_THAT(child_counts, ElementsAre(2U, 2U, 0U, 0U, 1U, 0U));
  EXPECT_EQ(parts[0].kind, PartKind::kMultipart);
  EXPECT_EQ(parts[1].kind, PartKind::kMultipart);
  EXPECT_EQ(parts[2].kind, PartKind::kLeaf);
  EXPECT_EQ(parts[4].kind, PartKind::kMessage);
}

TEST(Message, ReportsThePositionOfEachPart) {
  const Message message(kNested);
  const std::vector<Part>& parts = message.parts();
  ASSERT_EQ(parts.size(), 6U);
  EXPECT_EQ(parts[0].whole, kNested);
  EXPECT_EQ(parts[1].whole.substr(0, 13), "Content-Type:");
  EXPECT_EQ(parts[1].whole.substr(parts[1].whole.size() - 16), "--i--\r\ninner end");
  EXPECT_EQ(parts[2].whole, "A: 1\r\n\r\none");
  EXPECT_EQ(parts[3].whole, "A: 2\r\n\r\ntwo");
  EXPECT_EQ(parts[4].whole, "Content-Type: message/rfc822\r\n\r\nA: 3\r\n\r\nthree");
  EXPECT_EQ(parts[5].whole, "A: 3\r\n\r\nthree");
  EXPECT_EQ(parts[0].preamble, "before");
  EXPECT_EQ(parts[0].epilogue, "after\r\n");
  EXPECT_EQ(parts[1].epilogue, "inner end");
  EXPECT_EQ(parts[4].body, "");
  EXPECT_EQ(parts[5].body, "three");
  for (const Part& part : parts) EXPECT_TRUE(IsIn(part.header, kNested));
}

TEST(Message, ReportsWhichMultipartsAreClosed) {
  const Message closed(kNested);
  EXPECT_TRUE(closed.parts()[0].is_closed);
  EXPECT_TRUE(closed.parts()[1].is_closed);
  EXPECT_FALSE(closed.parts()[4].is_closed) << "no multipart";
  const Message cut(kNested.substr(0, kNested.find("--i--")));
  EXPECT_FALSE(cut.parts()[0].is_closed);
  EXPECT_FALSE(cut.parts()[1].is_closed);
  const Message cut_behind(kNested.substr(0, kNested.find("--i--") + 7));
  EXPECT_TRUE(cut_behind.parts()[1].is_closed) << "nothing needs to follow the closing boundary";
}

TEST(Message, ReportsHowMuchWasParsed) {
  const std::string_view parsed = kNested.substr(0, kNested.find("--i--"));
  const std::string text = std::string(parsed) + "--o\r\nlost\r\n";
  const Message message(text);
  EXPECT_EQ(message.parsed_size(), parsed.size() + 5);
  EXPECT_EQ(message.top().whole, text.substr(0, parsed.size() - 2))
      << "up to the line end before the boundary";
}

constexpr std::string_view kFields =
    "Received: from a\n by b; Tue, 1 Jan 2019 10:00:00 +0000\n"
    "X-Empty:\nX-Short: value\nX-Fold:\n folded\nX-Long: one\n\ttwo\n three\n"
    "Content-Type: text/plain;charset=utf-8\n\nbody\n";

// The value of each field and its place: in the message's bytes, kept as a copy, or a text form.
struct ValueRow {
  std::string_view name, value, place;
};
constexpr ValueRow kValues[] = {
    {"Received", "from a by b; Tue, 1 Jan 2019 10:00:00 +0000", "kept"},
    {"X-Empty", "", "in"},
    {"X-Short", "value", "in"},
    {"X-Fold", " folded", "kept"},
    {"X-Long", "one two three", "kept"},
    {"Content-Type", "text/plain; charset=\"utf-8\"", "form"},
};

TEST(Message, CopiesFoldedValuesOnly) {
  const Message message(kFields);
  const mime::Header header = message.HeaderOf(message.top());
  std::size_t index = 0;
  for (const ValueRow& row : kValues) {
    const std::string_view value = header.Value(index);
    EXPECT_EQ(header[index].name, row.name);
    EXPECT_TRUE(IsIn(header[index].name, kFields));
    EXPECT_EQ(value, row.value);
    const bool is_form = value.data() != header[index].value.data();
    EXPECT_EQ(is_form ? "form" : IsIn(value, kFields) ? "in" : "kept", row.place) << row.name;
    ++index;
  }
  EXPECT_EQ(index, header.size());
}

TEST(Message, EndsAValueAtItsFirstNul) {
  const std::string text("X-Nul: be\0fore\nX-Fold: a\n b\0c\n\n", 32);
  const Message message(text);
  const mime::Header header = message.HeaderOf(message.top());
  ASSERT_EQ(header.size(), 2U);
  EXPECT_EQ(header.Value(0), "be");
  EXPECT_EQ(header.Value(1), "a b");
}

TEST(Message, HasTheFieldsOfEachPart) {
  const Message message(kNested);
  EXPECT_EQ(message.fields().size(), 6U);
  const mime::Header header = message.HeaderOf(message.parts()[3]);
  ASSERT_EQ(header.size(), 1U);
  EXPECT_EQ(header[0].name, "A");
  EXPECT_EQ(header[0].value, "2");
  EXPECT_EQ(&header[0], &message.fields()[3]);
}

// The steps of a walk over the nested message from `top`: "+" and a number when it enters a part,
// "-" when it leaves one. The parts in `answers` get another answer than kInside.
std::string Steps(PartIndex top, const std::vector<std::pair<PartIndex, Visit>>& answers = {}) {
  const Message message(kNested);
  std::string steps;
  mime::Walk(
      message.parts(), top,
      [&](PartIndex part) {
        steps += "+" + std::to_string(part);
        for (const auto& [answered, visit] : answers) {
          if (answered == part) return visit;
        }
        return Visit::kInside;
      },
      [&](PartIndex part) { steps += "-" + std::to_string(part); });
  return steps;
}

TEST(Walk, EntersAPartBeforeThePartsInsideItAndLeavesItAfterThem) {
  EXPECT_EQ(Steps(0), "+0+1+2-2+3-3-1+4+5-5-4-0");
}

TEST(Walk, StaysBelowTheTop) {
  EXPECT_EQ(Steps(1), "+1+2-2+3-3-1");
  EXPECT_EQ(Steps(2), "+2-2");
  EXPECT_EQ(Steps(4), "+4+5-5-4");
}

TEST(Walk, LeavesAPartWithoutGoingInside) {
  EXPECT_EQ(Steps(0, {{0, Visit::kLeave}}), "+0-0");
  EXPECT_EQ(Steps(0, {{1, Visit::kLeave}}), "+0+1-1+4+5-5-4-0");
  EXPECT_EQ(Steps(0, {{3, Visit::kLeave}}), "+0+1+2-2+3-3-1+4+5-5-4-0");
  EXPECT_EQ(Steps(0, {{4, Visit::kLeave}}), "+0+1+2-2+3-3-1+4-4-0");
}

TEST(Walk, SkipsAPart) {
  EXPECT_EQ(Steps(0, {{0, Visit::kSkip}}), "+0");
  EXPECT_EQ(Steps(0, {{1, Visit::kSkip}}), "+0+1+4+5-5-4-0");
  EXPECT_EQ(Steps(0, {{2, Visit::kSkip}}), "+0+1+2+3-3-1+4+5-5-4-0");
  EXPECT_EQ(Steps(0, {{5, Visit::kSkip}}), "+0+1+2-2+3-3-1+4+5-4-0");
  EXPECT_EQ(Steps(0, {{1, Visit::kSkip}, {4, Visit::kSkip}}), "+0+1+4-0");
}

TEST(Walk, NeedsNoStackForNesting) {
  const std::string text = NestedMessage(Nesting::kBoth, mime::kMostParts - 1);
  RunOnStack(std::size_t{128} * 1024, [&text] {
    const Message message(text);
    std::size_t depth = 0;
    std::size_t deepest = 0;
    mime::Walk(
        message.parts(), 0,
        [&](PartIndex) {
          deepest = std::max(deepest, ++depth);
          return Visit::kInside;
        },
        [&](PartIndex) { --depth; });
    EXPECT_EQ(deepest, mime::kMostParts);
    EXPECT_EQ(depth, 0U);
  });
}

}  // namespace
}  // namespace zqv::test
