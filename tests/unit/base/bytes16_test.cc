#include "base/bytes16.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>

namespace zqv::test {
namespace {

constexpr std::size_t kLongest = 3 * base::kBytes16 + 1;

// A copy of the text in memory of exactly its length, so that a sanitizer finds a read beyond it.
std::unique_ptr<char[]> Exact(const std::string& text) {
  std::unique_ptr<char[]> memory(new char[text.size()]);
  text.copy(memory.get(), text.size());
  return memory;
}

base::Bytes16 AreMarks(base::Bytes16 c) { return c == '!'; }
base::Bytes16 AreNul(base::Bytes16 c) { return c == 0; }

TEST(FindFirst, FindsEachPlaceInTextsOfEachLength) {
  for (std::size_t length = 0; length <= kLongest; ++length) {
    for (std::size_t place = 0; place <= length; ++place) {
      std::string text(length, '.');
      if (place < length) text[place] = '!';
      if (place + 1 < length) text[length - 1] = '!';  // a second mark, which must not be returned
      const auto memory = Exact(text);
      const char* const found = base::FindFirst(memory.get(), memory.get() + length, AreMarks);
      EXPECT_EQ(static_cast<std::size_t>(found - memory.get()), place) << length;
    }
  }
}

TEST(FindFirst, IgnoresBytesAfterTheText) {
  for (std::size_t length = 0; length < base::kBytes16; ++length) {
    const auto memory = Exact(std::string(length, '.'));
    EXPECT_EQ(base::FindFirst(memory.get(), memory.get() + length, AreNul), memory.get() + length);
  }
}

TEST(LoadShort, HasEveryByteOfTheTextAndNoOther) {
  for (std::size_t length = 1; length < base::kBytes16; ++length) {
    EXPECT_FALSE(
        base::AnyOf(AreMarks(base::LoadShort(Exact(std::string(length, '.')).get(), length))));
    for (std::size_t place = 0; place < length; ++place) {
      std::string text(length, '.');
      text[place] = '!';
      const base::Bytes16 loaded = base::LoadShort(Exact(text).get(), length);
      EXPECT_TRUE(base::AnyOf(AreMarks(loaded))) << length << " " << place;
      EXPECT_TRUE(base::AllOf((loaded == '!') | (loaded == '.'))) << length << " " << place;
    }
  }
}

}  // namespace
}  // namespace zqv::test
