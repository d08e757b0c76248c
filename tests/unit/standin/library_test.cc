#include "standin/library.h"

#include <stdexcept>

#include "tests/unit/standin/fixture.h"

namespace zqv::standin {
namespace {

class LibraryTest : public HostTest {};

std::string FailureOf(const std::string& path) {
  try {
    const Library library(path);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "no failure";
}

TEST_F(LibraryTest, RunsTheExportedFunction) {
  StartWithPlugin();
  EXPECT_EQ(host().classes().registered().size(), 3U);
  EXPECT_EQ(host().CallCount("PluginRegisterClass"), 3U);
  EXPECT_EQ(host().classes().announced(), std::set<int>{13});
}

TEST_F(LibraryTest, MissingFile) {
  const std::string failure = FailureOf("no-such-file.so");
  EXPECT_EQ(failure,
            "cannot load no-such-file.so: ./no-such-file.so: cannot open shared object file: No "
            "such file or directory");
}

TEST_F(LibraryTest, FileWithoutTheExport) {
  const std::string failure = FailureOf(ZQV_TEST_NO_PLUGIN);
  EXPECT_NE(failure.find("undefined symbol: REALPluginMain"), std::string::npos) << failure;
}

TEST_F(LibraryTest, NullResolver) {
  Start();
  Library(ZQV_TEST_PLUGIN).EnterWith(nullptr);
  EXPECT_TRUE(host().classes().registered().empty());
}

TEST_F(LibraryTest, AcceptsASecondHostAfterTheFirst) {
  for (int i = 0; i < 2; ++i) {
    StartWithPlugin();
    EXPECT_EQ(Construct("Animal", "Constructor(Name as String)", MakeString("x")).locks(), 1);
    TearDown();
  }
}

TEST_F(LibraryTest, MissingRegistrationIsNoMisuseOfThePlugin) {
  Capabilities capabilities;
  capabilities.faults["PluginRegisterClass"] = {Fault::Kind::kNothing, 1, 1};
  StartWithPlugin(capabilities);
  ASSERT_EQ(host().classes().registered().size(), 1U);
  EXPECT_EQ(host().classes().registered()[0]->name, "Keeper")
      << "Dog cannot be registered without its super class";
}

TEST_F(LibraryTest, ListingShowsEverythingRegistered) {
  StartWithPlugin();
  EXPECT_EQ(host().ListClasses(),
            R"list(class Animal, version 13, data size 48, flags 0x4, destructor
  property Name as String, flags 0x6, record 0
  property Friend as Animal, flags 0x6, record 8
  property Legs as Integer, flags 0x6, record 24
  property Weight as Double, flags 0x6, record 32
  property Tame as Boolean, flags 0x6, record 40
  property FriendsVariant as Variant, flags 0x6, getter 0
  property Count as Integer, flags 0x6, getter 0
  property LoudName as String, flags 0x6, getter 0
  property Half as Double, flags 0x6, getter 0
  property IsBig as Boolean, flags 0x6, getter 0
  property Born as Date, flags 0x6, getter 0
  property Param as Integer, flags 0x6, getter 99
  method "Friends as Animal()", flags 0x4
  method "Friends(index as Integer) as Animal", flags 0x4
  method "Constructor(Name as String)", flags 0x4
  method "Constructor(Block as MemoryBlock)", flags 0x4
  method "Constructor(Legs as Integer)", flags 0x4
  method "Befriend(other as Animal)", flags 0x4
  method "Add(a as Integer, b as Integer) as Integer", flags 0x4
  method "Mix(a as Double, b as Integer, c as Double) as Double", flags 0x4
  method "Invert(value as Boolean) as Boolean", flags 0x4
  method "Echo(value as Variant) as Variant", flags 0x4
  method "Raise(kind as String, message as String) as String", flags 0x4
  method "Misuse(what as String) as Variant", flags 0x4
  method "BadBoolean as Boolean", flags 0x4
  method "WrongClass as Animal", flags 0x4
  method "Hide", flags 0x44
  shared property Destroyed as String, flags 0x6, getter 0
  shared property Verbose as Boolean, flags 0x26, getter 0, setter, attribute Hidden=""
  shared method "Twice(text as String) as String", flags 0x4
class Dog of Animal, version 13, data size 0, flags 0x4, destructor
  property Keeper as Keeper, flags 0x6, getter 0
  method "Bark as String", flags 0x4
class Keeper, version 13, data size 16, flags 0x4
  property Mood as String, flags 0x6, getter 0
  method "Constructor", flags 0x84
)list");
}

}  // namespace
}  // namespace zqv::standin
