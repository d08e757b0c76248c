// The tests of tests/interface with a library for macOS in the place of this system's. Which, and
// with which C++ library, is compiled in.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "standin/library.h"
#include "tests/macho/core_foundation.h"
#include "tests/macho/image.h"
#include "tests/macho/operators.h"
#include "tests/macho/system.h"

namespace zqv::macho {
namespace {

// What nobody calls: parts of the C++ library that the plug-in does not use.
[[noreturn]] void FailToCall() {
  std::fputs("a function is called that this system lacks\n", stderr);
  std::abort();
}

void* FindForRuntime(const std::string& name) {
  void* const found = FindSystemSymbol(name);
  return found != nullptr ? found : reinterpret_cast<void*>(&FailToCall);
}

const Image& TheRuntime() {
  static const Image kRuntime(ZQV_MACHO_RUNTIME, &FindForRuntime, &FindOperator);
  return kRuntime;
}

void* FindForPlugin(const std::string& name) {
  if (void* const found = TheRuntime().Find(name)) return found;
  if (void* const found = FindSystemSymbol(name)) return found;
  throw std::runtime_error("the library needs " + name + ", which is not there");
}

// In the place of this system's file the one for macOS is opened, whatever the tests ask for.
abi::REALproc OpenPlugin(const std::string&) {
  AddImage(TheRuntime());
  TheRuntime().Initialise();
  ThrowBadAllocBy(TheRuntime().Find("__ZSt17__throw_bad_allocv"));
  static const Image kPlugin(ZQV_MACHO_LIBRARY, &FindForPlugin, &FindOperator);
  AddImage(kPlugin);
  kPlugin.Initialise();
  return reinterpret_cast<abi::REALproc>(kPlugin.Find("_REALPluginMain"));
}

class NoObjectsLeft : public ::testing::Environment {
 public:
  void TearDown() override { EXPECT_EQ(LiveCoreFoundationObjects(), 0U); }
};

}  // namespace
}  // namespace zqv::macho

int main(int argc, char** argv) {
  ::testing::InitGoogleMock(&argc, argv);
  ::testing::AddGlobalTestEnvironment(new zqv::macho::NoObjectsLeft);
  zqv::standin::UseOpener(&zqv::macho::OpenPlugin);
  return RUN_ALL_TESTS();
}
