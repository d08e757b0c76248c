// A test fixture that has a stand-in host of its own.
//
// The library caches for the life of the process what it found in a host. Starting a host here
// clears that cache, so that each test uses its own host. At its end, a test fails if the library
// still holds a lock or if an exception is pending.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "abi/encodings.h"
#include "host/ref.h"
#include "standin/capabilities.h"
#include "standin/handles.h"
#include "standin/host.h"

namespace zqv::test {

class HostTest : public ::testing::Test {
 protected:
  ~HostTest() override;
  void TearDown() override;

  // Starts the host of this test, in the state in which a host loads the library.
  standin::Host& Start(const standin::Capabilities& capabilities = {});
  // Does the same with a complete host of a version, or with a host in which one entry point fails.
  standin::Host& StartVersion(double version);
  standin::Host& StartWithFault(const char* name, standin::Fault fault, double version = 2024.1);
  standin::Host& StartWithout(const char* name, double version = 2024.1);

  // Makes the resolver return `function` for `name`; null makes the entry point missing.
  template <class Result, class... Arguments>
  void Replace(const char* name, Result (*function)(Arguments...)) {
    ReplaceWith(name, reinterpret_cast<void*>(function));
  }
  void ReplaceWith(const char* name, void* function);

  // Returns the pending exception as "Class, ErrorNumber: Message", and removes it; empty when none
  // is pending.
  std::string TakeRaised();

  standin::Host& host() { return *host_; }

 private:
  std::unique_ptr<standin::Host> host_;
};

// Shows a host string: its encoding in 8 hexadecimal digits, a blank, and its bytes; "nil" for nil.
std::string Show(const host::StringRef& string);
// Shows bytes and an encoding in the same form.
std::string Shown(abi::Encoding encoding, std::string_view bytes);

}  // namespace zqv::test
