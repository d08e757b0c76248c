#include "objects/switches.h"

#include <gtest/gtest.h>

#include "base/log.h"
#include "tests/unit/base/log_capture.h"

namespace zqv::objects {
namespace {

using test::LogCapture;
using test::Logged;

// Turns the switches off after each test.
class Switches : public ::testing::Test {
 protected:
  ~Switches() override {
    base::DebuggingEnabled = false;
    setRaiseUnknownFormatExceptions(0);
  }
};

TEST_F(Switches, AreOffAtFirst) {
  EXPECT_EQ(getDebugging(), 0);
  EXPECT_EQ(getRaiseUnknownFormatExceptions(), 0);
  EXPECT_FALSE(RaisesUnknownFormats());
}

TEST_F(Switches, TurningOnIsLoggedOnce) {
  const LogCapture log;
  base::DebuggingEnabled = false;
  setDebugging(1);
  setDebugging(1);
  EXPECT_EQ(log.Text(), "ZQV Debug: ZQV debug logging enabled.\n");
}

TEST_F(Switches, TurningOffIsNotLogged) {
  const LogCapture log;
  setDebugging(0);
  setDebugging(0);
  EXPECT_EQ(log.Text(), "");
  setDebugging(1);
  EXPECT_EQ(log.Text(), Logged({"ZQV debug logging enabled."}));
}

TEST_F(Switches, AnyNonZeroValueIsTrue) {
  const LogCapture log;
  for (const int value : {1, 2, -1, 127, -128}) {
    setDebugging(static_cast<abi::RBBoolean>(value));
    EXPECT_EQ(getDebugging(), 1) << value;
  }
  setDebugging(0);
  EXPECT_EQ(getDebugging(), 0);
}
TEST_F(Switches, DebuggingIsTheLogs) {
  const LogCapture log;
  setDebugging(0);
  EXPECT_FALSE(base::IsLogging());
  setDebugging(1);
  EXPECT_TRUE(base::IsLogging());
}

TEST_F(Switches, RaisingIsReadAndWritten) {
  setRaiseUnknownFormatExceptions(2);
  EXPECT_EQ(getRaiseUnknownFormatExceptions(), 1);
  EXPECT_TRUE(RaisesUnknownFormats());
  setRaiseUnknownFormatExceptions(0);
  EXPECT_EQ(getRaiseUnknownFormatExceptions(), 0);
  EXPECT_FALSE(RaisesUnknownFormats());
}

}  // namespace
}  // namespace zqv::objects
