// The host's own classes, used through entry points: Date, MemoryBlock, FolderItem, exceptions.
#include "standin/native.h"

#include "tests/unit/standin/fixture.h"

namespace zqv::standin {
namespace {

constexpr const char* kSeven =
    "Constructor(Year as Integer, Month as Integer, Day as Integer, Hour as Integer, Minute as "
    "Integer, Second as Integer, GMTOffset as Double)";
constexpr const char* kSix =
    "Constructor(Year as Integer, Month as Integer, Day as Integer, hour as Integer, minute as "
    "Integer, second as Integer)";

class NativeTest : public HostTest {
 protected:
  void StartWithDates(DateFlavour flavour) {
    Capabilities capabilities;
    capabilities.date_flavour = flavour;
    Start(capabilities);
  }
  static std::string Iso(abi::REALobject date) {
    const auto* const thing = reinterpret_cast<const NativeThing*>(date);
    return std::get<Date>(*thing->state).IsoText();
  }
};
using NativeDeathTest = NativeTest;

TEST_F(NativeTest, UnknownClassGivesNil) {
  Capabilities capabilities;
  capabilities.unknown_classes = {"ioexception"};
  Start(capabilities);
  EXPECT_EQ(api().PluginNewInstance("NoSuchThing"), nullptr);
  EXPECT_EQ(api().PluginNewInstance("IOException"), nullptr);
  const abi::REALobject other = api().PluginNewInstance("OutOfBoundsException");
  EXPECT_NE(other, nullptr);
  api().REALUnlockObject(other);
}

TEST_F(NativeTest, SevenArgumentDate) {
  StartWithDates(DateFlavour::kSevenArguments);
  const abi::REALobject date = api().PluginNewInstance("Date");
  EXPECT_EQ(api().REALLoadObjectMethod(date, kSix), nullptr);
  using Function = void (*)(abi::REALobject, abi::RBInteger, abi::RBInteger, abi::RBInteger,
                            abi::RBInteger, abi::RBInteger, abi::RBInteger, double);
  const auto constructor = reinterpret_cast<Function>(api().REALLoadObjectMethod(date, kSeven));
  ASSERT_NE(constructor, nullptr);
  constructor(date, 2019, 6, 31, 23, 59, 58, -10000.0);
  EXPECT_EQ(Iso(date), "2019-07-01T23:59:58");
  api().REALUnlockObject(date);
}

TEST_F(NativeTest, SixArgumentDate) {
  StartWithDates(DateFlavour::kSixArguments);
  const abi::REALobject date = api().PluginNewInstance("Date");
  EXPECT_EQ(api().REALLoadObjectMethod(date, kSeven), nullptr);
  using Function = void (*)(abi::REALobject, abi::RBInteger, abi::RBInteger, abi::RBInteger,
                            abi::RBInteger, abi::RBInteger, abi::RBInteger);
  const auto constructor = reinterpret_cast<Function>(api().REALLoadObjectMethod(date, kSix));
  ASSERT_NE(constructor, nullptr);
  constructor(date, 2019, 2, 3, 4, 5, 6);
  EXPECT_EQ(Iso(date), "2019-02-03T04:05:06");
  api().REALUnlockObject(date);
}

TEST_F(NativeTest, DateWithoutConstructorsHasProperties) {
  StartWithDates(DateFlavour::kNoConstructor);
  const abi::REALobject date = api().PluginNewInstance("Date");
  EXPECT_EQ(api().REALLoadObjectMethod(date, kSeven), nullptr);
  EXPECT_EQ(api().REALLoadObjectMethod(date, kSix), nullptr);
  const std::pair<const char*, int> kFields[] = {{"Day", 3},   {"Year", 2019}, {"Month", 2},
                                                 {"Day", 28},  {"Hour", 7},    {"minute", 8},
                                                 {"Second", 9}};
  for (const auto& [name, value] : kFields) {
    EXPECT_EQ(api().REALSetPropValueInteger(date, name, value), 1);
  }
  EXPECT_EQ(Iso(date), "2019-02-28T07:08:09");
  double seconds = 0;
  EXPECT_NE(api().REALGetPropValueDouble(date, "TotalSeconds", &seconds), 0);
  EXPECT_EQ(api().REALSetPropValueDouble(date, "TotalSeconds", seconds + 86'400), 1);
  EXPECT_EQ(Iso(date), "2019-03-01T07:08:09");
  api().REALUnlockObject(date);
}

TEST_F(NativeDeathTest, DateConstructorOnAFreedDate) {
  Start();
  const abi::REALobject date = api().PluginNewInstance("Date");
  using Function = void (*)(abi::REALobject, abi::RBInteger, abi::RBInteger, abi::RBInteger,
                            abi::RBInteger, abi::RBInteger, abi::RBInteger, double);
  const auto constructor = reinterpret_cast<Function>(api().REALLoadObjectMethod(date, kSeven));
  api().REALUnlockObject(date);
  EXPECT_DEATH(constructor(date, 2019, 1, 1, 0, 0, 0, 0.0), "Date.Constructor: use of a freed");
}

TEST_F(NativeTest, PropertiesThatDoNotExistGiveZero) {
  Start();
  const abi::REALobject date = api().PluginNewInstance("Date");
  abi::REALstring text = nullptr;
  double number = 0;
  EXPECT_EQ(api().REALGetPropValueString(date, "Message", &text), 0);
  EXPECT_EQ(api().REALGetPropValueDouble(date, "Year", &number), 0);
  EXPECT_EQ(api().REALSetPropValueInteger(date, "TotalSeconds", 1), 0);
  EXPECT_EQ(api().REALSetPropValueInteger(date, "Century", 1), 0);
  EXPECT_EQ(api().REALSetPropValueString(date, "Year", nullptr), 0);
  api().REALUnlockObject(date);
}

TEST_F(NativeTest, MemoryBlocks) {
  Start();
  const Object block = MakeMemoryBlock("a");
  EXPECT_EQ(api().memoryBlockGetSize(block.raw()), 1);
  const Object unknown = MakeMemoryBlockOfUnknownSize("abc");
  EXPECT_EQ(api().memoryBlockGetSize(unknown.raw()), -1);
  EXPECT_EQ(std::string(static_cast<const char*>(api().memoryBlockGetPtr(unknown.raw())), 3),
            "abc");
  const Object bare = MakeMemoryBlockWithoutPointer(7);
  EXPECT_EQ(api().memoryBlockGetSize(bare.raw()), 7);
  EXPECT_EQ(api().memoryBlockGetPtr(bare.raw()), nullptr);
}

TEST_F(NativeDeathTest, MemoryBlockCallsOnOtherObjects) {
  Start();
  const Object item = MakeFolderItem("/x");
  EXPECT_DEATH(api().memoryBlockGetPtr(item.raw()), "memoryBlockGetPtr: an object of another");
  EXPECT_DEATH(api().memoryBlockGetSize(nullptr), "memoryBlockGetSize: nil is not allowed");
}

TEST_F(NativeTest, FolderItemPaths) {
  Start();
  const Object item = MakeFolderItem("/tmp/a b/\xC3\xA4%.eml");
  abi::REALstring path = nullptr;
  ASSERT_NE(api().REALGetPropValueString(item.raw(), "NativePath", &path), 0);
  EXPECT_EQ(Bytes(path), "/tmp/a b/\xC3\xA4%.eml");
  EXPECT_EQ(Locks(path), 1);
  api().REALUnlockString(path);
  ASSERT_NE(api().REALGetPropValueString(item.raw(), "URLPath", &path), 0);
  EXPECT_EQ(Bytes(path), "file:///tmp/a%20b/%C3%A4%25.eml");
  api().REALUnlockString(path);
  EXPECT_EQ(api().REALSetPropValueString(item.raw(), "NativePath", nullptr), 0);
}

TEST_F(NativeTest, MissingProperty) {
  Capabilities capabilities;
  capabilities.missing_properties = {"FolderItem.NativePath", "RuntimeException.Message"};
  Start(capabilities);
  const Object item = MakeFolderItem("/x");
  abi::REALstring path = nullptr;
  EXPECT_EQ(api().REALGetPropValueString(item.raw(), "NativePath", &path), 0);
  const abi::REALobject exception = api().PluginNewInstance("IOException");
  EXPECT_EQ(api().REALSetPropValueString(exception, "Message", nullptr), 0);
  EXPECT_EQ(api().REALSetPropValueInteger(exception, "ErrorNumber", 1), 1);
  api().REALUnlockObject(exception);
}

TEST_F(NativeTest, ExceptionHoldsItsMessage) {
  Start();
  const abi::REALobject exception = api().PluginNewInstance("IOException");
  const abi::REALstring first = Build("first");
  const abi::REALstring second = Build("second");
  EXPECT_EQ(api().REALSetPropValueString(exception, "Message", first), 1);
  EXPECT_EQ(Locks(first), 2);
  EXPECT_EQ(api().REALSetPropValueString(exception, "Message", second), 1);
  EXPECT_EQ(Locks(first), 1);
  abi::REALstring read = nullptr;
  ASSERT_NE(api().REALGetPropValueString(exception, "message", &read), 0);
  EXPECT_EQ(read, second);
  EXPECT_EQ(Locks(second), 3);
  api().REALUnlockObject(exception);
  EXPECT_EQ(Locks(second), 2);
  for (const abi::REALstring string : {first, second, read}) api().REALUnlockString(string);
}

TEST_F(NativeTest, RaisingAddsALockAndTheFirstStays) {
  Start();
  const abi::REALobject first = api().PluginNewInstance("IOException");
  const abi::REALobject second = api().PluginNewInstance("RuntimeException");
  api().RuntimeRaiseException(first);
  EXPECT_EQ(Locks(first), 2);
  api().RuntimeRaiseException(second);
  EXPECT_EQ(Locks(second), 1);
  EXPECT_EQ(host().DroppedExceptions(), 1U);
  api().REALUnlockObject(second);
  api().REALUnlockObject(first);
  EXPECT_EQ(host().ledger().Report(), "1 x IOException created by PluginNewInstance, 1 lock\n");
  const Object pending = Object::Adopt(host().TakePending());
  EXPECT_EQ(pending.ClassName(), "IOException");
  EXPECT_EQ(host().TakePending(), nullptr);
}

TEST_F(NativeTest, ExceptionClassesDeriveFromTheCommonOne) {
  Start();
  for (const char* name :
       {"OutOfBoundsException", "OutOfMemoryException", "IOException", "UnsupportedFormatException",
        "UnsupportedOperationException", "RuntimeException"}) {
    const Object exception = NewInstance(name);
    EXPECT_TRUE(exception.IsA("RuntimeException")) << name;
    EXPECT_TRUE(exception.IsA(name));
    EXPECT_FALSE(exception.IsA("Date"));
  }
}

}  // namespace
}  // namespace zqv::standin
