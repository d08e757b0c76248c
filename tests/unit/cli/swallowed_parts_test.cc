#include "cli/swallowed_parts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zqv::cli {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kMixed = "Content-Type: multipart/mixed; boundary=b\n\n";

TEST(PartsBetween, AreThoseBetweenBoundaries) {
  EXPECT_THAT(PartsBetween("x\n--b\none\n--b\ntwo\n\n--b--\nbehind\n--b\nno\n", "b"),
              ElementsAre("one", "two\n"));
  EXPECT_THAT(PartsBetween("--b\r\none\r\n--b \r\ntwo\r\n", "b"), ElementsAre("one", "two\r\n"));
  EXPECT_THAT(PartsBetween("--b\n--b\n--b--", "b"), ElementsAre("", ""));
  EXPECT_THAT(PartsBetween("--b", "b"), ElementsAre(""));
  EXPECT_THAT(PartsBetween("--b--\n--b\nx", "b"), IsEmpty());
  EXPECT_THAT(PartsBetween("", "b"), IsEmpty());
  EXPECT_THAT(PartsBetween("-b\n--c\n --b\n", "b"), IsEmpty());
}

TEST(Extents, AreTheWholePartsWithoutABoundaryInAHeader) {
  const std::string text = kMixed + "--b\nA: 1\n\none\n--b\nA: 2\n\ntwo\n--b--\n";
  const MessageSource source(text);
  const std::vector<PartExtent> extents = ExtentsOf(source);
  for (std::size_t i = 0; i < extents.size(); ++i) {
    EXPECT_EQ(extents[i].own, source.parts()[i].whole);
    EXPECT_THAT(extents[i].swallowed, IsEmpty());
    EXPECT_FALSE(extents[i].is_swallowed);
  }
}

TEST(Extents, EndAtABoundaryInAHeader) {
  const std::string text = kMixed + "--b\nA: 1\n--b\nA: 2\n\ntwo\n--b\nA: 3\n\nthree\n--b--\n";
  const MessageSource source(text);
  ASSERT_EQ(source.parts().size(), 3U);
  const std::vector<PartExtent> extents = ExtentsOf(source);
  EXPECT_EQ(extents[1].own, "A: 1");
  EXPECT_THAT(extents[1].swallowed, ElementsAre("A: 2\n\ntwo"));
  EXPECT_EQ(extents[2].own, "A: 3\n\nthree");
  EXPECT_THAT(extents[2].swallowed, IsEmpty());
}

TEST(Extents, EndBeforeTheWholeLineEnd) {
  const std::string text =
      "Content-Type: multipart/mixed; boundary=b\r\n\r\n"
      "--b\r\nA: 1\r\n--b\r\nA: 2\r\n\r\ntwo\r\n--b--\r\n";
  const MessageSource source(text);
  const std::vector<PartExtent> extents = ExtentsOf(source);
  EXPECT_EQ(extents[1].own, "A: 1");
  EXPECT_THAT(extents[1].swallowed, ElementsAre("A: 2\r\n\r\ntwo"));
}

// Part 1 is a message, and part 1.1 the part inside it. The line in the header of 1.1 is a boundary
// of the outermost multipart, so both parts end there.
TEST(Extents, OfAllPartsAroundTheHeaderEndThere) {
  const std::string text = kMixed +
                           "--b\nContent-Type: message/rfc822\n\n"
                           "Content-Type: message/rfc822\n--b\nA: 2\n\ntwo\n--b--\n";
  const MessageSource source(text);
  const std::vector<PartExtent> extents = ExtentsOf(source);
  EXPECT_EQ(extents[0].own.size(), text.size());
  EXPECT_EQ(extents[1].own, "Content-Type: message/rfc822\n\nContent-Type: message/rfc822");
  EXPECT_THAT(extents[1].swallowed, ElementsAre("A: 2\n\ntwo"));
  EXPECT_EQ(extents[2].own, "Content-Type: message/rfc822");
  EXPECT_THAT(extents[2].swallowed, IsEmpty());
  ASSERT_EQ(extents.size(), 4U);
  EXPECT_TRUE(extents[3].is_swallowed);
}

TEST(Extents, AClosingBoundaryHasNothingBehindIt) {
  const std::string text = kMixed + "--b\nA: 1\n--b--\nbehind\n";
  const MessageSource source(text);
  const std::vector<PartExtent> extents = ExtentsOf(source);
  EXPECT_EQ(extents[1].own, "A: 1");
  EXPECT_THAT(extents[1].swallowed, IsEmpty());
}

TEST(Extents, SeveralPartsAreSwallowedByFieldsThatAreBoundaries) {
  const std::string text =
      "Content-Type: multipart/mixed; boundary=\"b:c\"\n\n"
      "--b:c\nA: 1\n--b:c\nA: 2\n--b:c\nA: 3\n\nthree\n--b:c--\n";
  const MessageSource source(text);
  const std::vector<PartExtent> extents = ExtentsOf(source);
  EXPECT_EQ(extents[1].own, "A: 1");
  EXPECT_THAT(extents[1].swallowed, ElementsAre("A: 2", "A: 3\n\nthree"));
}

TEST(Extents, AddNoLineEnd) {
  const std::string text = "A: 1\n\nx";
  const MessageSource source(text);
  EXPECT_EQ(ExtentsOf(source)[0].own, text);
}

}  // namespace
}  // namespace zqv::cli
