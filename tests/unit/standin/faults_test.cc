// Counts of calls, injected faults, and the entry points that the resolver offers.
#include <stdexcept>

#include "standin/invoke.h"
#include "tests/unit/standin/fixture.h"

namespace zqv::standin {
namespace {

class FaultsTest : public HostTest {
 protected:
  void StartWithFault(const char* name, Fault fault) {
    Capabilities capabilities;
    capabilities.faults[name] = fault;
    Start(capabilities);
  }
};
using FaultsDeathTest = FaultsTest;

TEST_F(FaultsTest, OffersEveryListedEntryPointButOne) {
  Start();
  int offered = 0;
#define ZQV_ENTRY_POINT(name, result, arguments, ownership) \
  if (api().name != nullptr) ++offered;
#include "abi/entry_points.def"
  EXPECT_EQ(offered, 34);
  EXPECT_EQ(api().REALGetStringCFString, nullptr);
}

TEST_F(FaultsTest, PlatformStringsWhenGiven) {
  Capabilities capabilities;
  static int made = 0;
  capabilities.platform_string = [](std::string_view bytes, abi::Encoding encoding) {
    EXPECT_EQ(bytes, "abc");
    EXPECT_EQ(encoding, abi::kAscii);
    return static_cast<abi::PlatformString>(&made);
  };
  Start(capabilities);
  const abi::REALstring string = Build("abc", abi::kAscii);
  EXPECT_EQ(api().REALGetStringCFString(string, 0), &made);
  api().REALUnlockString(string);
}

TEST_F(FaultsTest, UnknownNamesResolveToNull) {
  Start();
  EXPECT_EQ(host().resolver()("REALNoSuchThing"), nullptr);
  EXPECT_EQ(host().resolver()("reallockobject"), nullptr);
  EXPECT_EQ(host().StrangeNames(), 2U);
}

TEST_F(FaultsTest, CountsCallsAndLookUps) {
  Start();
  EXPECT_EQ(host().ResolveCount("REALGetRBVersion"), 1U);
  host().resolver()("REALGetRBVersion");
  EXPECT_EQ(host().ResolveCount("REALGetRBVersion"), 2U);
  EXPECT_EQ(host().CallCount("REALGetRBVersion"), 0U);
  EXPECT_EQ(api().REALGetRBVersion(), 2024.1);
  EXPECT_EQ(host().CallCount("REALGetRBVersion"), 1U);
  EXPECT_EQ(host().TotalCalls(), 1U);
}

TEST_F(FaultsDeathTest, CountOfAMistypedName) {
  Start();
  EXPECT_DEATH(host().CallCount("REALGetVersion"), "there is no entry point \"REALGetVersion\"");
  EXPECT_DEATH(host().SetFault("Nothing", Fault{}), "there is no entry point");
}

TEST_F(FaultsTest, Missing) {
  StartWithFault("REALGetRBVersion", {Fault::Kind::kMissing});
  EXPECT_EQ(api().REALGetRBVersion, nullptr);
  EXPECT_EQ(host().ResolveCount("REALGetRBVersion"), 1U);
}

TEST_F(FaultsTest, NothingFromTheThirdCall) {
  StartWithFault("PluginNewInstance", {Fault::Kind::kNothing, 3});
  for (int i = 0; i < 2; ++i) {
    const abi::REALobject date = api().PluginNewInstance("Date");
    EXPECT_NE(date, nullptr);
    api().REALUnlockObject(date);
  }
  EXPECT_EQ(api().PluginNewInstance("Date"), nullptr);
  EXPECT_EQ(api().PluginNewInstance("Date"), nullptr);
  EXPECT_EQ(host().CallCount("PluginNewInstance"), 4U);
}

TEST_F(FaultsTest, NothingForOneCall) {
  StartWithFault("REALGetRBVersion", {Fault::Kind::kNothing, 2, 1});
  EXPECT_EQ(api().REALGetRBVersion(), 2024.1);
  EXPECT_EQ(api().REALGetRBVersion(), 0.0);
  EXPECT_EQ(api().REALGetRBVersion(), 2024.1);
}

TEST_F(FaultsTest, Throws) {
  StartWithFault("REALBuildString", {Fault::Kind::kThrows});
  EXPECT_THROW(api().REALBuildString("a", 1), std::runtime_error);
  host().SetFault("REALBuildString", Fault{Fault::Kind::kThrowsInt});
  EXPECT_THROW(api().REALBuildString("a", 1), int);
  host().SetFault("REALBuildString", std::nullopt);
  const abi::REALstring string = api().REALBuildString("a", 1);
  EXPECT_NE(string, nullptr);
  api().REALUnlockString(string);
}

TEST_F(FaultsTest, BrokenLocksMakeThingsImmortal) {
  StartWithFault("REALLockString", {Fault::Kind::kNothing});
  EXPECT_FALSE(host().CountsLocks());
  const abi::REALstring string = Build("a");
  api().REALLockString(string);
  api().REALUnlockString(string);
  api().REALUnlockString(string);
  EXPECT_EQ(Bytes(string), "a");
  const abi::REALobject date = api().PluginNewInstance("Date");
  api().REALUnlockObject(date);
  EXPECT_EQ(host().ledger().Live().objects, 0) << "objects are still counted";
}

TEST_F(FaultsTest, ReportsTheVersion) {
  Capabilities capabilities;
  capabilities.version = 2013.035;
  Start(capabilities);
  EXPECT_EQ(api().REALGetRBVersion(), 2013.035);
}

const Api* api_of_plugin = nullptr;
bool seen_before = false;
bool seen_inside_entry = false;
bool seen_after = false;

// Stands for a function of the plug-in. It calls an entry point and records whether InPlugin holds
// before, during and after the call.
void NoteWhere() {
  seen_before = InPlugin();
  api_of_plugin->REALGetStringCFString(nullptr, 0);
  seen_after = InPlugin();
}

TEST_F(FaultsTest, KnowsWhetherThePluginRuns) {
  Capabilities capabilities;
  capabilities.platform_string = [](std::string_view, abi::Encoding) {
    seen_inside_entry = InPlugin();
    return abi::PlatformString{nullptr};
  };
  Start(capabilities);
  api_of_plugin = &api();
  seen_inside_entry = true;
  EXPECT_FALSE(InPlugin());
  CallNothing(&NoteWhere, {}, "note");
  EXPECT_TRUE(seen_before);
  EXPECT_FALSE(seen_inside_entry);
  EXPECT_TRUE(seen_after);
  EXPECT_FALSE(InPlugin());
}

TEST_F(FaultsDeathTest, CallWithMoreArgumentsThanRegisters) {
  CallArguments arguments;
  for (int i = 0; i < 6; ++i) arguments.Add(std::int64_t{i});
  for (int i = 0; i < 2; ++i) arguments.AddDouble(i);
  EXPECT_DEATH(arguments.Add(nullptr), "more arguments than registers");
  EXPECT_DEATH(arguments.AddDouble(0), "more arguments than registers");
}

}  // namespace
}  // namespace zqv::standin
