TEST_F(DebugLog, IsOffAtFirst) { EXPECT_EQ(getDebugging(), 0); }

TEST_F(DebugLog, TurningOnIsLoggedOnce) {
  const LogCapture log;
  DebuggingEnabled = false;
  setDebugging(1);
  setDebugging(1);
  EXPECT_EQ(log.Text(), "ZQV Debug: ZQV debug logging enabled.\n");
}

TEST_F(DebugLog, TurningOffIsNotLogged) {
  const LogCapture log;
  setDebugging(0);
  setDebugging(0);
  EXPECT_EQ(log.Text(), "");
  setDebugging(1);
  EXPECT_EQ(log.Text(), Logged({"ZQV debug logging enabled."}));
}

TEST_F(DebugLog, AnyNonZeroValueIsTrue) {
  const LogCapture log;
  for (const int value : {1, 2, -1, 127, -128}) {
    setDebugging(static_cast<abi::RBBoolean>(value));
    EXPECT_EQ(getDebugging(), 1) << value;
  }
  setDebugging(0);
  EXPECT_EQ(getDebugging(), 0);
}
