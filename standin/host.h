// The stand-in host: the resolver, every entry point behind it, and what they share.
//
// One host per process at a time, since the resolver carries no context. The host counts every
// asking and every call of an entry point and applies its fault before the call does anything.
// The application side (standin/application.h) works beside the entry points: it is neither
// counted nor subject to faults.
//
// Entry points and the application side may be called from several threads at the same time; see
// standin/host_lock.h. A host starts, ends and has classes registered while one thread uses it. The
// functions of this class take the host's lock themselves where a comment does not say that it must
// be held.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <unordered_map>

#include "abi/records.h"
#include "standin/capabilities.h"
#include "standin/class_table.h"
#include "standin/entry_points.h"
#include "standin/host_lock.h"
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
  // The lock must be held for using these two when there are several threads.
  Ledger& ledger() { return store_.ledger(); }
  Store& store() { return store_; }
  ClassTable& classes() { return classes_; }
  const ClassTable& classes() const { return classes_; }

  // How often an entry point was called, or asked of the resolver. Names that are no entry point
  // are fatal to ask about, so that a mistyped one does not count as 0.
  std::uint64_t CallCount(std::string_view name) const;
  std::uint64_t ResolveCount(std::string_view name) const;
  // Calls of all entry points together.
  std::uint64_t TotalCalls() const { return Locked(total_calls_); }
  // How often names were asked that no host has.
  std::uint64_t StrangeNames() const { return Locked(strange_names_); }

  // Replaces the fault of one entry point from now on; calls count from the host's start. A
  // missing one is missed only by those who have not resolved it yet.
  void SetFault(std::string_view name, std::optional<Fault> fault);

  // Whether lock counts mean anything: false once a lock or unlock entry point has had a fault.
  bool CountsLocks() const { return Locked(counts_locks_); }

  // Fatal when a registered member names a type that is no class. To be called once the plug-in
  // has registered everything.
  void FinishRegistration() const { classes_.CheckTypes(); }

  // A stable text of every registered class and member, without addresses.
  std::string ListClasses() const;

  // A pending exception belongs to the thread that raised it.
  //
  // This thread's, handed over with its lock; null when there is none.
  NativeThing* TakePending();
  // Makes an exception pending in this thread with a lock of its own, unless one is pending there
  // already. The lock must be held.
  void Raise(NativeThing* exception);
  // Exceptions raised while another was pending, and those pending when nothing was being called.
  std::uint64_t DroppedExceptions() const { return Locked(dropped_exceptions_); }
  std::uint64_t StrayExceptions() const { return Locked(stray_exceptions_); }
  // Lets go of an exception of this thread that nobody waits for, and counts it.
  void DropStray();
  // The same for every thread, those that have ended included.
  void DropAllStrays();

  // Counts a call of an entry point and applies its fault: true when the call must do nothing. The
  // lock must be held.
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
  // The lock must be held.
  NativeThing* TakePendingLocked();

  template <typename T>
  static T Locked(const T& member) {
    const HostLock lock;
    return member;
  }

  inline static Host* current_ = nullptr;  // the resolver has no context to carry it

  const Capabilities capabilities_;
  ClassTable classes_;
  Store store_;
  std::array<EntryState, kEntryCount> entries_;
  std::unordered_map<std::thread::id, NativeThing*> pending_;
  bool counts_locks_ = true;
  std::uint64_t total_calls_ = 0;
  std::uint64_t strange_names_ = 0;
  std::uint64_t dropped_exceptions_ = 0;
  std::uint64_t stray_exceptions_ = 0;
};

}  // namespace zqv::standin
