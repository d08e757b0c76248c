#include "base/bytes16.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

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

TEST(BitsOf64, HasTheBitOfEachByte) {
  EXPECT_EQ(base::BitsOf64(std::string(64, '.').data(), AreMarks), 0U);
  EXPECT_EQ(base::BitsOf64(std::string(64, '!').data(), AreMarks), ~std::uint64_t{0});
  for (std::size_t place = 0; place < 64; ++place) {
    std::string text(64, '.');
    text[place] = '!';
    EXPECT_EQ(base::BitsOf64(Exact(text).get(), AreMarks), std::uint64_t{1} << place) << place;
  }
}

TEST(Masks, HaveAFirstAndALastLane) {
  EXPECT_EQ(base::FirstOf(base::Bytes16{}), base::kBytes16);
  for (std::size_t first = 0; first < base::kBytes16; ++first) {
    for (std::size_t last = first; last < base::kBytes16; ++last) {
      base::Bytes16 mask{};
      mask[first] = -1;
      mask[last] = -1;
      EXPECT_EQ(base::FirstOf(mask), first) << last;
      EXPECT_EQ(base::LastOf(mask), last) << first;
      EXPECT_TRUE(base::AnyOf(mask));
      EXPECT_FALSE(base::AllOf(mask));
    }
    base::Bytes16 all_but_one = ~base::Bytes16{};
    EXPECT_TRUE(base::AllOf(all_but_one));
    all_but_one[first] = 0;
    EXPECT_FALSE(base::AllOf(all_but_one)) << first;
  }
  EXPECT_FALSE(base::AnyOf(base::Bytes16{}));
}

// The lanes of a wide vector. Only functions marked ZQV_LOOKS_UP may use the vectors themselves.
using Lanes = std::array<signed char, base::kWideBytes>;
using Table = std::array<std::int8_t, base::kBytes16>;

ZQV_LOOKS_UP base::WideBytes Load(const Lanes& lanes) {
  return base::LoadWideBytes(reinterpret_cast<const char*>(lanes.data()));
}

ZQV_LOOKS_UP Lanes Stored(base::WideBytes bytes) {
  Lanes lanes{};
  base::StoreWideBytes(bytes, reinterpret_cast<char*>(lanes.data()));
  return lanes;
}

ZQV_LOOKS_UP Lanes UpperNibblesOf(const Lanes& lanes) {
  return Stored(base::UpperNibbles(Load(lanes)));
}
ZQV_LOOKS_UP Lanes LookedUp(const Table& table, const Lanes& indexes) {
  return Stored(base::LookUp(base::TableOf(table), Load(indexes)));
}
ZQV_LOOKS_UP Lanes JoinedSixBits(const Lanes& lanes) {
  return Stored(base::JoinSixBits(Load(lanes)));
}
ZQV_LOOKS_UP Lanes JoinedTwelves(const Lanes& lanes) {
  return Stored(base::JoinTwelves(Load(lanes)));
}
ZQV_LOOKS_UP bool AreAllZero(const Lanes& lanes) { return base::IsAllZero(Load(lanes)); }

// Calls test(lanes) for vectors that together have each value of a byte in each lane.
template <class Test>
void ForEachByteInEachLane(Test test) {
  for (int first = -128; first < 128; ++first) {
    Lanes lanes;
    for (std::size_t i = 0; i < lanes.size(); ++i) {
      lanes[i] = static_cast<signed char>(first + static_cast<int>(i));
    }
    test(lanes);
  }
}

class WideBytesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!base::CanLookUp()) GTEST_SKIP() << "the processor has no AVX2";
  }
};

#if defined(__x86_64__)
TEST(CanLookUp, IsTrueOnProcessorsWithAvx2) {
  EXPECT_EQ(base::CanLookUp(), __builtin_cpu_supports("avx2") != 0);
}
#endif

TEST_F(WideBytesTest, UpperNibblesAreNumbersUpTo15) {
  ForEachByteInEachLane([](const Lanes& lanes) {
    const Lanes nibbles = UpperNibblesOf(lanes);
    for (std::size_t i = 0; i < lanes.size(); ++i) {
      ASSERT_EQ(nibbles[i], static_cast<std::uint8_t>(lanes[i]) / 16) << i;
    }
  });
}

TEST_F(WideBytesTest, LookUpGivesEntriesAndZeroForNegativeIndexes) {
  const Table table = {-128, 127, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37, 41, 43, -1};
  ForEachByteInEachLane([&](Lanes lanes) {
    for (signed char& lane : lanes) {
      if (lane > 15) lane = static_cast<signed char>(lane % 16);
    }
    const Lanes entries = LookedUp(table, lanes);
    for (std::size_t i = 0; i < lanes.size(); ++i) {
      ASSERT_EQ(entries[i], lanes[i] < 0 ? 0 : table[static_cast<std::size_t>(lanes[i])]) << i;
    }
  });
}

TEST_F(WideBytesTest, JoinSixBitsMakesOneNumberOfFourLanes) {
  ForEachByteInEachLane([](Lanes lanes) {
    for (signed char& lane : lanes) lane = static_cast<signed char>(lane & 63);
    const Lanes joined = JoinedSixBits(lanes);
    for (std::size_t i = 0; i < lanes.size(); i += 4) {
      std::uint32_t number = 0;
      for (std::size_t k = 0; k < 4; ++k) {
        number = number * 64 + static_cast<std::uint32_t>(lanes[i + k]);
      }
      std::uint32_t word = 0;
      std::memcpy(&word, &joined[i], sizeof word);
      ASSERT_EQ(word, number) << i;
    }
  });
}

TEST_F(WideBytesTest, JoinTwelvesMovesTheFirstTwelveOfEachHalfToTheFront) {
  Lanes lanes;
  for (std::size_t i = 0; i < lanes.size(); ++i) lanes[i] = static_cast<signed char>(i);
  std::vector<signed char> expected;
  for (std::size_t half = 0; half < lanes.size(); half += base::kBytes16) {
    expected.insert(expected.end(), &lanes[half], &lanes[half] + 12);
  }
  const Lanes joined = JoinedTwelves(lanes);
  EXPECT_TRUE(std::equal(expected.begin(), expected.end(), joined.begin()));
}

TEST_F(WideBytesTest, IsAllZeroLooksAtEachLane) {
  EXPECT_TRUE(AreAllZero(Lanes{}));
  for (std::size_t i = 0; i < base::kWideBytes; ++i) {
    Lanes lanes{};
    lanes[i] = 1;
    EXPECT_FALSE(AreAllZero(lanes)) << i;
    lanes[i] = -128;
    EXPECT_FALSE(AreAllZero(lanes)) << i;
  }
}

}  // namespace
}  // namespace zqv::test
