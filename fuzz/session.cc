#include "fuzz/session.h"

#include <utility>

#include "fuzz/target.h"
#include "standin/library.h"

namespace zqv::fuzz {
namespace {

// Lives as long as the process, because static objects may hold handles until the end.
Session* the_session = nullptr;

}  // namespace

Session::Session(standin::Capabilities capabilities)
    : host_(standin::Host::Start(std::move(capabilities))) {
  const standin::Library library(ZQV_LIBRARY);
  library.Enter(*host_);
  live_at_start_ = host_->ledger().Live().Total();
}

Session& Session::Start(standin::Capabilities capabilities) {
  if (the_session != nullptr) Fail("a second session");
  // libFuzzer runs its slow check for leaks after each input that frees less than it allocates, so
  // freed memory is not kept in a quarantine.
  capabilities.quarantine_entries = 0;
  the_session = new Session(std::move(capabilities));
  return *the_session;
}

Session& Session::Get() { return the_session != nullptr ? *the_session : Start({}); }

void Session::ExpectNothingLeft() {
  host_->DropAllStrays();
  if (host_->ledger().Live().Total() != live_at_start_) Fail(host_->ledger().Report());
  Expect(host_->StrangeNames() == 0, "the library asks for names that no host has");
}

void Session::ExpectNoExceptionLost() const {
  Expect(host_->DroppedExceptions() == 0, "an exception was raised while another was pending");
  Expect(host_->StrayExceptions() == 0, "an exception was raised while nothing was called");
}

}  // namespace zqv::fuzz
