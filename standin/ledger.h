// The ledger records every thing (string, object, array) and all string data that was lent: what is
// alive, and what was freed recently.
//
// `live_` contains the living things. `dead_` contains the freed things in quarantine, whose memory
// is not freed yet, so that no new thing gets the address of a recently freed one. A disabled
// ledger keeps only counts, and freed memory is reused at once.
//
// With several threads, the caller must hold the host's mutex (standin/host_lock.h) for every call.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

#include "abi/records.h"
#include "standin/thing_memory.h"
#include "standin/things.h"

namespace zqv::standin {

// The number of living things of each kind, and of lent string data.
struct LiveCounts {
  std::int64_t strings = 0;
  std::int64_t objects = 0;
  std::int64_t arrays = 0;
  std::int64_t string_data = 0;

  std::int64_t Total() const { return strings + objects + arrays + string_data; }
};

class Ledger {
 public:
  // The last two arguments limit the quarantine. The oldest thing leaves it when one of them is
  // exceeded.
  Ledger(bool enabled, std::size_t quarantine_entries, std::size_t quarantine_bytes);
  ~Ledger();
  Ledger(const Ledger&) = delete;
  Ledger& operator=(const Ledger&) = delete;

  bool enabled() const { return enabled_; }

  // Allocates the memory of a thing. Null when there is no memory.
  void* Allocate(std::size_t bytes) { return enabled_ ? std::malloc(bytes) : memory_.Take(bytes); }

  // Records a new thing, whose head must be filled in.
  void Born(const Thing* thing) {
    ++Count(thing->kind);
    if (enabled_) Enter(thing);
  }
  // Records that the thing was freed, and takes ownership of its memory. `bytes` is the number that
  // was passed to Allocate.
  void Died(Thing* thing, std::size_t bytes) {
    --Count(thing->kind);
    if (enabled_) {
      Bury(thing, bytes);
    } else {
      memory_.GiveBack(thing, bytes);
    }
  }

  // Fatal unless `pointer` is a living thing. `user` names who uses it.
  void CheckAlive(const void* pointer, const char* user) const {
    if (enabled_) Look(pointer, user);
  }

  // Records that `record` was filled with lent string data. Fatal when the same record was filled
  // before and not given back.
  void Lent(const abi::REALstringData* record, const char* user);
  // Records that string data was given back. Fatal unless `record` has the address of one that was
  // lent, is unchanged, and was not given back yet.
  void GivenBack(const abi::REALstringData* record, const char* user);

  // Correct also when the ledger is disabled.
  LiveCounts Live() const;

  // A leak report: for each class and creator, one line with the number of living things and of
  // their locks, sorted. Empty when nothing is alive. The fixture of the interface tests demands an
  // empty report.
  std::string Report() const;

  // All living things, to be freed when the host ends.
  std::vector<Thing*> LiveThings() const;
  // The buffers of all string data that was not given back, to be freed when the host ends.
  std::vector<void*> LentBuffers() const;

 private:
  struct Dead {
    const TypeInfo* type;
    const char* creator;
    std::size_t bytes;
  };

  std::int64_t& Count(ThingKind kind) { return counts_[static_cast<std::size_t>(kind)]; }
  void Enter(const Thing* thing);
  void Bury(Thing* thing, std::size_t bytes);
  void Look(const void* pointer, const char* user) const;
  void Trim(std::size_t max_entries, std::size_t max_bytes);

  const bool enabled_;
  const std::size_t quarantine_entries_;
  const std::size_t quarantine_bytes_;
  ThingMemory memory_;                    // used when the ledger is disabled
  std::array<std::int64_t, 3> counts_{};  // living things, by ThingKind
  std::int64_t lent_count_ = 0;
  std::unordered_map<const void*, const Thing*> live_;
  std::unordered_map<const void*, Dead> dead_;
  std::deque<void*> dead_order_;
  std::size_t dead_bytes_ = 0;
  std::unordered_map<const void*, abi::REALstringData> lent_;
};

// Names a thing in messages: "String created by REALBuildString, 2 locks".
std::string Describe(const Thing& thing);

}  // namespace zqv::standin
