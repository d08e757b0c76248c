// Nested messages on small stacks: hosts run threads on as little as 256 KB. Construction, reading,
// writing without the files and release all take place in such a thread; the result is the tree or
// an exception, never a crash.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <string>

#include "standin/mirror.h"
#include "tests/interface/child.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"
#include "tests/support/thread_stack.h"

namespace zqv::interface_test {
namespace {

constexpr std::size_t kKilobyte = 1024;
constexpr std::size_t kMegabyte = 1024 * kKilobyte;

constexpr const char* kTooDeep =
    "RuntimeException, 0: C++ Exception: the message is nested too deeply";
constexpr const char* kTooMany =
    "RuntimeException, 0: C++ Exception: the message has too many parts";

struct Shape {
  const char* name;
  std::string (*make)(std::size_t levels);
};
constexpr Shape kShapes[] = {{"multiparts", &NestedMultiparts},
                             {"messages", &NestedMessages},
                             {"mixture", &NestedMixture},
                             {"multiparts with files", &NestedMultipartsWithFiles}};

// How many entities lie in one another, the message itself not counted.
std::size_t DepthOf(const Object& message) {
  std::size_t depth = 0;
  Object body = ObjectOf(Get(message, "Body"));
  while (true) {
    const Object parts = ObjectOf(Call(body, "Parts as MimeEntityZQV()"));
    if (parts.Size() == 0) return depth;
    body = ObjectOf(Get(ObjectOf(parts.At(0)), "Body"));
    ++depth;
  }
}

// The source without its files is that of the whole tree, or refused like a message: it may cost
// another number of bytes per level than the construction.
void ExpectWrittenOrRefused(const Object& message) {
  Value source;
  const std::string raised = RaisedBy([&] { source = Call(message, "SourceWithoutAttachments"); });
  if (!raised.empty()) {
    EXPECT_EQ(raised, kTooDeep);
    return;
  }
  const std::string text = standin::BytesOf(source);
  EXPECT_NE(text.find("The innermost text."), std::string::npos);
  EXPECT_EQ(text.find("File of level"), std::string::npos);
}

// Makes, reads, writes and releases one message; true when it was parsed.
bool ParsesAsWholeOrNotAtAll(const std::string& bytes, std::size_t levels) {
  const Constructed constructed = Construct(Way::kBlock, bytes);
  if (constructed.raised.empty()) {
    EXPECT_EQ(DepthOf(constructed.message), levels);
    EXPECT_FALSE(standin::Mirror(constructed.message, {levels + 1, false, nullptr}).is_null());
    ExpectWrittenOrRefused(constructed.message);
    return true;
  }
  EXPECT_TRUE(constructed.raised == kTooDeep || constructed.raised == kTooMany)
      << constructed.raised;
  return false;
}

struct StackRow {
  const char* name;
  std::size_t stack;
  std::size_t must_parse;  // levels that have to give a tree in a release build
};
constexpr StackRow kStacks[] = {{"256 KB", 256 * kKilobyte, 8},
                                {"512 KB", 512 * kKilobyte, 250},
                                {"1 MB", kMegabyte, 500},
                                {"8 MB", 8 * kMegabyte, 4000}};

class Stack : public InterfaceTest, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(Stack, NestedMessageGivesATreeOrAnException) {
  const StackRow& row = kStacks[GetParam()];
  LoadLibraryFile();
  for (const Shape& shape : kShapes) {
    for (const std::size_t levels :
         {1U,   2U,   7U,   8U,    9U,    10U,   50U,   100U,  120U,   150U,   200U,
          250U, 300U, 500U, 1000U, 2000U, 4000U, 4500U, 5000U, 10000U, 100000U}) {
      const std::string bytes = shape.make(levels);
      InChild(std::string(row.name) + ", " + shape.name + ", " + std::to_string(levels), [&] {
        Session session;
        test::RunOnStack(row.stack, [&] {
          const bool is_parsed = ParsesAsWholeOrNotAtAll(bytes, levels);
          const bool must_parse = levels <= (kShips ? row.must_parse : 8);
          EXPECT_TRUE(is_parsed || !must_parse);
          EXPECT_FALSE(is_parsed && levels == 100000);
          // A refused message spoils nothing for the next one.
          EXPECT_TRUE(ParsesAsWholeOrNotAtAll(NestedMultiparts(3), 3));
        });
      });
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Sizes, Stack, ::testing::Range(std::size_t{0}, std::size(kStacks)),
                         [](const auto& row) {
                           std::string name = kStacks[row.param].name;
                           name.erase(name.find(' '), 1);
                           return name;
                         });

// The largest number of levels that is still parsed, and its neighbours: the limit lies before the
// end of the stack, wherever that is.
TEST_P(Stack, EveryDepthAroundTheLimit) {
  const StackRow& row = kStacks[GetParam()];
  LoadLibraryFile();
  for (const Shape& shape : kShapes) {
    const SharedWithChild<std::size_t> deepest;
    InChild(std::string(row.name) + ", " + shape.name, [&] {
      Session session;
      test::RunOnStack(row.stack, [&] {
        std::size_t parsed = 1;
        std::size_t refused = 20'000;
        while (refused - parsed > 1) {
          const std::size_t levels = (parsed + refused) / 2;
          (ParsesAsWholeOrNotAtAll(shape.make(levels), levels) ? parsed : refused) = levels;
        }
        EXPECT_GE(parsed, kShips ? row.must_parse : 8U);
        *deepest = parsed;
      });
    });
    std::printf("%s hold %zu %s\n", row.name, *deepest, shape.name);
  }
}

// A message that was made where there was room for it, written where there is not.
TEST_F(InterfaceTest, DeepMessageIsWrittenOnASmallStack) {
  Start();
  for (const Shape& shape : kShapes) {
    for (const std::size_t levels : {10U, 100U, 1000U, 4000U}) {
      Object message;
      test::RunOnStack(64 * kMegabyte, [&] {
        message = Parse(shape.make(levels), Way::kString);
        EXPECT_EQ(DepthOf(message), levels);
      });
      for (const std::size_t stack : {256 * kKilobyte, 512 * kKilobyte, 8 * kMegabyte}) {
        test::RunOnStack(stack, [&] { ExpectWrittenOrRefused(message); });
      }
      // The host frees objects by recursion of its own.
      test::RunOnStack(64 * kMegabyte, [&] { message = Object(); });
    }
  }
}

// The first thread of a process has a stack that grows.
TEST_F(InterfaceTest, NestedMessagesInTheFirstThread) {
  Start();
  for (const Shape& shape : kShapes) {
    for (const std::size_t levels : {8U, 1000U, 100000U}) {
      static_cast<void>(ParsesAsWholeOrNotAtAll(shape.make(levels), levels));
    }
  }
}

std::string FlatMessage(std::size_t parts) {
  std::string text = "Content-Type: multipart/mixed; boundary=b\n\n";
  for (std::size_t i = 0; i < parts; ++i) text += "--b\n\n";
  return text + "--b--\n";
}

// The message itself counts as one of the 100,000 entities that it may have.
TEST_F(InterfaceTest, TooManyPartsAreRefused) {
  Start();
  EXPECT_EQ(Construct(Way::kBlock, FlatMessage(100'000)).raised, kTooMany);
  EXPECT_EQ(Construct(Way::kBlock, FlatMessage(1'000'000)).raised, kTooMany);
}

TEST_F(InterfaceTest, MostPartsAreParsed) {
  Start();
  const std::size_t count = static_cast<std::size_t>(Repetitions(99'999, 5'000));
  const Object message = Parse(FlatMessage(count), Way::kBlock);
  EXPECT_EQ(ObjectOf(Call(ObjectOf(Get(message, "Body")), "Parts as MimeEntityZQV()")).Size(),
            static_cast<std::int64_t>(count));
}

}  // namespace
}  // namespace zqv::interface_test
