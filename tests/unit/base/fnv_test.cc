#include "base/fnv.h"

#include <gtest/gtest.h>

namespace zqv::base {
namespace {

// The published test values of the 64-bit FNV-1a hash.
TEST(Fnv, IsThePublishedHash) {
  EXPECT_EQ(Fnv(""), 0xCBF29CE484222325U);
  EXPECT_EQ(Fnv("a"), 0xAF63DC4C8601EC8CU);
  EXPECT_EQ(Fnv("foobar"), 0x85944171F73967E8U);
}

TEST(Fnv, IsExtendedByteByByte) {
  EXPECT_EQ(ExtendFnv(Fnv("fooba"), 'r'), Fnv("foobar"));
  EXPECT_EQ(ExtendFnv(kFnvOfNothing, '\xFF'), Fnv("\xFF"));
  EXPECT_NE(Fnv("\xFF"), Fnv("\x7F"));
}

}  // namespace
}  // namespace zqv::base
