// The stand-in host: the resolver, the entry points that it returns, and the state that they share.
//
// A process has at most one host at a time, since the resolver has no argument that could name one.
// The host counts every lookup of an entry point and every call. Before a call does anything, the
// host applies the fault of the entry point, if it has one. The application side
// (standin/application.h) does not use entry points, so faults do not affect it and it is not
// counted.
//
// Entry points and the application side may be called from several threads at the same time, see
// standin/host_lock.h. A host must be started, ended, and given its classes while one thread uses
// it. The member functions of this class acquire the host's mutex (HostLock), unless their comment
// says that the caller must hold it.
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
  // Starts a host. Fatal when the process has one already. Destroying the result ends the host and
  // frees all things of the plug-in and the application. Their handles must not be used afterwards.
  static std::unique_ptr<Host> Start(Capabilities capabilities = {});
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  // The host of the process, or null.
  static Host* Current() { return current_; }
  // The host of the process. Fatal when there is none; `user` names the caller in the message.
  static Host& Get(const char* user) {
    if (current_ == nullptr) FailWithoutHost(user);
    return *current_;
  }

  // The argument for the plug-in's exported function. It serves the current host, also one that is
  // started later.
  abi::Resolver resolver() const;

  // The capabilities at the start. SetFault does not change them.
  const Capabilities& capabilities() const { return capabilities_; }
  // With several threads, the caller must hold the mutex while it uses the ledger or the store.
  Ledger& ledger() { return store_.ledger(); }
  Store& store() { return store_; }
  ClassTable& classes() { return classes_; }
  const ClassTable& classes() const { return classes_; }

  // How often an entry point was called, or was looked up through the resolver. A name that is not
  // an entry point is fatal, so that a mistyped name is not counted as 0.
  std::uint64_t CallCount(std::string_view name) const;
  std::uint64_t ResolveCount(std::string_view name) const;
  // The number of calls of all entry points.
  std::uint64_t TotalCalls() const { return Locked(total_calls_); }
  // How often the plug-in looked up names that no host has.
  std::uint64_t StrangeNames() const { return Locked(strange_names_); }

  // Replaces the fault of one entry point; std::nullopt removes it. Its `from_call` counts
  // calls from the host's start. With kMissing, code that has looked up the entry point before can
  // still call it.
  void SetFault(std::string_view name, std::optional<Fault> fault);

  // Whether lock counts are correct: false once an entry point that locks or unlocks has had a
  // fault.
  bool CountsLocks() const { return Locked(counts_locks_); }

  // Fatal when a registered member's type names an unknown class. Call it after the plug-in has
  // registered everything.
  void FinishRegistration() const { classes_.CheckTypes(); }

  // Lists all registered classes and members, one a line. The text contains no addresses, so that
  // it is the same in every run.
  std::string ListClasses() const;

  // A pending exception belongs to the thread that raised it.
  //
  // Returns the pending exception of this thread and gives the caller its lock; null when there is
  // none. [new lock]
  NativeThing* TakePending();
  // Makes `exception` pending in this thread and adds a lock. If one is pending already, it only
  // counts `exception` as dropped. The caller must hold the mutex.
  void Raise(NativeThing* exception);
  // Dropped exceptions were raised while another was pending. Stray exceptions were pending when no
  // call of the plug-in was in progress that could deliver them.
  std::uint64_t DroppedExceptions() const { return Locked(dropped_exceptions_); }
  std::uint64_t StrayExceptions() const { return Locked(stray_exceptions_); }
  // Releases the pending exception of this thread, if there is one, and counts it as stray.
  void DropStray();
  // Does the same for all threads, also those that have ended.
  void DropAllStrays();

  // Counts a call of an entry point and applies its fault. Returns true when the call must do
  // nothing. Throws when the fault says so. The caller must hold the mutex.
  bool Enter(EntryId id) {
    ++total_calls_;
    EntryState& state = entries_[id];
    ++state.calls;
    return state.fault.has_value() && ApplyFault(id);
  }

  // Whether "PluginNewInstance" must return nil for this class.
  bool IsUnknownClass(std::string_view name) const;

 private:
  // The counts of one entry point, and its fault.
  struct EntryState {
    std::uint64_t calls = 0;
    std::uint64_t lookups = 0;
    std::optional<Fault> fault;
  };

  explicit Host(Capabilities capabilities);
  static void* Resolve(const char* name);
  [[noreturn]] static void FailWithoutHost(const char* user);
  bool ApplyFault(EntryId id) const;
  const EntryState& State(std::string_view name) const;
  // The caller must hold the mutex.
  NativeThing* TakePendingLocked();

  template <typename T>
  static T Locked(const T& member) {
    const HostLock lock;
    return member;
  }

  // Static, because the resolver has no argument that could name a host.
  inline static Host* current_ = nullptr;

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
