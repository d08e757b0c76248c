// Calls of an application on a plug-in's classes, and the errors that the host detects in them.
#include "standin/application.h"

#include <stdexcept>

#include "standin/poison.h"
#include "tests/unit/standin/fixture.h"

namespace zqv::standin {
namespace {

class ApplicationTest : public HostTest {
 protected:
  void SetUp() override { StartWithPlugin(); }

  static Object NewAnimal(std::string_view name) {
    return Construct("Animal", "Constructor(Name as String)", MakeString(name));
  }
  static Object NewDog(std::string_view name) {
    return Construct("Dog", "Constructor(Name as String)", MakeString(name));
  }
  static void DoMisuse(const Object& object, std::string_view what) {
    Call(object, "Misuse", MakeString(what));
  }
};
using ApplicationDeathTest = ApplicationTest;

TEST_F(ApplicationTest, HandlesHoldOneLockEach) {
  String first = MakeString("abc", abi::kIsoLatin1);
  EXPECT_EQ(first.locks(), 1);
  EXPECT_EQ(first.bytes(), "abc");
  EXPECT_EQ(first.encoding(), 0x0201U);
  {
    const String second = first;
    EXPECT_EQ(first.locks(), 2);
    EXPECT_TRUE(second == first);
  }
  EXPECT_EQ(first.locks(), 1);
  const String moved = std::move(first);
  EXPECT_EQ(moved.locks(), 1);
  EXPECT_EQ(host().ledger().Live().strings, 1);
}

TEST_F(ApplicationTest, EmptyStringsAreNilUnlessAskedFor) {
  EXPECT_TRUE(MakeString("").IsNil());
  EXPECT_EQ(MakeString("").Utf8(), "");
  const String empty = MakeEmptyString(abi::kUnknownEncoding);
  EXPECT_FALSE(empty.IsNil());
  EXPECT_EQ(empty.bytes(), "");
  EXPECT_EQ(api().StringGetCString(empty.raw()) != nullptr, true);
}

TEST_F(ApplicationTest, Utf8OfAString) {
  EXPECT_EQ(MakeString("\xE4", abi::kIsoLatin1).Utf8(), "\xC3\xA4");
  EXPECT_EQ(MakeString("\xE4", abi::kUtf8).Utf8(), std::nullopt);
}

TEST_F(ApplicationTest, RecordsAreZeroFilled) {
  const Object animal = NewInstance("Animal");
  EXPECT_TRUE(IsNil(Get(animal, "Name")));
  EXPECT_TRUE(IsNil(Get(animal, "Friend")));
  EXPECT_TRUE(IsNil(Call(animal, "Friends")));
  EXPECT_EQ(std::get<std::int64_t>(Get(animal, "Legs")), 0);
  EXPECT_EQ(std::get<double>(Get(animal, "Weight")), 0.0);
  EXPECT_EQ(std::get<bool>(Get(animal, "Tame")), false);
}

TEST_F(ApplicationTest, ConstructorByDeclarationOrByArguments) {
  EXPECT_EQ(BytesOf(Get(NewAnimal("Tom"), "Name")), "Tom");
  const Object by_block = Construct("Animal", "Constructor", MakeMemoryBlock("Rex"));
  EXPECT_EQ(BytesOf(Get(by_block, "Name")), "Rex");
  const Object by_string = Construct("animal", "constructor", MakeString("Pip"));
  EXPECT_EQ(BytesOf(Get(by_string, "name")), "Pip");
}

TEST_F(ApplicationTest, StandardGetterAddsALock) {
  const String name = MakeString("Tom");
  const Object animal = Construct("Animal", "Constructor", name);
  EXPECT_EQ(name.locks(), 2);
  {
    const Value read = Get(animal, "Name");
    EXPECT_EQ(name.locks(), 3);
    EXPECT_TRUE(std::get<String>(read) == name);
  }
  EXPECT_EQ(name.locks(), 2);
}

TEST_F(ApplicationTest, EveryKindOfPropertyIsRead) {
  const Object animal = NewAnimal("Tom");
  EXPECT_EQ(std::get<std::int64_t>(Get(animal, "Legs")), 4);
  EXPECT_EQ(std::get<double>(Get(animal, "Weight")), 12.5);
  EXPECT_EQ(std::get<double>(Get(animal, "Half")), 2.0);
  EXPECT_EQ(std::get<bool>(Get(animal, "IsBig")), false);
  EXPECT_EQ(std::get<std::int64_t>(Get(animal, "Count")), 0);
  EXPECT_EQ(std::get<std::int64_t>(Get(animal, "Param")), 99)
      << "a getter receives the param of its row";
  const Value loud = Get(animal, "LoudName");
  EXPECT_EQ(BytesOf(loud), "Tom!");
  EXPECT_EQ(std::get<String>(loud).locks(), 1);
  const Object born = ObjectOf(Get(animal, "Born"));
  EXPECT_EQ(std::get<std::int64_t>(Get(born, "Year")), 1904);
  EXPECT_EQ(std::get<std::int64_t>(Get(born, "Day")), 2);
  EXPECT_EQ(std::get<double>(Get(born, "TotalSeconds")), 86'400.0);
}

TEST_F(ApplicationTest, ArgumentsOfEveryKind) {
  const Object animal = NewAnimal("Tom");
  EXPECT_EQ(std::get<std::int64_t>(Call(animal, "Add", 40, 2)), 42);
  EXPECT_EQ(std::get<std::int64_t>(Call(animal, "Add", std::int64_t{-5'000'000'000}, 1)),
            -4'999'999'999);
  EXPECT_EQ(std::get<double>(Call(animal, "Mix", 1.0, 2, 3.5)), 123.5);
  EXPECT_EQ(std::get<bool>(Call(animal, "Invert", true)), false);
  EXPECT_EQ(std::get<bool>(Call(animal, "Invert", false)), true);
  EXPECT_TRUE(ObjectOf(Call(animal, "Echo", animal)) == animal);
  EXPECT_TRUE(IsNil(Call(animal, "Echo", nullptr)));
}

TEST_F(ApplicationTest, ArraysAreObjects) {
  const Object tom = NewAnimal("Tom");
  const Object rex = NewDog("Rex");
  Call(tom, "Befriend", rex);
  EXPECT_EQ(rex.locks(), 3) << "one held by the handle, one by the record, one by the array";
  const Object friends = ObjectOf(Call(tom, "Friends as Animal()"));
  ASSERT_TRUE(friends.IsArray());
  EXPECT_EQ(friends.Size(), 1);
  EXPECT_TRUE(ObjectOf(friends.At(0)) == rex);
  EXPECT_TRUE(ObjectOf(Call(tom, "Friends")) == friends);
  EXPECT_TRUE(ObjectOf(Get(tom, "FriendsVariant")) == friends);
  EXPECT_TRUE(ObjectOf(Call(tom, "Friends", 0)) == rex);
  EXPECT_THROW(friends.At(1), std::out_of_range);
  EXPECT_THROW(tom.Size(), std::invalid_argument);
  friends.Append(NewAnimal("Pip"));
  EXPECT_TRUE(ObjectOf(friends.At(0)) == rex);
  EXPECT_EQ(std::get<std::int64_t>(Get(tom, "Count")), 2);
}

TEST_F(ApplicationTest, SubclassHasTheMembersOfItsSuperClass) {
  const Object rex = NewDog("Rex");
  EXPECT_EQ(rex.ClassName(), "Dog");
  EXPECT_TRUE(rex.IsA("animal"));
  EXPECT_FALSE(NewAnimal("x").IsA("Dog"));
  EXPECT_EQ(BytesOf(Get(rex, "Name")), "Rex");
  EXPECT_EQ(BytesOf(Call(rex, "Bark")), "woof");
  EXPECT_EQ(ObjectOf(Get(rex, "Keeper")).ClassName(), "Keeper");
}

TEST_F(ApplicationTest, DestructorsRunFromTheClassUpwards) {
  EXPECT_TRUE(IsNil(GetShared("Animal", "Destroyed")));
  NewDog("Rex");
  EXPECT_EQ(BytesOf(GetShared("Animal", "Destroyed")), "DA");
  NewAnimal("Tom");
  EXPECT_EQ(BytesOf(GetShared("Animal", "Destroyed")), "DAA");
}

TEST_F(ApplicationTest, SharedMembers) {
  EXPECT_EQ(std::get<bool>(GetShared("Animal", "Verbose")), false);
  SetShared("Animal", "verbose", true);
  EXPECT_EQ(std::get<bool>(GetShared("Animal", "Verbose")), true);
  SetShared("Animal", "Verbose", false);
  EXPECT_EQ(BytesOf(CallShared("Animal", "Twice", MakeString("ab"))), "abab");
  EXPECT_TRUE(IsNil(CallShared("Animal", "Twice(text as String) as String", nullptr)));
  EXPECT_THROW(SetShared("Animal", "Destroyed", MakeString("x")), std::invalid_argument);
  EXPECT_THROW(SetShared("Animal", "Verbose", 1), std::invalid_argument);
}

TEST_F(ApplicationTest, PendingExceptionIsThrownAndTheResultReleased) {
  const Object animal = NewAnimal("Tom");
  try {
    Call(animal, "Raise", MakeString("IOException"), MakeString("\xE4", abi::kIsoLatin1));
    FAIL() << "nothing thrown";
  } catch (const HostException& exception) {
    EXPECT_EQ(exception.class_name, "IOException");
    EXPECT_EQ(exception.message, "\xC3\xA4");
    EXPECT_EQ(exception.error_number, 17);
    EXPECT_STREQ(exception.what(), "IOException: \xC3\xA4");
  }
  EXPECT_EQ(host().ledger().Live().objects, 1) << "only the animal is left";
  EXPECT_THROW(Call(animal, "Friends", 0), HostException);
  EXPECT_EQ(std::get<std::int64_t>(Call(animal, "Add", 1, 1)), 2) << "delivered once";
}

TEST_F(ApplicationTest, ExceptionOfAGetterIsThrown) {
  const Object keeper = NewInstance("Keeper");
  EXPECT_THROW(Get(keeper, "Mood"), HostException);
  EXPECT_EQ(host().ledger().Live().Total(), 1) << "the getter's result was released";
}

TEST_F(ApplicationTest, FailedConstructorLeavesNothing) {
  EXPECT_THROW(Construct("Animal", "Constructor(Legs as Integer)", 1), HostException);
  EXPECT_EQ(host().ledger().Live().Total(), 0);
}

TEST_F(ApplicationTest, ReportsAnExceptionOutsideACall) {
  const Object animal = NewAnimal("Tom");
  const Object exception = NewInstance("IOException");
  api().RuntimeRaiseException(exception.raw());
  EXPECT_EQ(BytesOf(Get(animal, "LoudName")), "Tom!");
  EXPECT_EQ(host().StrayExceptions(), 1U);
  EXPECT_EQ(exception.locks(), 1);
}

TEST_F(ApplicationTest, RefusesWrongArguments) {
  const Object animal = NewAnimal("Tom");
  EXPECT_THROW(NewInstance("Unicorn"), std::invalid_argument);
  EXPECT_THROW(Get(animal, "Horn"), std::invalid_argument);
  EXPECT_THROW(Get(Object(), "Name"), std::invalid_argument);
  EXPECT_THROW(Call(animal, "Fly"), std::invalid_argument);
  EXPECT_THROW(Call(animal, "Add", 1), std::invalid_argument);
  EXPECT_THROW(Call(animal, "Add", 1, MakeString("2")), std::invalid_argument);
  EXPECT_THROW(Call(animal, "Add", 1.0, 2), std::invalid_argument);
  EXPECT_THROW(Call(animal, "Befriend", NewInstance("Date")), std::invalid_argument);
  EXPECT_THROW(Call(animal, "Invert", 1), std::invalid_argument);
  EXPECT_THROW(Call(animal, "Add(a as Integer) as Integer", 1), std::invalid_argument);
  EXPECT_THROW(Construct("Animal", "Constructor", nullptr), std::invalid_argument)
      << "a nil argument matches both constructors";
  EXPECT_THROW(Construct("Animal", "Invert", true), std::invalid_argument);
  EXPECT_THROW(Get(ObjectOf(Call(animal, "Friends")), "Name"), std::invalid_argument);
}

TEST_F(ApplicationTest, PrivateMembersAreRefused) {
  EXPECT_THROW(Construct("Keeper", "Constructor"), std::invalid_argument);
  EXPECT_FALSE(NewInstance("Keeper").IsNil());
  EXPECT_THROW(Call(NewAnimal("x"), "Hide"), std::invalid_argument);
}

TEST_F(ApplicationTest, NilFitsAWholeDeclaration) {
  const Object animal = Construct("Animal", "Constructor(Name as String)", nullptr);
  EXPECT_TRUE(IsNil(Get(animal, "Name")));
}

TEST_F(ApplicationTest, FindsTheFunctionOfAMethod) {
  using Function = abi::RBInteger (*)(abi::REALobject, abi::RBInteger, abi::RBInteger);
  const auto function = reinterpret_cast<Function>(
      FunctionOf("Animal", "Add(a as Integer, b as Integer) as Integer"));
  EXPECT_EQ(function(nullptr, 20, 3), 23);
  EXPECT_NE(FunctionOf("Keeper", "Constructor"), nullptr);
  EXPECT_THROW(FunctionOf("Animal", "Add as Integer"), std::invalid_argument);
}

TEST_F(ApplicationDeathTest, ExceptionLeavingTheLibrary) {
  const Object animal = NewAnimal("Tom");
  EXPECT_DEATH(DoMisuse(animal, "throw"),
               "Animal.Misuse: a C.. exception left the library: thrown");
  EXPECT_DEATH(DoMisuse(animal, "throw int"), "Animal.Misuse: a C.. exception left the library");
}

TEST_F(ApplicationDeathTest, BorrowedArgumentGivenAway) {
  const Object animal = NewAnimal("Tom");
  EXPECT_DEATH(DoMisuse(animal, "unlock argument"), "Misuse: a borrowed argument has fewer locks");
}

TEST_F(ApplicationDeathTest, ResultOfTheWrongType) {
  const Object animal = NewAnimal("Tom");
  EXPECT_DEATH(DoMisuse(animal, "return string"), "Animal.Misuse: an object is wanted, not String");
  EXPECT_DEATH(Call(animal, "WrongClass"), "the result is not Animal but Date");
  EXPECT_DEATH(Call(animal, "BadBoolean"), "neither 0 nor 1");
}

TEST_F(ApplicationDeathTest, FieldsWithInvalidContents) {
  const Object animal = NewAnimal("Tom");
  EXPECT_DEATH(
      {
        DoMisuse(animal, "dangling name");
        Get(animal, "Name");
      },
      "Animal.Name: use of a freed String");
  EXPECT_DEATH(
      {
        DoMisuse(animal, "bad tame");
        Get(animal, "Tame");
      },
      "Animal.Tame: neither 0 nor 1");
  EXPECT_DEATH(
      {
        DoMisuse(animal, "move record");
        Get(animal, "Tame");
      },
      "forSystemUse was changed");
}

TEST_F(ApplicationDeathTest, LockInItsOwnDestructor) {
  EXPECT_DEATH(
      { DoMisuse(NewAnimal("Tom"), "lock in destructor"); },
      "REALLockObject: lock in its own destructor: Animal created by application, 0 locks");
}

TEST_F(ApplicationDeathTest, UnlockInItsOwnDestructor) {
  EXPECT_DEATH({ DoMisuse(NewAnimal("Tom"), "unlock in destructor"); },
               "REALUnlockObject: unlock below zero: Animal created by application, 0 locks");
}

TEST_F(ApplicationDeathTest, RecordOfAClassWithoutOneIsATrap) {
  EXPECT_DEATH({ DoMisuse(NewDog("Rex"), "write trap"); },
               kPoisonWorks ? "use-after-poison" : "Dog created by .*outside its records");
}

TEST_F(ApplicationDeathTest, WritingOutsideARecord) {
  EXPECT_DEATH({ DoMisuse(NewAnimal("Tom"), "write before record"); },
               kPoisonWorks ? "use-after-poison" : "Animal created by .*outside its records");
}

TEST_F(ApplicationTest, WorksWithoutALedger) {
  TearDown();
  Capabilities capabilities;
  capabilities.ledger = false;
  StartWithPlugin(capabilities);
  {
    const Object tom = NewAnimal("Tom");
    Call(tom, "Befriend", NewDog("Rex"));
    EXPECT_EQ(BytesOf(Get(ObjectOf(Get(tom, "Friend")), "LoudName")), "Rex!");
  }
  EXPECT_EQ(host().ledger().Live().Total(), 0);
}

}  // namespace
}  // namespace zqv::standin
