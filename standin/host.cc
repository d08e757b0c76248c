// The one host of the process, and the table of entry points, made from the list that host and
// plug-in share. Every call of an entry point marks that the host runs, is counted, applies the
// fault, and then does its work.
#include "standin/host.h"

#include <stdexcept>
#include <utility>

#include "base/ascii.h"
#include "standin/fatal.h"
#include "standin/invoke.h"
#include "standin/text.h"

namespace zqv::standin {
namespace {

// The function that the resolver returns for an entry point: it counts the call, applies the fault,
// and calls the implementation.
template <EntryId kId, auto kBody>
struct Counted;

template <EntryId kId, typename Result, typename... Arguments, Result (*kBody)(Arguments...)>
struct Counted<kId, kBody> {
  static Result Call(Arguments... arguments) {
    const EntryScope scope;
    if (Host::Get("an entry point").Enter(kId)) return Result();
    return kBody(arguments...);
  }
};

// An entry point: its name, and the function that the resolver returns.
struct EntryRow {
  std::string_view name;
  void* address;
};

const std::array<EntryRow, kEntryCount>& Entries() {
  static const std::array<EntryRow, kEntryCount> kEntries = {{
#define ZQV_ENTRY_POINT(name, result, arguments, ownership) \
  {#name, reinterpret_cast<void*>(&Counted<k##name, &entry::name>::Call)},
#include "abi/entry_points.def"
  }};
  return kEntries;
}

// Finds an entry point by name. Nothing when no host has one of that name.
std::optional<EntryId> FindEntry(std::string_view name) {
  for (std::size_t i = 0; i < kEntryCount; ++i) {
    if (Entries()[i].name == name) return static_cast<EntryId>(i);
  }
  return std::nullopt;
}

// Finds an entry point by name. Fatal when no host has one of that name.
EntryId EntryOf(std::string_view name) {
  const std::optional<EntryId> id = FindEntry(name);
  if (!id) Fatal("there is no entry point \"" + std::string(name) + "\"");
  return *id;
}

}  // namespace

std::unique_ptr<Host> Host::Start(Capabilities capabilities) {
  if (current_ != nullptr) Fatal("a second host in one process");
  return std::unique_ptr<Host>(new Host(std::move(capabilities)));
}

Host::Host(Capabilities capabilities)
    : capabilities_(std::move(capabilities)), store_(capabilities_) {
  current_ = this;
  for (const auto& [name, fault] : capabilities_.faults) SetFault(name, fault);
}

Host::~Host() { current_ = nullptr; }

void Host::FailWithoutHost(const char* user) {
  Fatal(std::string(user) + " is called while no host lives");
}

abi::Resolver Host::resolver() const { return &Host::Resolve; }

void* Host::Resolve(const char* name) {
  const EntryScope scope;
  Host& host = Get("the resolver");
  if (name == nullptr) Fatal("the resolver is asked for a null name");
  const std::optional<EntryId> id = FindEntry(name);
  if (!id) {
    ++host.strange_names_;
    return nullptr;
  }
  EntryState& state = host.entries_[*id];
  ++state.lookups;
  if (state.fault && state.fault->kind == Fault::Kind::kMissing) return nullptr;
  if (*id == kREALGetStringCFString && !host.capabilities_.platform_string) return nullptr;
  return Entries()[*id].address;
}

const Host::EntryState& Host::State(std::string_view name) const { return entries_[EntryOf(name)]; }

std::uint64_t Host::CallCount(std::string_view name) const { return Locked(State(name).calls); }

std::uint64_t Host::ResolveCount(std::string_view name) const {
  return Locked(State(name).lookups);
}

void Host::SetFault(std::string_view name, std::optional<Fault> fault) {
  const EntryId id = EntryOf(name);
  const HostLock lock;
  entries_[id].fault = fault;
  if (!fault) return;
  if (id == kPluginRegisterClass || id == kRegisterPluginVersion) {
    classes_.ExpectGaps();
  }
  const bool of_objects = id == kREALLockObject || id == kREALUnlockObject;
  const bool of_strings = id == kREALLockString || id == kREALUnlockString;
  if (of_objects) store_.MakeImmortal(ThingKind::kObject);
  if (of_strings) store_.MakeImmortal(ThingKind::kString);
  if (of_objects || of_strings) counts_locks_ = false;
}

bool Host::ApplyFault(EntryId id) const {
  const EntryState& state = entries_[id];
  if (state.calls < state.fault->from_call) return false;
  if (state.calls - state.fault->from_call >= state.fault->calls) return false;
  switch (state.fault->kind) {
    case Fault::Kind::kMissing:
      return false;
    case Fault::Kind::kNothing:
      return true;
    case Fault::Kind::kThrows:
      throw std::runtime_error("fault of " + std::string(Entries()[id].name));
    case Fault::Kind::kThrowsInt:
      throw 42;
  }
  return false;
}

bool Host::IsUnknownClass(std::string_view name) const {
  for (const std::string& unknown : capabilities_.unknown_classes) {
    if (base::EqualsIgnoringCase(unknown, name)) return true;
  }
  return false;
}

NativeThing* Host::TakePendingLocked() {
  if (pending_.empty()) return nullptr;
  const auto own = pending_.find(std::this_thread::get_id());
  if (own == pending_.end()) return nullptr;
  NativeThing* const exception = own->second;
  pending_.erase(own);
  return exception;
}

NativeThing* Host::TakePending() {
  const HostLock lock;
  return TakePendingLocked();
}

void Host::Raise(NativeThing* exception) {
  if (!pending_.emplace(std::this_thread::get_id(), exception).second) {
    ++dropped_exceptions_;
    return;
  }
  store_.Lock(exception, "RuntimeRaiseException");
}

void Host::DropStray() {
  const HostLock lock;
  NativeThing* const exception = TakePendingLocked();
  if (exception == nullptr) return;
  ++stray_exceptions_;
  store_.Unlock(exception, "the host");
}

void Host::DropAllStrays() {
  const HostLock lock;
  for (const auto& [thread, exception] : std::exchange(pending_, {})) {
    ++stray_exceptions_;
    store_.Unlock(exception, "the host");
  }
}

}  // namespace zqv::standin
