// What NSLog puts before a line is taken away, and nothing else.
#include "tests/support/system_log_lines.h"

#include <gtest/gtest.h>

namespace zqv::test {
namespace {

TEST(SystemLogLines, LoseWhatStandsBeforeTheText) {
  EXPECT_EQ(WithoutSystemLogPrefixes("2024-05-06 07:08:09.012 a_test[345:6789] parts count 0\n"
                                     "2024-05-06 07:08:09.012 a test[345:67af] f\n"),
            "parts count 0\nf\n");
  EXPECT_EQ(WithoutSystemLogPrefixes("2024-05-06 07:08:09.012345+0200 t[3:6] a\n"), "a\n");
  EXPECT_EQ(WithoutSystemLogPrefixes("2024-05-06 07:08:09.012345-0330 t[3:6] a\n"), "a\n");
}

TEST(SystemLogLines, KeepTheirTextAsItIs) {
  EXPECT_EQ(WithoutSystemLogPrefixes("2024-05-06 07:08:09.012 t[3:6] [1:2]  b"), "[1:2]  b");
  EXPECT_EQ(WithoutSystemLogPrefixes("2024-05-06 07:08:09.012 t[3:6] \n"), "\n");
}

TEST(SystemLogLines, WithoutAPrefixStayWhole) {
  for (const char* text : {"", "\n", "\n\n", "a", "native path: /a [1:2] b\n", "2024-05-06\n",
                           "2024-05-06 07:08:09.012\n", "2024-05-06 07:08:09.012 t\n",
                           "2024-05-06 07:08:09.012 t[3:6]x\n", "2024-05-06 07:08:09.012 t[3] x\n",
                           "2024-05-06 07:08:09 t[3:6] x\n", "24/05/06 07:08:09.012 t[3:6] x\n"}) {
    EXPECT_EQ(WithoutSystemLogPrefixes(text), text);
  }
}

}  // namespace
}  // namespace zqv::test
