// Tests for a boundary of an outer multipart inside an inner multipart that is not closed.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "mime/message.h"

namespace zqv::mime {
namespace {

// The beginnings of an outer and an inner multipart, each up to the header of its first part.
constexpr std::string_view kTop = "Content-Type: multipart/mixed; boundary=a\n\n--a\n";
constexpr std::string_view kInner = "Content-Type: multipart/mixed; boundary=b\n\n--b\n\none\n";

// The index of each part's parent, as one digit a part; "-" for the message itself.
std::string ParentsOf(const Message& message) {
  std::string parents;
  for (const Part& part : message.parts()) {
    parents += part.parent == kNoPart ? '-' : static_cast<char>('0' + part.parent);
  }
  return parents;
}

TEST(OuterBoundary, EndsTheParse) {
  const std::string text = std::string(kTop).append(kInner).append("--a\n\ntwo\n--a--\n");
  const Message message(text);
  EXPECT_EQ(ParentsOf(message), "-01");
  EXPECT_EQ(message.parts_before_outer(), 3U);
  EXPECT_EQ(text.substr(message.parsed_size()), "\ntwo\n--a--\n");
  EXPECT_FALSE(message.top().is_closed);
}

TEST(OuterBoundary, EndsTheInnerMultipart) {
  const std::string text = std::string(kTop).append(kInner).append("--a\n\ntwo\n--a--\nend\n");
  const Message message(text, OuterBoundary::kEndsInner);
  EXPECT_EQ(ParentsOf(message), "-010");
  EXPECT_EQ(message.parts_before_outer(), 3U);
  EXPECT_EQ(message.parsed_size(), text.size());
  EXPECT_FALSE(message.parts()[1].is_closed);
  EXPECT_EQ(message.parts()[1].whole, kInner.substr(0, kInner.size() - 1));
  EXPECT_EQ(message.parts()[2].body, "one");
  EXPECT_EQ(message.parts()[3].body, "two");
  EXPECT_TRUE(message.top().is_closed);
  EXPECT_EQ(message.top().epilogue, "end\n");
  EXPECT_EQ(message.top().whole, text);
}

TEST(OuterBoundary, ClosesTheOuterMultipart) {
  const std::string text = std::string(kTop).append(kInner).append("--a--\n");
  const Message message(text, OuterBoundary::kEndsInner);
  EXPECT_EQ(ParentsOf(message), "-01");
  EXPECT_EQ(message.parts_before_outer(), 3U);
  EXPECT_FALSE(message.parts()[1].is_closed);
  EXPECT_TRUE(message.top().is_closed);
}

TEST(OuterBoundary, EndsSeveralInnerMultiparts) {
  std::string text(kTop);
  for (const char* boundary : {"b", "c", "d"}) {
    text.append("Content-Type: multipart/mixed; boundary=").append(boundary);
    text.append("\n\n--").append(boundary).append("\n");
  }
  text.append("\none\n--b\n\ntwo\n--a\n\nthree\n");
  const Message message(text, OuterBoundary::kEndsInner);
  EXPECT_EQ(ParentsOf(message), "-012310");
  EXPECT_EQ(message.parts_before_outer(), 5U);
}

// When an inner and an outer multipart have equal boundaries, a boundary line belongs to the inner
// one and begins its next part.
TEST(OuterBoundary, AnEqualBoundaryBelongsToTheInnermost) {
  const std::string text = std::string(kTop).append(
      "Content-Type: multipart/mixed; boundary=a\n\n--a\n"
      "Content-Type: multipart/mixed; boundary=c\n\n--a\n\ntwo\n");
  const Message message(text, OuterBoundary::kEndsInner);
  EXPECT_EQ(ParentsOf(message), "-011");
  EXPECT_EQ(message.parts_before_outer(), 3U);
}

TEST(OuterBoundary, WithoutAnOuterBoundaryBothSettingsAgree) {
  const std::string text = std::string(kTop).append(kInner).append("--b--\n--a\n\ntwo\n");
  EXPECT_EQ(ParentsOf(Message(text)), "-010");
  const Message message(text, OuterBoundary::kEndsInner);
  EXPECT_EQ(ParentsOf(message), "-010");
  EXPECT_EQ(message.parts_before_outer(), 4U);
}

// A multipart that is not closed extends to the end of the message, past its last boundary line.
TEST(OuterBoundary, LastLineIsInTheMultipart) {
  for (const char* end : {"--a\n", "--a--\n"}) {
    const std::string text = std::string(kTop).append("\none\n").append(end);
    EXPECT_EQ(Message(text).top().whole, text);
    EXPECT_EQ(Message(text).parts()[1].whole, "\none");
  }
}

}  // namespace
}  // namespace zqv::mime
