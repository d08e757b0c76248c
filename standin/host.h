// The stand-in host: the resolver, every entry point behind it, and what they share.
//
// One host per process at a time, since the resolver carries no context. The host counts every
// asking and every call of an entry point and applies its fault before the call does anything.
// The application side (standin/application.h) works beside the entry points: it is neither
// counted nor subject to faults.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "abi/records.h"
#include "standin/capabilities.h"
#include "standin/class_table.h"
#include "standin/entry_points.h"
#include "standin/ledger.h"
#include "standin/store.h"

namespace zqv::standin {

class Host {
 public:
  // Fatal while another host lives. The host ends when the pointer goes: what the plug-in or the
  // application still hold is freed, and their handles must not be used any more.
  static std::unique_ptr<Host> Start(Capabilities capabilities = {});
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  // Null when no host lives.
  static Host* Current() { return current_; }
  // Fatal when no host lives.
  static Host& Get(const char* user) {
    if (current_ == nullptr) FailWithoutHost(user);
    return *current_;
  }

  // What the plug-in's exported function receives. It serves whichever host lives.
  abi::Resolver resolver() const;

  // As given at the start; SetFault does not change them.
  const Capabilities& capabilities() const { return capabilities_; }
  Ledger& ledger() { return store_.ledger(); }
  Store& store() { return store_; }
  ClassTable& classes() { return classes_; }
  const ClassTable& classes() const { return classes_; }

  // How often an entry point was called, or asked of the resolver. Names that are no entry point
  // are fatal to ask about, so that a mistyped one does not count as 0.
  std::uint64_t CallCount(std::string_view name) const;
  std::uint64_t ResolveCount(std::string_view name) const;
  // Calls of all entry points together.
  std::uint64_t TotalCalls() const { return total_calls_; }
  // How often names were asked that no host has.
  std::uint64_t StrangeNames() const { return strange_names_; }

  // Replaces the fault of one entry point from now on; calls count from the host's start. A
  // missing one is missed only by those who have not resolved it yet.
  void SetFault(std::string_view name, std::optional<Fault> fault);

  // Whether lock counts mean anything: false once a lock or unlock entry point has had a fault.
  bool CountsLocks() const { return counts_locks_; }

  // Fatal when a registered member names a type that is no class. To be called once the plug-in
  // has registered everything.
  void FinishRegistration() const { classes_.CheckTypes(); }

  // A stable text of every registered class and member, without addresses.
  std::string ListClasses() const;

  // The pending exception, handed over with its lock; null when there is none.
  NativeThing* TakePending();
  // Makes an exception pending with a lock of its own, unless one is pending already.
  void Raise(NativeThing* exception);
  // Exceptions raised while another was pending, and those pending when nothing was being called.
  std::uint64_t DroppedExceptions() const { return dropped_exceptions_; }
  std::uint64_t StrayExceptions() const { return stray_exceptions_; }
  // Lets go of an exception that nobody waits for, and counts it.
  void DropStray();

  // Counts a call of an entry point and applies its fault: true when the call must do nothing.
  bool Enter(EntryId id) {
    ++total_calls_;
    EntryState& state = entries_[id];
    ++state.calls;
    return state.fault.has_value() && ApplyFault(id);
  }

  // Whether "PluginNewInstance" must give nil for this class.
  bool IsUnknownClass(std::string_view name) const;

 private:
  // What is counted for one entry point, and its fault if it has one.
  struct EntryState {
    std::uint64_t calls = 0;
    std::uint64_t askings = 0;
    std::optional<Fault> fault;
  };

  explicit Host(Capabilities capabilities);
  static void* Resolve(const char* name);
  [[noreturn]] static void FailWithoutHost(const char* user);
  bool ApplyFault(EntryId id) const;
  const EntryState& State(std::string_view name) const;

  inline static Host* current_ = nullptr;  // the resolver has no context to carry it

  const Capabilities capabilities_;
  ClassTable classes_;
  Store store_;
  std::array<EntryState, kEntryCount> entries_;
  NativeThing* pending_ = nullptr;
  bool counts_locks_ = true;
  std::uint64_t total_calls_ = 0;
  std::uint64_t strange_names_ = 0;
  std::uint64_t dropped_exceptions_ = 0;
  std::uint64_t stray_exceptions_ = 0;
};

}  // namespace zqv::standin
