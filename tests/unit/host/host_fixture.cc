#include "tests/unit/host/host_fixture.h"

#include <cstdio>
#include <map>
#include <memory>
#include <new>
#include <variant>

#include "base/log.h"
#include "host/entry_points.h"

namespace zqv::test {
namespace {

std::map<std::string, void*, std::less<>>& Replacements() {
  static std::map<std::string, void*, std::less<>> replacements;
  return replacements;
}

void* Resolve(const char* name) {
  const auto found = Replacements().find(name);
  if (found != Replacements().end()) return found->second;
  return standin::Host::Get("a test").resolver()(name);
}

// Constructs an entry point again in its place. It holds an atomic, so it cannot be assigned.
template <class EntryPoint>
void MakeAnew(EntryPoint& entry_point, const char* name) {
  std::destroy_at(&entry_point);
  new (&entry_point) EntryPoint(name);
}

void ForgetEntryPoints() {
  namespace entry = host::entry;
#define ZQV_ENTRY_POINT(name, result, arguments, ownership) MakeAnew(entry::name, #name);
#include "abi/entry_points.def"
}

}  // namespace

HostTest::~HostTest() { host::SetResolver(nullptr); }

void HostTest::TearDown() {
  base::DebuggingEnabled = false;
  Replacements().clear();
  if (host_ == nullptr) return;
  EXPECT_EQ(TakeRaised(), "");
  if (host_->CountsLocks()) {
    EXPECT_EQ(host_->ledger().Report(), "");
  }
  host_.reset();
}

standin::Host& HostTest::Start(const standin::Capabilities& capabilities) {
  host_.reset();
  host_ = standin::Host::Start(capabilities);
  ForgetEntryPoints();
  host::SetResolver(Resolve);
  host::SetHostVersion(capabilities.version);
  return *host_;
}

standin::Host& HostTest::StartVersion(double version) {
  standin::Capabilities capabilities;
  capabilities.version = version;
  return Start(capabilities);
}

standin::Host& HostTest::StartWithFault(const char* name, standin::Fault fault, double version) {
  standin::Capabilities capabilities;
  capabilities.version = version;
  capabilities.faults[name] = fault;
  return Start(capabilities);
}

standin::Host& HostTest::StartWithout(const char* name, double version) {
  return StartWithFault(name, {standin::Fault::Kind::kMissing}, version);
}

void HostTest::ReplaceWith(const char* name, void* function) {
  Replacements()[name] = function;
  ForgetEntryPoints();
}

std::string HostTest::TakeRaised() {
  standin::NativeThing* thing = host_->TakePending();
  if (thing == nullptr) return {};
  const auto& state = std::get<standin::ExceptionState>(*thing->state);
  const std::string message =
      state.message == nullptr ? "nil" : std::string(state.message->bytes());
  const std::string text =
      standin::ClassOf(*thing)->name + ", " + std::to_string(state.error_number) + ": " + message;
  host_->store().Unlock(thing, "a test");
  return text;
}

std::string Shown(abi::Encoding encoding, std::string_view bytes) {
  char number[16];
  std::snprintf(number, sizeof number, "%08X ", encoding);
  return number + std::string(bytes);
}

std::string Show(const host::StringRef& string) {
  if (!string) return "nil";
  const auto* thing = reinterpret_cast<const standin::StringThing*>(string.get());
  return Shown(thing->encoding, thing->bytes());
}

}  // namespace zqv::test
