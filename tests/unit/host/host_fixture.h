// A test with a stand-in host of its own.
//
// The library caches what it found in a host for the life of the process; starting a host here
// makes it forget that, so that each test meets its own. The end of a test expects that everything
// was given back and that no exception is left pending.
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

  // Starts the test's host, as the library meets it when it is loaded.
  standin::Host& Start(const standin::Capabilities& capabilities = {});
  // The same for a complete host of a version, or one in which one entry point misbehaves.
  standin::Host& StartVersion(double version);
  standin::Host& StartWithFault(const char* name, standin::Fault fault, double version = 2024.1);
  standin::Host& StartWithout(const char* name, double version = 2024.1);

  // From now on the resolver answers `name` with `function`; null takes the entry point away.
  template <class Result, class... Arguments>
  void Replace(const char* name, Result (*function)(Arguments...)) {
    ReplaceWith(name, reinterpret_cast<void*>(function));
  }
  void ReplaceWith(const char* name, void* function);

  // The pending exception as "Class, ErrorNumber: Message", taken away; empty when there is none.
  std::string TakeRaised();

  standin::Host& host() { return *host_; }

 private:
  std::unique_ptr<standin::Host> host_;
};

// What a host string holds, "nil" when there is none: its encoding in 8 hexadecimal
// digits, a blank, its bytes.
std::string Show(const host::StringRef& string);
// The same text for bytes and an encoding.
std::string Shown(abi::Encoding encoding, std::string_view bytes);

}  // namespace zqv::test
