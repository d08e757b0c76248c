// Runs the tests of tests/interface with a library for macOS instead of this system's. Its path,
// and that of the C++ library, are compiled in.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "standin/library.h"
#include "tests/macho/core_foundation.h"
#include "tests/macho/plugin.h"

namespace zqv::macho {
namespace {

class NoObjectsLeft : public ::testing::Environment {
 public:
  void TearDown() override { EXPECT_EQ(LiveCoreFoundationObjects(), 0U); }
};

// Opens the library for macOS, whatever path the tests give.
abi::REALproc OpenPlugin(const std::string&) {
  static const Plugin kPlugin;
  return kPlugin.entry();
}

}  // namespace
}  // namespace zqv::macho

int main(int argc, char** argv) {
  ::testing::InitGoogleMock(&argc, argv);
  ::testing::AddGlobalTestEnvironment(new zqv::macho::NoObjectsLeft);
  zqv::standin::UseOpener(&zqv::macho::OpenPlugin);
  return RUN_ALL_TESTS();
}
