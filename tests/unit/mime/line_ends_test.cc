#include "mime/line_ends.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string_view>

namespace zqv::test {
namespace {

// The length of the line end that the first `size` bytes of `text` begin with.
std::ptrdiff_t LengthOf(std::string_view text, std::size_t size) {
  return mime::SkipLineEnd(text.data(), text.data() + size) - text.data();
}

TEST(SkipLineEnd, TakesPairsOfDifferentCharacters) {
  EXPECT_EQ(LengthOf("\r\n\n", 3), 2);
  EXPECT_EQ(LengthOf("\n\r\r", 3), 2);
  EXPECT_EQ(LengthOf("\n\n", 2), 1);
  EXPECT_EQ(LengthOf("\r\r", 2), 1);
  EXPECT_EQ(LengthOf("\nx", 2), 1);
  EXPECT_EQ(LengthOf("\rx", 2), 1);
}

TEST(SkipLineEnd, TakesNothingAfterTheEndOfTheMessage) {
  EXPECT_EQ(LengthOf("\r\n", 1), 1);
  EXPECT_EQ(LengthOf("\n\r", 1), 1);
}

}  // namespace
}  // namespace zqv::test
