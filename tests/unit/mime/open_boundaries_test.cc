#include "mime/open_boundaries.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <algorithm>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::test {
namespace {

using mime::OpenBoundaries;

TEST(OpenBoundaries, FindAnOpenBoundaryAtTheStartOfALine) {
  OpenBoundaries open;
  EXPECT_TRUE(open.IsEmpty());
  open.Push("--outer");
  open.Push("--in");
  EXPECT_EQ(open.Innermost(), "--in");
  for (const char* line : {"--outer", "--outer--", "--outermost", "--in", "--inn"}) {
    EXPECT_TRUE(open.AnyBegins(line)) << line;
  }
  for (const char* line : {"", "--", "--i", "--oute", " --in", "-in", "--Outer"}) {
    EXPECT_FALSE(open.AnyBegins(line)) << line;
  }
}

TEST(OpenBoundaries, ForgetTheInnermostWhenItIsClosed) {
  OpenBoundaries open;
  open.Push("--a");
  open.Push("--b");
  open.Pop();
  EXPECT_EQ(open.Innermost(), "--a");
  EXPECT_FALSE(open.AnyBegins("--b"));
  EXPECT_TRUE(open.AnyBegins("--a"));
  open.Pop();
  EXPECT_TRUE(open.IsEmpty());
  EXPECT_FALSE(open.AnyBegins("--a"));
}

TEST(OpenBoundaries, KeepABoundaryThatIsOpenTwice) {
  OpenBoundaries open;
  for (const char* boundary : {"--a", "--b", "--a"}) open.Push(boundary);
  open.Pop();
  EXPECT_TRUE(open.AnyBegins("--a"));
  open.Pop();
  EXPECT_TRUE(open.AnyBegins("--a"));
  open.Pop();
  EXPECT_FALSE(open.AnyBegins("--a"));
}

// Compares the line with each open boundary, as mimetic does.
bool AnyBegins(const std::deque<std::string>& each, const std::string& line) {
  return std::any_of(each.begin(), each.end(), [&](const std::string& boundary) {
    return line.compare(0, boundary.size(), boundary) == 0;
  });
}

TEST(OpenBoundaries, AgreeWithComparingEachBoundary) {
  const bool agreed = rc::check([] {
    const auto text = rc::gen::container<std::string>(rc::gen::element('-', 'a', 'b'));
    OpenBoundaries open;
    std::deque<std::string> each;  // owns the texts that the open boundaries are views of
    for (int i = 0; i < 40; ++i) {
      if (!each.empty() && *rc::gen::inRange(0, 3) == 0) {
        open.Pop();
        each.pop_back();
      } else {
        each.push_back("--" + *text);
        open.Push(each.back());
      }
      const std::string line = "--" + *text;
      RC_ASSERT(open.AnyBegins(line) == AnyBegins(each, line));
      RC_ASSERT(open.IsEmpty() == each.empty());
      if (!each.empty()) RC_ASSERT(open.Innermost() == each.back());
    }
  });
  EXPECT_TRUE(agreed);
}

}  // namespace
}  // namespace zqv::test
