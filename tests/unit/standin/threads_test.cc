// Several threads in one host: an exception belongs to its thread, counts are exact, and functions
// of the plug-in run at the same time.
#include <array>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>

#include "standin/host_lock.h"
#include "tests/support/in_threads.h"
#include "tests/unit/standin/fixture.h"

namespace zqv::standin {
namespace {

using test::InThreads;

constexpr int kThreads = 8;

// A barrier for two threads.
class Meeting {
 public:
  // Returns false when the other thread has not arrived in 20 seconds.
  bool Wait() {
    std::unique_lock<std::mutex> lock(mutex_);
    ++present_;
    changed_.notify_all();
    return changed_.wait_for(lock, std::chrono::seconds(20), [this] { return present_ >= 2; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int present_ = 0;
};

// The entry points for the functions of the class; set before any thread is started.
const Api* g_api = nullptr;
// Barriers in the functions of the class; null: the function does not wait.
Meeting* g_in_constructor = nullptr;
Meeting* g_in_method = nullptr;
Meeting* g_at_end_of_method = nullptr;
Meeting* g_in_destructor = nullptr;

void MeetIn(Meeting* meeting) {
  if (meeting != nullptr) {
    EXPECT_TRUE(meeting->Wait()) << "the two threads did not run at the same time";
  }
}

void ConstructWorker(abi::REALobject) { MeetIn(g_in_constructor); }
void DestroyWorker(abi::REALobject) { MeetIn(g_in_destructor); }
void Work(abi::REALobject, abi::REALstring) {
  MeetIn(g_in_method);
  MeetIn(g_at_end_of_method);
}

void Fail(abi::REALobject, abi::REALstring message) {
  const abi::REALobject exception = g_api->PluginNewInstance("IOException");
  g_api->REALSetPropValueString(exception, "Message", message);
  g_api->RuntimeRaiseException(exception);
  g_api->REALUnlockObject(exception);
}

template <typename Function>
abi::REALproc Proc(Function* function) {
  return reinterpret_cast<abi::REALproc>(function);
}

class ThreadsTest : public HostTest {
 protected:
  void StartWithClass(Capabilities capabilities = {}) {
    Start(std::move(capabilities));
    g_api = &api();
    g_in_constructor = g_in_method = g_at_end_of_method = g_in_destructor = nullptr;
    methods_[0].declaration = "Work(text as String)";
    methods_[0].function = Proc(&Work);
    methods_[1].declaration = "Fail(message as String)";
    methods_[1].function = Proc(&Fail);
    definition_.version = 13;
    definition_.name = "Worker";
    definition_.dataSize = 16;
    definition_.constructor = Proc(&ConstructWorker);
    definition_.destructor = Proc(&DestroyWorker);
    definition_.methods = methods_.data();
    definition_.methodCount = methods_.size();
    api().RegisterPluginVersion(13);
    api().PluginRegisterClass(&definition_);
  }

 private:
  std::array<abi::REALmethodDefinition, 2> methods_ = {};
  abi::REALclassDefinition definition_ = {};
};
using ThreadsDeathTest = ThreadsTest;

TEST_F(ThreadsTest, ExceptionsStayWithTheirThread) {
  constexpr int kRounds = 300;
  StartWithClass();
  InThreads(kThreads, [](int number) {
    const Object worker = NewInstance("Worker");
    for (int round = 0; round < kRounds; ++round) {
      const std::string text = std::to_string(number) + " in round " + std::to_string(round);
      std::string raised;
      try {
        Call(worker, number % 2 == 0 ? "Fail" : "Work", MakeString(text));
      } catch (const HostException& exception) {
        raised = exception.message;
      }
      EXPECT_EQ(raised, number % 2 == 0 ? text : std::string());
    }
  });
  EXPECT_EQ(host().CallCount("RuntimeRaiseException"), kRounds * kThreads / 2);
  EXPECT_EQ(host().DroppedExceptions(), 0U);
  EXPECT_EQ(host().StrayExceptions(), 0U);
}

TEST_F(ThreadsTest, ExceptionOfAnotherThreadIsNotDelivered) {
  StartWithClass();
  const Object worker = NewInstance("Worker");
  InThreads(1, [&](int) { Fail(worker.raw(), nullptr); });
  EXPECT_NO_THROW(Call(worker, "Work", MakeString("x")));
  EXPECT_EQ(host().TakePending(), nullptr);
  EXPECT_EQ(host().StrayExceptions(), 0U);
  host().DropAllStrays();
  EXPECT_EQ(host().StrayExceptions(), 1U);
}

TEST_F(ThreadsTest, LocksAndCallsAreCounted) {
  constexpr int kRounds = 20'000;
  StartWithClass();
  const String string = MakeString("shared");
  const Object object = NewInstance("Date");
  InThreads(kThreads, [&](int) {
    for (int round = 0; round < kRounds; ++round) {
      api().REALLockString(string.raw());
      api().REALLockObject(object.raw());
      const String own = string;  // NOLINT: the copy has a lock
      api().REALUnlockString(string.raw());
      api().REALUnlockObject(object.raw());
    }
  });
  EXPECT_EQ(string.locks(), 1);
  EXPECT_EQ(object.locks(), 1);
  EXPECT_EQ(host().CallCount("REALLockString"), std::uint64_t{kRounds} * kThreads);
  EXPECT_EQ(host().TotalCalls(), std::uint64_t{kRounds} * kThreads * 4 + 2) << "two registrations";
}

// Creates and releases one string, converted string, string data, object and array.
void MakeAndGiveBack(const Api& api) {
  const abi::REALstring text = api.REALBuildStringWithEncoding("Caf\xC3\xA9", 5, abi::kUtf8);
  const abi::REALstring converted = api.REALConvertString(text, abi::kIsoLatin1);
  abi::REALstringData data;
  ASSERT_EQ(api.PluginGetStringData(text, abi::kUtf16, &data), 1);
  const abi::REALobject worker = api.PluginNewInstance("Worker");
  const abi::REALarray array = api.RuntimeArrayCreateSingleDimBoundedArray(4, -1);
  const auto insert =
      reinterpret_cast<abi::ObjectArrayInsertProc>(api.PluginObjectArrayInsertProc(array));
  for (abi::RBInteger i = 0; i < 3; ++i) insert(array, i, worker);
  EXPECT_EQ(api.RuntimeUBound(array), 2);
  const abi::REALobject element = api.RuntimeDirectReadObjectArray(array, 1);
  EXPECT_EQ(element, worker);
  api.REALUnlockObject(element);
  api.REALUnlockObject(worker);
  api.REALUnlockObject(reinterpret_cast<abi::REALobject>(array));
  api.PluginDisposeStringData(&data);
  api.REALUnlockString(converted);
  api.REALUnlockString(text);
}

TEST_F(ThreadsTest, ManyThreadsLeaveNoObjects) {
  for (const bool ledger : {true, false}) {
    Capabilities capabilities;
    capabilities.ledger = ledger;
    capabilities.quarantine_entries =
        50;  // few, so that a thread frees what another one put into the quarantine
    StartWithClass(capabilities);
    InThreads(kThreads, [&](int) {
      for (int round = 0; round < 500; ++round) MakeAndGiveBack(api());
    });
    EXPECT_EQ(host().ledger().Live().Total(), 0);
    HostTest::TearDown();
  }
}

// MakeString and Utf8 belong to the application's side, which does not hold the host's lock while
// it converts.
TEST_F(ThreadsTest, TextsAreConvertedSideBySide) {
  StartWithClass();
  InThreads(kThreads, [](int number) {
    const std::string end(static_cast<std::size_t>(number) * 100, 'x');
    for (int round = 0; round < 2000; ++round) {
      EXPECT_EQ(MakeString("Caf\x8E" + end, abi::kMacRoman).Utf8(), "Caf\xC3\xA9" + end);
    }
  });
}

TEST_F(ThreadsTest, ConstructorsRunSideBySide) {
  StartWithClass();
  Meeting meeting;
  g_in_constructor = &meeting;
  InThreads(2, [](int) { NewInstance("Worker"); });
}

TEST_F(ThreadsTest, MethodsRunSideBySide) {
  StartWithClass();
  Meeting meeting;
  g_in_method = &meeting;
  InThreads(2, [](int) { Call(NewInstance("Worker"), "Work", MakeString("x")); });
}

// Objects released through the application's handle, through the plug-in's lock, and as an array's
// element.
TEST_F(ThreadsTest, DestructorsRunSideBySide) {
  StartWithClass();
  const std::function<void()> ways[] = {
      [] { NewInstance("Worker"); },
      [this] { api().REALUnlockObject(api().PluginNewInstance("Worker")); },
      [this] {
        const abi::REALarray array = api().RuntimeArrayCreateSingleDimBoundedArray(4, -1);
        const abi::REALobject worker = api().PluginNewInstance("Worker");
        reinterpret_cast<abi::ObjectArrayInsertProc>(api().PluginObjectArrayInsertProc(array))(
            array, 0, worker);
        api().REALUnlockObject(worker);
        api().REALUnlockObject(reinterpret_cast<abi::REALobject>(array));
      }};
  for (const std::function<void()>& way : ways) {
    Meeting meeting;
    g_in_destructor = &meeting;
    InThreads(2, [&](int) { way(); });
  }
}

// While a call runs, another thread releases its own lock on the argument.
TEST_F(ThreadsTest, BorrowedArgumentOfTwoThreads) {
  StartWithClass();
  const String text = MakeString("shared");
  String copy = text;
  Meeting begun;
  Meeting given_back;
  g_in_method = &begun;
  g_at_end_of_method = &given_back;
  InThreads(2, [&](int number) {
    if (number == 0) {
      Call(NewInstance("Worker"), "Work", text);
    } else {
      EXPECT_TRUE(begun.Wait());
      copy = String();
      EXPECT_TRUE(given_back.Wait());
    }
  });
  EXPECT_EQ(text.locks(), 1);
}

TEST_F(ThreadsDeathTest, TakingTheLockTwice) {
  StartWithClass();
  const HostLock lock;
  EXPECT_DEATH(api().REALGetRBVersion(), "the host's lock is taken twice by one thread");
}

}  // namespace
}  // namespace zqv::standin
