// Nested messages on the smallest stack that threads have. The depth is limited only by the number
// of entities: the deepest message is parsed, built, read, stripped and released on 128 KB, also in
// a host that uses much stack for each release.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <ostream>
#include <string>
#include <utility>

#include "tests/interface/child.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"
#include "tests/support/thread_stack.h"

namespace zqv::interface_test {
namespace {

constexpr const char* kTooMany =
    "RuntimeException, 0: C++ Exception: the message has too many parts";

// Builds that are not shipped have larger stack frames.
constexpr std::size_t kStack = kShips ? test::kTinyStack : test::kSmallStack;
// The stack that a host with large frames uses to release one object.
constexpr std::size_t kReleaseStack = 4096;

struct Shape {
  const char* name;
  std::string (*make)(std::size_t levels);
  std::size_t entities_per_level;

  // The message itself does not count as a level.
  std::size_t DeepestLevel() const { return (kMostEntities - 1) / entities_per_level; }
};
void PrintTo(const Shape& shape, std::ostream* out) { *out << shape.name; }
constexpr Shape kShapes[] = {{"Multiparts", &NestedMultiparts, 1},
                             {"Messages", &NestedMessages, 1},
                             {"Mixture", &NestedMixture, 1},
                             {"MultipartsWithFiles", &NestedMultipartsWithFiles, 2}};

// Checks the source without the files.
void ExpectStripped(const Object& message) {
  const std::string text = standin::BytesOf(Call(message, "SourceWithoutAttachments"));
  EXPECT_NE(text.find("The innermost text."), std::string::npos);
  EXPECT_EQ(text.find("File of level"), std::string::npos);
}

// Constructs a message with this many levels, checks and reads its whole tree and its source
// without files, and releases it.
void ExpectWholeTree(const Shape& shape, std::size_t levels) {
  const Constructed constructed = Construct(Way::kBlock, shape.make(levels));
  ASSERT_EQ(constructed.raised, "");
  const Object& message = constructed.message;
  EXPECT_EQ(LevelsOf(message), levels);
  EXPECT_FALSE(MirrorOfTree(message, levels).is_null());
  EXPECT_EQ(ReadEverything(message, 1), "");
  ExpectStripped(message);
}

void ExpectRefused(const Shape& shape, std::size_t levels) {
  const Constructed constructed = Construct(Way::kBlock, shape.make(levels));
  EXPECT_EQ(constructed.raised, kTooMany);
  EXPECT_TRUE(standin::IsNil(Get(constructed.message, "Body")));
}

Capabilities WithLargeFrames() {
  Capabilities capabilities;
  capabilities.release_stack = kReleaseStack;
  return capabilities;
}

class Stack : public InterfaceTest, public ::testing::WithParamInterface<Shape> {};

TEST_P(Stack, DeepestMessageGivesTheWholeTree) {
  Start();
  test::RunOnStack(kStack, [] { ExpectWholeTree(GetParam(), GetParam().DeepestLevel()); });
}

TEST_P(Stack, DeepestMessageIsReleasedByAHostWithLargeFrames) {
  Start(WithLargeFrames());
  test::RunOnStack(kStack, [] { ExpectWholeTree(GetParam(), GetParam().DeepestLevel()); });
}

// Releases the deepest message level by level: each part, when it is released, is the only owner of
// the levels below it.
TEST_P(Stack, DeepestMessageIsReleasedFromTheTopDown) {
  Start(WithLargeFrames());
  test::RunOnStack(kStack, [] {
    Constructed constructed = Construct(Way::kBlock, GetParam().make(GetParam().DeepestLevel()));
    ASSERT_EQ(constructed.raised, "");
    Object entity = std::move(constructed.message);
    while (!entity.IsNil()) entity = FirstPartOf(entity);
  });
}

TEST_P(Stack, OneLevelMoreIsRefused) {
  Start(WithLargeFrames());
  test::RunOnStack(kStack, [] {
    ExpectRefused(GetParam(), GetParam().DeepestLevel() + 1);
    ExpectRefused(GetParam(), 2 * GetParam().DeepestLevel());
    ExpectRefused(GetParam(), 100'000);
    // After a refused message the next one is parsed as usual.
    ExpectWholeTree(GetParam(), 3);
  });
}

TEST_P(Stack, SmallerDepthsGiveTheWholeTree) {
  Start(WithLargeFrames());
  test::RunOnStack(kStack, [] {
    for (const std::size_t levels : {1U, 2U, 7U, 8U, 9U, 10U, 50U, 100U, 250U, 1000U, 4000U}) {
      ExpectWholeTree(GetParam(), levels);
    }
  });
}

// The first thread of a process has a stack that grows.
TEST_P(Stack, DeepestMessageInTheFirstThread) {
  Start();
  ExpectWholeTree(GetParam(), GetParam().DeepestLevel());
  ExpectRefused(GetParam(), GetParam().DeepestLevel() + 1);
}

// Debug and instrumented builds take ten times as long, so they test the last two shapes only.
INSTANTIATE_TEST_SUITE_P(Nested, Stack,
                         ::testing::ValuesIn(std::begin(kShapes) + (kShips ? 0 : 2),
                                             std::end(kShapes)),
                         [](const auto& row) { return row.param.name; });

std::string FlatMessage(std::size_t parts) {
  std::string text = "Content-Type: multipart/mixed; boundary=b\n\n";
  for (std::size_t i = 0; i < parts; ++i) text += "--b\n\n";
  return text + "--b--\n";
}

// The message itself counts as an entity.
TEST_F(InterfaceTest, TooManyPartsAreRefused) {
  Start();
  EXPECT_EQ(Construct(Way::kBlock, FlatMessage(kMostEntities)).raised, kTooMany);
  EXPECT_EQ(Construct(Way::kBlock, FlatMessage(100 * kMostEntities)).raised, kTooMany);
}

TEST_F(InterfaceTest, MostPartsAreParsed) {
  Start();
  const Object message = Parse(FlatMessage(kMostEntities - 1), Way::kBlock);
  EXPECT_EQ(ObjectOf(Call(ObjectOf(Get(message, "Body")), "Parts as MimeEntityZQV()")).Size(),
            static_cast<std::int64_t>(kMostEntities - 1));
}

}  // namespace
}  // namespace zqv::interface_test
