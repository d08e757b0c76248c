// The book of every string, object, array and lent string data: what lives, what was freed.
//
// `live_` holds exactly the things that were born and have not died; `dead_` those freed whose
// memory is still held back, so that no new thing has the address of a recently freed one. With
// the ledger off only the counts are kept and freed memory is given back at once.
//
// The host's lock must be held for every call when there are several threads.
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

// How many things are outstanding.
struct LiveCounts {
  std::int64_t strings = 0;
  std::int64_t objects = 0;
  std::int64_t arrays = 0;
  std::int64_t string_data = 0;

  std::int64_t Total() const { return strings + objects + arrays + string_data; }
};

class Ledger {
 public:
  // The quarantine holds at most so many things and bytes, whichever is reached first.
  Ledger(bool enabled, std::size_t quarantine_entries, std::size_t quarantine_bytes);
  ~Ledger();
  Ledger(const Ledger&) = delete;
  Ledger& operator=(const Ledger&) = delete;

  bool enabled() const { return enabled_; }

  // Memory for a thing; null when there is none.
  void* Allocate(std::size_t bytes) { return enabled_ ? std::malloc(bytes) : memory_.Take(bytes); }

  // The thing's head must be filled in.
  void Born(const Thing* thing) {
    ++Count(thing->kind);
    if (enabled_) Enter(thing);
  }
  // Takes over the thing's memory, for which Allocate was asked for so many bytes.
  void Died(Thing* thing, std::size_t bytes) {
    --Count(thing->kind);
    if (enabled_) {
      Bury(thing, bytes);
    } else {
      memory_.GiveBack(thing, bytes);
    }
  }

  // Fatal unless `pointer` is a live thing; `user` names who uses it.
  void CheckAlive(const void* pointer, const char* user) const {
    if (enabled_) Look(pointer, user);
  }

  // Books a filled string-data record by its address; fatal when that one is still outstanding.
  void Lent(const abi::REALstringData* record, const char* user);
  // Fatal unless `record` was lent at this very address, is unchanged and not given back yet.
  void GivenBack(const abi::REALstringData* record, const char* user);

  // Kept with the ledger off, too.
  LiveCounts Live() const;

  // One line for each class and creator with the number of things and of locks, sorted; empty
  // when nothing is outstanding. A test's fixture expects it to equal "".
  std::string Report() const;

  // The live things, for the host's end.
  std::vector<Thing*> LiveThings() const;
  // The buffers of string data never given back, for the host's end.
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
  ThingMemory memory_;                    // without the ledger
  std::array<std::int64_t, 3> counts_{};  // of living things, by their kind
  std::int64_t lent_count_ = 0;
  std::unordered_map<const void*, const Thing*> live_;
  std::unordered_map<const void*, Dead> dead_;
  std::deque<void*> dead_order_;
  std::size_t dead_bytes_ = 0;
  std::unordered_map<const void*, abi::REALstringData> lent_;
};

// "String created by REALBuildString, 2 locks": how messages name a thing.
std::string Describe(const Thing& thing);

}  // namespace zqv::standin
