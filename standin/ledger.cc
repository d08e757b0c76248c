// Freed things are filled with a fixed byte and poisoned. Their memory stays allocated until the
// quarantine is full.
#include "standin/ledger.h"

#include <cstdlib>
#include <cstring>
#include <map>
#include <utility>

#include "standin/fatal.h"
#include "standin/poison.h"

namespace zqv::standin {
namespace {

constexpr int kFreedByte = 0xDD;

std::string Locks(std::int64_t count) {
  return std::to_string(count) + (count == 1 ? " lock" : " locks");
}

std::string Origin(const TypeInfo& type, const char* creator) {
  return type.name + " created by " + creator;
}

// Compares all members. memcmp would compare the padding, too.
bool SameRecord(const abi::REALstringData& left, const abi::REALstringData& right) {
  return left.data == right.data && left.length == right.length &&
         left.encoding == right.encoding && left.private1 == right.private1 &&
         left.private2 == right.private2;
}

}  // namespace

std::string Describe(const Thing& thing) {
  return Origin(*thing.type, thing.creator) + ", " + Locks(thing.LockCount());
}

Ledger::Ledger(bool enabled, std::size_t quarantine_entries, std::size_t quarantine_bytes)
    : enabled_(enabled),
      quarantine_entries_(quarantine_entries),
      quarantine_bytes_(quarantine_bytes) {}

Ledger::~Ledger() { Trim(0, 0); }

LiveCounts Ledger::Live() const {
  const auto count = [this](ThingKind kind) { return counts_[static_cast<std::size_t>(kind)]; };
  return {count(ThingKind::kString), count(ThingKind::kObject), count(ThingKind::kArray),
          lent_count_};
}

void Ledger::Enter(const Thing* thing) { live_.emplace(thing, thing); }

void Ledger::Bury(Thing* thing, std::size_t bytes) {
  live_.erase(thing);
  dead_.emplace(thing, Dead{thing->type, thing->creator, bytes});
  dead_order_.push_back(thing);
  dead_bytes_ += bytes;
  Unpoison(thing, bytes);
  std::memset(static_cast<void*>(thing), kFreedByte, bytes);
  Poison(thing, bytes);
  Trim(quarantine_entries_, quarantine_bytes_);
}

void Ledger::Trim(std::size_t max_entries, std::size_t max_bytes) {
  // The oldest leave first.
  while (!dead_order_.empty() && (dead_order_.size() > max_entries || dead_bytes_ > max_bytes)) {
    void* const oldest = dead_order_.front();
    dead_order_.pop_front();
    const auto entry = dead_.find(oldest);
    dead_bytes_ -= entry->second.bytes;
    Unpoison(oldest, entry->second.bytes);
    dead_.erase(entry);
    std::free(oldest);
  }
}

void Ledger::Look(const void* pointer, const char* user) const {
  if (live_.count(pointer) != 0) return;
  const auto dead = dead_.find(pointer);
  if (dead != dead_.end()) {
    Fatal(std::string(user) + ": use of a freed " +
          Origin(*dead->second.type, dead->second.creator));
  }
  Fatal(std::string(user) + ": the pointer is not, and recently was not, a thing of this host");
}

void Ledger::Lent(const abi::REALstringData* record, const char* user) {
  ++lent_count_;
  if (!enabled_) return;
  if (!lent_.emplace(record, *record).second) {
    Fatal(std::string(user) + ": the record still holds string data that was not given back");
  }
}

void Ledger::GivenBack(const abi::REALstringData* record, const char* user) {
  --lent_count_;
  if (!enabled_) return;
  const auto entry = lent_.find(record);
  if (entry == lent_.end()) {
    Fatal(std::string(user) + ": the record is a copy, was never filled or was given back before");
  }
  if (!SameRecord(entry->second, *record)) {
    Fatal(std::string(user) + ": the record was changed since it was filled");
  }
  lent_.erase(entry);
}

std::string Ledger::Report() const {
  std::map<std::string, std::pair<std::int64_t, std::int64_t>> groups;
  for (const auto& [pointer, thing] : live_) {
    auto& [things, locks] = groups[Origin(*thing->type, thing->creator)];
    ++things;
    locks += thing->LockCount();
  }
  if (!lent_.empty()) {
    groups["string data lent by PluginGetStringData"].first =
        static_cast<std::int64_t>(lent_.size());
  }
  std::string report;
  for (const auto& [what, sums] : groups) {
    report += std::to_string(sums.first) + " x " + what + ", " + Locks(sums.second) + "\n";
  }
  return report;
}

std::vector<Thing*> Ledger::LiveThings() const {
  std::vector<Thing*> things;
  things.reserve(live_.size());
  for (const auto& [pointer, thing] : live_) things.push_back(const_cast<Thing*>(thing));
  return things;
}

std::vector<void*> Ledger::LentBuffers() const {
  std::vector<void*> buffers;
  for (const auto& [pointer, record] : lent_) {
    buffers.push_back(const_cast<void*>(record.private1));
  }
  return buffers;
}

}  // namespace zqv::standin
