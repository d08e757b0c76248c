// The built library in a stand-in host, for the life of the process: the library keeps what it
// found in its host, so it cannot be loaded twice.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "standin/capabilities.h"
#include "standin/host.h"

namespace zqv::fuzz {

class Session {
 public:
  // The one session, started by its first user.
  static Session& Get();
  // Starts it in another host than a complete one; at most once, before any use.
  static Session& Start(standin::Capabilities capabilities);

  standin::Host& host() { return *host_; }

  // Fails when anything that was made since the start is left, or when the library asked for names
  // that no host has. To be called when every handle is gone.
  void ExpectNothingLeft();
  // Fails when the library raised while an exception was pending, or when nothing was called.
  void ExpectNoExceptionLost() const;

 private:
  explicit Session(standin::Capabilities capabilities);

  std::unique_ptr<standin::Host> host_;
  std::int64_t live_at_start_ = 0;
};

}  // namespace zqv::fuzz
