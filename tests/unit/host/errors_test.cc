#include "host/errors.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>

#include "host/strings.h"
#include "standin/application.h"
#include "tests/support/failing_memory.h"
#include "tests/unit/base/log_capture.h"
#include "tests/unit/host/host_fixture.h"

namespace zqv::host {
namespace {

using standin::Fault;
using test::Logged;

using Raising = test::HostTest;

TEST_F(Raising, GivesClassMessageAndNumberZero) {
  Start();
  RaiseException(kIOException, "Caf\xC3\xA9");
  EXPECT_EQ(TakeRaised(), "IOException, 0: Caf\xC3\xA9");
}

TEST_F(Raising, MessageIsUtf8) {
  Start();
  RaiseException(kIOException, "plain");
  standin::NativeThing* thing = host().TakePending();
  ASSERT_NE(thing, nullptr);
  EXPECT_EQ(std::get<standin::ExceptionState>(*thing->state).message->encoding, abi::kUtf8);
  host().store().Unlock(thing, "a test");
}

TEST_F(Raising, NullMessageIsNone) {
  Start();
  RaiseException(kIOException, nullptr);
  EXPECT_EQ(TakeRaised(), "IOException, 0: nil");
}

TEST_F(Raising, EveryClassIsOneOfTheHost) {
  Start();
  for (const char* name :
       {kRuntimeException, kOutOfBoundsException, kOutOfMemoryException, kIOException,
        kUnsupportedFormatException, kUnsupportedOperationException}) {
    RaiseException(name, "x");
    EXPECT_EQ(TakeRaised(), std::string(name) + ", 0: x");
  }
}

TEST_F(Raising, UnknownClassIsARuntimeException) {
  standin::Capabilities capabilities;
  capabilities.unknown_classes = {"IOException"};
  Start(capabilities);
  RaiseException(kIOException, "x");
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: x");
}

TEST_F(Raising, NothingIsRaisedWithoutAnyClass) {
  standin::Capabilities capabilities;
  capabilities.unknown_classes = {"IOException", "RuntimeException"};
  Start(capabilities);
  RaiseException(kIOException, "x");
  EXPECT_EQ(TakeRaised(), "");
  EXPECT_EQ(host().CallCount("PluginNewInstance"), 2u);
}

TEST_F(Raising, NothingIsRaisedWhenTheHostCannot) {
  for (const char* name : {"PluginNewInstance", "RuntimeRaiseException"}) {
    StartWithout(name);
    RaiseException(kIOException, "x");
    EXPECT_EQ(TakeRaised(), "") << name;
  }
}

TEST_F(Raising, PropertiesThatCannotBeSetAreLeft) {
  StartWithout("REALSetPropValueString");
  RaiseException(kIOException, "x");
  EXPECT_EQ(TakeRaised(), "IOException, 0: nil");
  StartWithout("REALSetPropValueInteger");
  RaiseException(kIOException, "x");
  EXPECT_EQ(TakeRaised(), "IOException, 0: x");
}

TEST_F(Raising, ToleratesAHostThatThrowsMeanwhile) {
  for (const char* name :
       {"REALBuildStringWithEncoding", "PluginNewInstance", "REALSetPropValueString",
        "REALSetPropValueInteger", "RuntimeRaiseException"}) {
    for (const Fault::Kind kind : {Fault::Kind::kThrows, Fault::Kind::kThrowsInt}) {
      StartWithFault(name, {kind});
      RaiseException(kIOException, "x");
      const bool built = std::string(name) == "REALBuildStringWithEncoding";
      EXPECT_EQ(TakeRaised(), built ? "IOException, 0: nil" : "") << name;
      EXPECT_EQ(host().ledger().Report(), "") << name;
    }
  }
}

TEST_F(Raising, WorksAgainAfterAHostThatThrew) {
  StartWithFault("PluginNewInstance", {Fault::Kind::kThrows, 1, 1});
  RaiseException(kIOException, "x");
  RaiseException(kIOException, "y");
  EXPECT_EQ(TakeRaised(), "IOException, 0: y");
}

class OutOfBoundsMessage : public test::HostTest {
 protected:
  std::string Raised(std::int64_t value, std::int64_t count) {
    RaiseOutOfBoundsException(value, count);
    return TakeRaised();
  }
};

TEST_F(OutOfBoundsMessage, KeepsTwoBlanksAfterIndex) {
  Start();
  EXPECT_EQ(
      Raised(7, 5),
      "OutOfBoundsException, 0: The parameter index  is too big. Range is 0 to 4, but value is 7.");
}

TEST_F(OutOfBoundsMessage, NegativeIndexIsTooSmall) {
  Start();
  EXPECT_EQ(Raised(-1, 3),
            "OutOfBoundsException, 0: The parameter index  is too small. Range is 0 to 2, but "
            "value is -1.");
}

TEST_F(OutOfBoundsMessage, EmptyCollectionHasTheRangeToMinusOne) {
  Start();
  EXPECT_EQ(Raised(0, 0),
            "OutOfBoundsException, 0: The parameter index  is too big. Range is 0 to -1, but value "
            "is 0.");
  EXPECT_EQ(Raised(-5, 0),
            "OutOfBoundsException, 0: The parameter index  is too small. Range is 0 to -1, but "
            "value is -5.");
}

TEST_F(OutOfBoundsMessage, HoldsTheLongestNumbers) {
  Start();
  EXPECT_EQ(
      Raised(std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()),
      "OutOfBoundsException, 0: The parameter index  is too small. Range is 0 to "
      "9223372036854775806, but value is -9223372036854775808.");
}

TEST_F(OutOfBoundsMessage, IsShortWithoutMemory) {
  Start();
  {
    const test::AllocationLimit limit(204);
    RaiseOutOfBoundsException(7, 5);
  }
  EXPECT_EQ(TakeRaised(), "OutOfBoundsException, 0: Out of Bounds");
}

// A standard exception of type `Base` with a chosen text, which may be null.
template <class Base>
class Saying : public Base {
 public:
  explicit Saying(const char* text) : Base(Base()), text_(text) {}
  const char* what() const noexcept override { return text_; }

 private:
  const char* text_;
};

template <class Base>
class SayingWithText : public Base {
 public:
  explicit SayingWithText(const char* text) : Base(""), text_(text) {}
  const char* what() const noexcept override { return text_; }

 private:
  const char* text_;
};

class Translating : public test::HostTest {
 protected:
  std::string Raised(const std::exception& e) {
    RaiseRuntimeException(e);
    return TakeRaised();
  }
};

TEST_F(Translating, EachTypeHasItsClassAndText) {
  Start();
  EXPECT_EQ(Raised(std::bad_alloc()),
            "OutOfMemoryException, 0: Failed to allocate memory: std::bad_alloc");
  EXPECT_EQ(Raised(std::range_error("a")), "OutOfBoundsException, 0: C++ reports range error: a");
  EXPECT_EQ(Raised(std::out_of_range("b")), "OutOfBoundsException, 0: C++ reports range error: b");
  EXPECT_EQ(Raised(std::overflow_error("c")),
            "OutOfBoundsException, 0: C++ reports overflow error: c");
  EXPECT_EQ(Raised(std::underflow_error("d")),
            "OutOfBoundsException, 0: C++ reports underflow error: d");
  EXPECT_EQ(Raised(std::runtime_error("e")), "RuntimeException, 0: C++ Exception: e");
  EXPECT_EQ(Raised(std::length_error("f")), "RuntimeException, 0: C++ Exception: f");
  EXPECT_EQ(Raised(std::exception()), "RuntimeException, 0: C++ Exception: std::exception");
}

TEST_F(Translating, DerivedTypesAreTheirBase) {
  Start();
  EXPECT_EQ(Raised(Saying<std::bad_alloc>("x")),
            "OutOfMemoryException, 0: Failed to allocate memory: x");
  EXPECT_EQ(Raised(std::bad_array_new_length()),
            "OutOfMemoryException, 0: Failed to allocate memory: std::bad_array_new_length");
}

TEST_F(Translating, EmptyAndNullTextsBecomeAFullStop) {
  Start();
  for (const char* text : {"", static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(Raised(Saying<std::exception>(text)), "RuntimeException, 0: C++ Exception.");
    EXPECT_EQ(Raised(Saying<std::bad_alloc>(text)),
              "OutOfMemoryException, 0: Failed to allocate memory.");
    EXPECT_EQ(Raised(SayingWithText<std::out_of_range>(text)),
              "OutOfBoundsException, 0: C++ reports range error.");
  }
}

TEST_F(Translating, WithoutMemoryClassAndBaseTextGetThrough) {
  Start();
  const std::string text(4000, 'x');
  const Saying<std::bad_alloc> exception(text.c_str());
  {
    const test::AllocationLimit limit(3000);
    RaiseRuntimeException(exception);
  }
  EXPECT_EQ(TakeRaised(), "OutOfMemoryException, 0: Failed to allocate memory");
}

class Guarding : public test::HostTest {
 protected:
  void SetUp() override { Start(); }
};

TEST_F(Guarding, PassesValuesOn) {
  EXPECT_EQ(Guard([] { return 42; }), 42);
  EXPECT_EQ(Guard([] { return true; }), true);
  bool ran = false;
  Guard([&] { ran = true; });
  EXPECT_TRUE(ran);
  EXPECT_EQ(TakeRaised(), "");
}

TEST_F(Guarding, HandsAnOwnersLockOn) {
  const auto string = standin::MakeString("x");
  const abi::REALstring raw = Guard([&] { return StringRef::Share(string.raw()); });
  EXPECT_EQ(raw, string.raw());
  EXPECT_EQ(string.locks(), 2);
  entry::REALUnlockString(raw);
  EXPECT_EQ(Guard([] { return StringRef(); }), nullptr);
}

TEST_F(Guarding, StandardExceptionIsRaisedAndGivesTheFallback) {
  EXPECT_EQ(Guard([]() -> StringRef { throw std::out_of_range("x"); }), nullptr);
  EXPECT_EQ(TakeRaised(), "OutOfBoundsException, 0: C++ reports range error: x");
  EXPECT_EQ(Guard([]() -> std::int64_t { throw std::bad_alloc(); }), 0);
  EXPECT_EQ(TakeRaised(), "OutOfMemoryException, 0: Failed to allocate memory: std::bad_alloc");
  Guard([] { throw std::runtime_error("y"); });
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: C++ Exception: y");
}

TEST_F(Guarding, AnythingElseIsLoggedAndRaised) {
  const test::LogCapture log;
  EXPECT_EQ(Guard([]() -> bool { throw 7; }), false);
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: Sorry, but there was an unnamed C++ Exception.");
  EXPECT_EQ(log.Text(), Logged({"Unnamed C++ Exception."}));
}

TEST_F(Guarding, StandardExceptionsAreNotLogged) {
  const test::LogCapture log;
  Guard([] { throw std::runtime_error("y"); });
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: C++ Exception: y");
  EXPECT_EQ(log.Text(), "");
}

}  // namespace
}  // namespace zqv::host
