#include "standin/ledger.h"

#include "standin/poison.h"
#include "tests/unit/standin/fixture.h"

namespace zqv::standin {
namespace {

using LedgerTest = HostTest;
using LedgerDeathTest = HostTest;

TEST_F(LedgerTest, CountsWhatLives) {
  Start();
  EXPECT_EQ(host().ledger().Live().Total(), 0);
  const abi::REALstring string = Build("a");
  const abi::REALobject object = api().PluginNewInstance("Date");
  const abi::REALarray array = api().RuntimeArrayCreateSingleDimBoundedArray(4, -1);
  abi::REALstringData data;
  ASSERT_EQ(api().PluginGetStringData(string, abi::kUtf32, &data), 1);
  const LiveCounts live = host().ledger().Live();
  EXPECT_EQ(live.strings, 1);
  EXPECT_EQ(live.objects, 1);
  EXPECT_EQ(live.arrays, 1);
  EXPECT_EQ(live.string_data, 1);
  api().PluginDisposeStringData(&data);
  api().REALUnlockObject(reinterpret_cast<abi::REALobject>(array));
  api().REALUnlockObject(object);
  api().REALUnlockString(string);
  EXPECT_EQ(host().ledger().Live().Total(), 0);
}

TEST_F(LedgerTest, ReportsByClassAndCreatorWithLocks) {
  Start();
  const abi::REALstring first = Build("a");
  const abi::REALstring second = Build("b");
  api().REALLockString(second);
  const Object block = MakeMemoryBlock("x");
  abi::REALstringData data;
  ASSERT_EQ(api().PluginGetStringData(first, abi::kUtf8, &data), 1);
  EXPECT_EQ(host().ledger().Report(),
            "1 x MemoryBlock created by application, 1 lock\n"
            "2 x String created by REALBuildStringWithEncoding, 3 locks\n"
            "1 x string data lent by PluginGetStringData, 0 locks\n");
  api().PluginDisposeStringData(&data);
  api().REALUnlockString(second);
  api().REALUnlockString(second);
  api().REALUnlockString(first);
}

TEST_F(LedgerTest, LocksCount) {
  Start();
  const abi::REALstring string = Build("a");
  EXPECT_EQ(Locks(string), 1);
  api().REALLockString(string);
  EXPECT_EQ(Locks(string), 2);
  api().REALUnlockString(string);
  EXPECT_EQ(Locks(string), 1);
  api().REALUnlockString(string);
}

TEST_F(LedgerTest, NilLocksAreIgnored) {
  Start();
  api().REALLockString(nullptr);
  api().REALUnlockString(nullptr);
  api().REALLockObject(nullptr);
  api().REALUnlockObject(nullptr);
  EXPECT_EQ(host().ledger().Live().Total(), 0);
}

TEST_F(LedgerDeathTest, DoubleUnlockOfAString) {
  Start();
  const abi::REALstring string = Build("a");
  api().REALUnlockString(string);
  EXPECT_DEATH(api().REALUnlockString(string),
               "REALUnlockString: use of a freed String created by REALBuildStringWithEncoding");
}

TEST_F(LedgerDeathTest, DoubleUnlockOfAnObject) {
  Start();
  const abi::REALobject object = api().PluginNewInstance("Date");
  api().REALUnlockObject(object);
  EXPECT_DEATH(api().REALUnlockObject(object),
               "REALUnlockObject: use of a freed Date created by PluginNewInstance");
}

TEST_F(LedgerDeathTest, UseOfAFreedString) {
  Start();
  const abi::REALstring string = Build("a");
  api().REALUnlockString(string);
  EXPECT_DEATH(api().StringGetCString(string), "StringGetCString: use of a freed String");
  EXPECT_DEATH(api().REALGetStringEncoding(string), "REALGetStringEncoding: use of a freed");
  EXPECT_DEATH(api().REALConvertString(string, 0), "REALConvertString: use of a freed String");
  EXPECT_DEATH(api().REALLockString(string), "REALLockString: use of a freed String");
  EXPECT_DEATH(api().RuntimeAddString(nullptr, string), "RuntimeAddString: use of a freed String");
}

TEST_F(LedgerDeathTest, UseOfAFreedArray) {
  Start();
  const abi::REALarray array = api().RuntimeArrayCreateSingleDimBoundedArray(4, -1);
  api().REALUnlockObject(reinterpret_cast<abi::REALobject>(array));
  EXPECT_DEATH(api().RuntimeUBound(array),
               "RuntimeUBound: use of a freed Array of objects created by RuntimeArrayCreate");
}

TEST_F(LedgerDeathTest, PointerThatNeverWasAThing) {
  Start();
  std::int64_t memory[8] = {};
  EXPECT_DEATH(api().REALLockObject(reinterpret_cast<abi::REALobject>(memory)),
               "REALLockObject: the pointer is not, and recently was not, a thing");
  EXPECT_DEATH(api().REALLockString(reinterpret_cast<abi::REALstring>(memory)),
               "REALLockString: the pointer is not");
}

TEST_F(LedgerDeathTest, ThingOfTheWrongKind) {
  Start();
  const abi::REALstring string = Build("a");
  const abi::REALobject object = api().PluginNewInstance("Date");
  EXPECT_DEATH(api().REALLockObject(reinterpret_cast<abi::REALobject>(string)),
               "REALLockObject: an object is wanted, not String created by REALBuild.*, 1 lock");
  EXPECT_DEATH(api().REALUnlockString(reinterpret_cast<abi::REALstring>(object)),
               "REALUnlockString: a string is wanted, not Date");
  EXPECT_DEATH(api().RuntimeUBound(object), "RuntimeUBound: an array is wanted, not Date");
  EXPECT_DEATH(api().RuntimeRaiseException(object), "an object of another class is wanted");
  api().REALUnlockObject(object);
  api().REALUnlockString(string);
}

TEST_F(LedgerDeathTest, StringDataGivenBackTwice) {
  Start();
  const abi::REALstring string = Build("a");
  abi::REALstringData data;
  ASSERT_EQ(api().PluginGetStringData(string, abi::kUtf8, &data), 1);
  api().PluginDisposeStringData(&data);
  EXPECT_DEATH(api().PluginDisposeStringData(&data), "was given back before");
  api().REALUnlockString(string);
}

TEST_F(LedgerDeathTest, StringDataCopied) {
  Start();
  const abi::REALstring string = Build("a");
  abi::REALstringData data;
  ASSERT_EQ(api().PluginGetStringData(string, abi::kUtf8, &data), 1);
  abi::REALstringData copy = data;
  EXPECT_DEATH(api().PluginDisposeStringData(&copy), "the record is a copy");
  api().PluginDisposeStringData(&data);
  api().REALUnlockString(string);
}

TEST_F(LedgerDeathTest, StringDataChanged) {
  Start();
  const abi::REALstring string = Build("a");
  abi::REALstringData data;
  ASSERT_EQ(api().PluginGetStringData(string, abi::kUtf8, &data), 1);
  ++data.length;
  EXPECT_DEATH(api().PluginDisposeStringData(&data), "the record was changed");
  --data.length;
  api().PluginDisposeStringData(&data);
  api().REALUnlockString(string);
}

TEST_F(LedgerDeathTest, StringDataRecordFilledAgainWhileOutstanding) {
  Start();
  const abi::REALstring string = Build("a");
  abi::REALstringData data;
  ASSERT_EQ(api().PluginGetStringData(string, abi::kUtf8, &data), 1);
  EXPECT_DEATH(api().PluginGetStringData(string, abi::kUtf8, &data), "was not given back");
  api().PluginDisposeStringData(&data);
  api().REALUnlockString(string);
}

TEST_F(LedgerDeathTest, BytesOfAStringWrittenTo) {
  Start();
  const abi::REALstring string = Build("abc");
  char* const bytes = static_cast<char*>(api().StringGetCString(string));
  EXPECT_DEATH(
      {
        bytes[1] = 'X';
        api().REALUnlockString(string);
      },
      "the bytes were written to: String created by REALBuildStringWithEncoding");
  EXPECT_DEATH(
      {
        bytes[3] = 'X';
        api().REALUnlockString(string);
      },
      "the bytes were written to");
  api().REALUnlockString(string);
}

TEST_F(LedgerDeathTest, QuarantineIsBounded) {
  Capabilities capabilities;
  capabilities.quarantine_entries = 2;
  Start(capabilities);
  const abi::REALstring oldest = Build("a");
  const abi::REALstring middle = Build("b");
  const abi::REALstring newest = Build("c");
  for (const abi::REALstring string : {oldest, middle, newest}) api().REALUnlockString(string);
  EXPECT_DEATH(api().REALLockString(middle), "use of a freed String");
  EXPECT_DEATH(api().REALLockString(newest), "use of a freed String");
  EXPECT_DEATH(api().REALLockString(oldest), "is not, and recently was not, a thing");
}

TEST_F(LedgerDeathTest, FreedMemoryIsNotReusedWhileInQuarantine) {
  Start();
  const abi::REALstring freed = Build("abcdefgh");
  api().REALUnlockString(freed);
  for (int i = 0; i < 1000; ++i) {
    const abi::REALstring other = Build("abcdefgh");
    ASSERT_NE(other, freed);
    api().REALUnlockString(other);
  }
}

TEST_F(LedgerTest, WithoutLedgerOnlyCountsRemain) {
  Capabilities capabilities;
  capabilities.ledger = false;
  Start(capabilities);
  const abi::REALstring string = Build("a");
  EXPECT_EQ(host().ledger().Live().strings, 1);
  EXPECT_EQ(host().ledger().Report(), "");
  api().REALLockString(string);
  EXPECT_EQ(Locks(string), 2);
  abi::REALstringData data;
  ASSERT_EQ(api().PluginGetStringData(string, abi::kUtf32, &data), 1);
  EXPECT_EQ(host().ledger().Live().string_data, 1);
  api().PluginDisposeStringData(&data);
  api().REALUnlockString(string);
  api().REALUnlockString(string);
  EXPECT_EQ(host().ledger().Live().Total(), 0);
}

TEST_F(LedgerDeathTest, SecondHostAtATime) {
  Start();
  EXPECT_DEATH(Host::Start(), "a second host in one process");
}

TEST_F(LedgerDeathTest, CallWithoutAHost) {
  auto host = Host::Start();
  const Api api(host->resolver());
  host.reset();
  EXPECT_DEATH(api.REALLockString(nullptr), "called while no host lives");
}

TEST_F(LedgerTest, EndOfTheHostFreesWhatLives) {
  auto host = Host::Start();
  const Api api(host->resolver());
  const abi::REALstring message = api.REALBuildString("m", 1);
  const abi::REALobject exception = api.PluginNewInstance("IOException");
  ASSERT_EQ(api.REALSetPropValueString(exception, "Message", message), 1);
  const abi::REALarray array = api.RuntimeArrayCreateSingleDimBoundedArray(4, -1);
  reinterpret_cast<abi::ObjectArrayInsertProc>(api.PluginObjectArrayInsertProc(array))(array, 0,
                                                                                       exception);
  abi::REALstringData data;
  ASSERT_EQ(api.PluginGetStringData(message, abi::kMacRoman, &data), 0);
  EXPECT_EQ(host->ledger().Live().Total(), 3);
  host.reset();
  EXPECT_EQ(Host::Current(), nullptr);
  EXPECT_NE(Host::Start(), nullptr);
}

}  // namespace
}  // namespace zqv::standin
