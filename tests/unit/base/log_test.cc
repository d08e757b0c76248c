#include "base/log.h"

#include <gtest/gtest.h>

#include <string>

#include "base/system_log.h"
#include "tests/unit/base/log_capture.h"

namespace zqv::base {
namespace {

using test::LogCapture;
using test::Logged;

// Turns the debug log off after each test.
class DebugLog : public ::testing::Test {
 protected:
  ~DebugLog() override { DebuggingEnabled = false; }
};

TEST_F(DebugLog, IsOffAtFirst) { EXPECT_FALSE(IsLogging()); }

TEST_F(DebugLog, LinesAreCutAt4095Characters) {
  const LogCapture log;
  LogMessageX("%s", std::string(5000, 'x').c_str());
  LogMessageX("%s%s", std::string(4094, 'y').c_str(), "zz");
  EXPECT_EQ(log.Text(), std::string(4095, 'x') + "\n" + std::string(4094, 'y') + "z\n");
}

TEST_F(DebugLog, MessagesAreWrittenWhateverTheSwitchSays) {
  const LogCapture log;
  DebuggingEnabled = false;
  LogMessageX("%s %d", "x", 5);
  EXPECT_EQ(log.Text(), "x 5\n");
}

TEST_F(DebugLog, MacroTestsTheSwitchBeforeItEvaluatesArguments) {
  const LogCapture log;
  int computed = 0;
  const auto compute = [&] { return ++computed; };
  DebuggingEnabled = false;
  ZQV_LOG("number %d", compute());
  EXPECT_EQ(computed, 0);
  DebuggingEnabled = true;
  ZQV_LOG("number %d", compute());
  EXPECT_EQ(log.Text(), Logged({"number 1"}));
}

TEST_F(DebugLog, EachFormatOfALine) {
  const LogCapture log;
  ZQV_LOG("subject %s, %s", "a", "b");
  ZQV_LOG("subject %ld", -3L);
  ZQV_LOG("subject %lu", 3UL);
  ZQV_LOG("subject %lld", -9000000000LL);
  ZQV_LOG("NewDate %lld, %lld, %lld, %lld, %lld, %lld", 1LL, 2LL, 3LL, 4LL, 5LL, 6LL);
  ZQV_LOG("subject %f", 2013.04);
  EXPECT_EQ(log.Text(), Logged({"subject a, b", "subject -3", "subject 3", "subject -9000000000",
                                "NewDate 1, 2, 3, 4, 5, 6", "subject 2013.040000"}));
}

TEST(LogLines, EndInALineBreak) {
  const LogCapture log;
  WriteLogLine("first");
  WriteLogLine("");
  WriteLogLine("100 % of it");
  EXPECT_EQ(log.Text(), "first\n\n100 % of it\n");
}

}  // namespace
}  // namespace zqv::base
