#include "host/string_bytes.h"

#include <gtest/gtest.h>

#include <string>

#include "standin/application.h"
#include "tests/support/alone.h"
#include "tests/unit/base/log_capture.h"
#include "tests/unit/host/host_fixture.h"

namespace zqv::host {
namespace {

using test::Logged;

using StringBytes = test::HostTest;

constexpr char kNoData[] = "data is NULL, so size fixed to zero.";

TEST_F(StringBytes, AreTheStringsOwn) {
  Start();
  const std::string_view text("a\0\xE9", 3);
  for (const abi::Encoding encoding :
       {abi::kUtf8, abi::kMacRoman, abi::kUtf16, abi::kUnknownEncoding}) {
    const auto string = standin::MakeString(text, encoding);
    const rbData data(string.raw());
    EXPECT_EQ(data.bytes(), text);
    EXPECT_EQ(data.bytes().data(), string.bytes().data());
    EXPECT_EQ(data.length(), 3);
  }
}

TEST_F(StringBytes, HoldTheString) {
  Start();
  const auto string = standin::MakeString("x");
  {
    const rbData data(string.raw());
    EXPECT_EQ(string.locks(), 2);
  }
  EXPECT_EQ(string.locks(), 1);
}

TEST_F(StringBytes, NilHasNone) {
  Start();
  const test::LogCapture log;
  const rbData data(nullptr);
  EXPECT_EQ(data.bytes(), "");
  EXPECT_EQ(data.length(), 0);
  EXPECT_EQ(log.Text(), Logged({kNoData}));
  EXPECT_EQ(host().TotalCalls(), 0u);
}

TEST_F(StringBytes, HostThatDoesNotGiveThemHasNone) {
  StartWithout("StringGetCString");
  const auto string = standin::MakeString("x");
  const test::LogCapture log;
  const rbData data(string.raw());
  EXPECT_EQ(data.bytes(), "");
  EXPECT_EQ(data.length(), 0);
  EXPECT_EQ(log.Text(), Logged({kNoData}));
}

TEST_F(StringBytes, EmptyStringHasNone) {
  Start();
  const auto string = standin::MakeEmptyString(abi::kUtf8);
  const test::LogCapture log;
  EXPECT_EQ(rbData(string.raw()).bytes(), "");
  EXPECT_EQ(log.Text(), "");
}

TEST_F(StringBytes, WithoutALengthThereAreNone) {
  if (!test::IsAlone()) return;
  StartWithout("REALLoadGlobalMethod");
  const auto string = standin::MakeString("x");
  EXPECT_EQ(rbData(string.raw()).bytes(), "");
}

TEST_F(StringBytes, LengthMethodIsAskedForOnce) {
  if (!test::IsAlone()) return;
  Start();
  const auto string = standin::MakeString("x");
  EXPECT_EQ(rbData(string.raw()).bytes(), "x");
  EXPECT_EQ(rbData(string.raw()).bytes(), "x");
  EXPECT_EQ(host().CallCount("REALLoadGlobalMethod"), 1u);
}

TEST_F(StringBytes, LengthMethodThatIsMissingIsAskedForAgain) {
  if (!test::IsAlone()) return;
  StartWithFault("REALLoadGlobalMethod", {standin::Fault::Kind::kNothing, 1, 1});
  const auto string = standin::MakeString("x");
  EXPECT_EQ(rbData(string.raw()).bytes(), "");
  EXPECT_EQ(rbData(string.raw()).bytes(), "x");
}

abi::RBInteger NegativeLength(abi::REALstring) { return -7; }
void* LoadNegativeLength(const char*, const char*) {
  return reinterpret_cast<void*>(&NegativeLength);
}

TEST_F(StringBytes, NegativeLengthIsKeptAndHasNoBytes) {
  if (!test::IsAlone()) return;
  Start();
  Replace("REALLoadGlobalMethod", &LoadNegativeLength);
  const auto string = standin::MakeString("x");
  const rbData data(string.raw());
  EXPECT_EQ(data.length(), -7);
  EXPECT_EQ(data.bytes(), "");
}

}  // namespace
}  // namespace zqv::host
