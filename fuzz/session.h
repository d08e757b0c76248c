// The built library in a stand-in host, for the life of the process. The library caches what it
// finds in its host, so it cannot be loaded twice.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "standin/capabilities.h"
#include "standin/host.h"

namespace zqv::fuzz {

class Session {
 public:
  // The only session. The first call starts it, in a complete host.
  static Session& Get();
  // Starts the session in another host. May be called once, before Get.
  static Session& Start(standin::Capabilities capabilities);

  standin::Host& host() { return *host_; }

  // Fails when an object or string made since the start is left, or when the library looked up
  // names that no host has. Call it when no handle exists any more.
  void ExpectNothingLeft();
  // Fails when the library raised while an exception was pending, or outside of a call.
  void ExpectNoExceptionLost() const;

 private:
  explicit Session(standin::Capabilities capabilities);

  std::unique_ptr<standin::Host> host_;
  std::int64_t live_at_start_ = 0;
};

}  // namespace zqv::fuzz
