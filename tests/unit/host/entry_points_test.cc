#include "host/entry_points.h"

#include <gtest/gtest.h>

#include <string>

#include "host/record.h"
#include "tests/support/alone.h"
#include "tests/unit/host/host_fixture.h"

namespace zqv::host {
namespace {

using EntryPoints = test::HostTest;

TEST_F(EntryPoints, VersionIsZeroUntilTheHostSaysOne) {
  if (!test::IsAlone()) return;
  EXPECT_EQ(HostVersion(), 0.0);
  SetHostVersion(2013.04);
  EXPECT_EQ(HostVersion(), 2013.04);
}

TEST_F(EntryPoints, WithoutAResolverNothingIsFoundAndNothingHappens) {
  Start();
  SetResolver(nullptr);
  EXPECT_EQ(Resolve("REALLockString"), nullptr);
  EXPECT_EQ(entry::REALBuildString("x", 1), nullptr);
  EXPECT_EQ(entry::RuntimeUBound(nullptr), 0);
  EXPECT_EQ(entry::REALGetRBVersion(), 0.0);
  entry::REALLockString(nullptr);
  EXPECT_EQ(host().TotalCalls(), 0u);
}

TEST_F(EntryPoints, FoundOnesAreAskedForOnce) {
  Start();
  EXPECT_EQ(host().ResolveCount("REALGetRBVersion"), 0u);
  EXPECT_EQ(entry::REALGetRBVersion(), 2024.1);
  EXPECT_EQ(entry::REALGetRBVersion(), 2024.1);
  EXPECT_EQ(host().ResolveCount("REALGetRBVersion"), 1u);
  EXPECT_EQ(host().CallCount("REALGetRBVersion"), 2u);
}

TEST_F(EntryPoints, MissingOnesAreAskedForEachTime) {
  StartWithout("REALGetRBVersion");
  EXPECT_EQ(entry::REALGetRBVersion(), 0.0);
  EXPECT_EQ(entry::REALGetRBVersion(), 0.0);
  EXPECT_EQ(host().ResolveCount("REALGetRBVersion"), 2u);
}

TEST_F(EntryPoints, MissingOnesGiveNilZeroOrNothing) {
  standin::Capabilities capabilities;
#define ZQV_ENTRY_POINT(name, result, arguments, ownership) capabilities.faults[#name] = {};
#include "abi/entry_points.def"
  Start(capabilities);
  EXPECT_EQ(entry::PluginNewInstance("Date"), nullptr);
  EXPECT_EQ(entry::REALGetStringEncoding(nullptr), 0u);
  EXPECT_EQ(entry::PluginGetStringData(nullptr, 0, nullptr), 0);
  EXPECT_EQ(entry::memoryBlockGetSize(nullptr), 0);
  entry::REALUnlockObject(nullptr);
  EXPECT_EQ(host().TotalCalls(), 0u);
}

TEST_F(EntryPoints, NamesAreThoseOfTheHost) {
  Start();
  int count = 0;
  for (const char* name : {
#define ZQV_ENTRY_POINT(name, result, arguments, ownership) #name,
#include "abi/entry_points.def"
       }) {
    ++count;
    if (std::string(name) == "REALGetStringCFString") continue;  // only hosts on macOS have it
    EXPECT_NE(Resolve(name), nullptr) << name;
  }
  EXPECT_EQ(count, 35);
  EXPECT_EQ(host().StrangeNames(), 0u);
}

struct TestRecord {
  std::int64_t first;
};
struct OtherRecord {
  std::int64_t first;
};

TEST(Records, AreFoundThroughTheDefinition) {
  alignas(16) char instance[64] = {};
  const auto object = reinterpret_cast<abi::REALobject>(instance);
  abi::REALclassDefinition definition{};
  EXPECT_EQ(RecordOf<TestRecord>(object), nullptr);
  BindRecord<TestRecord>(&definition);
  definition.forSystemUse = 48;  // the host sets it after the definition was bound
  EXPECT_EQ(static_cast<void*>(RecordOf<TestRecord>(object)), instance + 48);
  EXPECT_EQ(RecordOf<TestRecord>(nullptr), nullptr);
  EXPECT_EQ(RecordOf<OtherRecord>(object), nullptr);
  BindRecord<TestRecord>(nullptr);
}

}  // namespace
}  // namespace zqv::host
