#include "tests/interface/failing_new.h"

#include <cstdlib>
#include <new>
#include <unordered_map>

#include "standin/invoke.h"

namespace zqv::interface_test {
namespace {

// Allocates the entries of the map below, which must not use operator new.
template <typename T>
struct MallocAllocator {
  using value_type = T;
  MallocAllocator() = default;
  template <typename U>
  MallocAllocator(const MallocAllocator<U>&) {}  // NOLINT: a conversion as the library wants it
  T* allocate(std::size_t count) {
    void* const memory = std::malloc(count * sizeof(T));
    if (memory == nullptr) std::abort();
    return static_cast<T*>(memory);
  }
  void deallocate(T* memory, std::size_t) { std::free(memory); }
  friend bool operator==(const MallocAllocator&, const MallocAllocator&) { return true; }
  friend bool operator!=(const MallocAllocator&, const MallocAllocator&) { return false; }
};

struct State {
  bool is_on = false;
  std::uint64_t count = 0;
  std::uint64_t from = 0;
  std::uint64_t calls = 0;
  LiveBlocks live;
  // Every live block of the plug-in, and whether it was allocated with new[].
  std::unordered_map<void*, bool, std::hash<void*>, std::equal_to<>,
                     MallocAllocator<std::pair<void* const, bool>>>
      blocks;
};

// Never destroyed, because blocks are freed until the process ends.
State& TheState() {
  alignas(State) static unsigned char memory[sizeof(State)];
  static State* const state = new (memory) State;
  return *state;
}

std::int64_t& Counter(State& state, bool is_array) {
  return is_array ? state.live.arrays : state.live.single;
}

void* Allocate(std::size_t size, bool is_array) {
  State& state = TheState();
  const bool is_counted = state.is_on && standin::InPlugin();
  if (is_counted && ++state.count >= state.from && state.count - state.from < state.calls) {
    throw std::bad_alloc();
  }
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  if (is_counted) {
    state.blocks.emplace(memory, is_array);
    ++Counter(state, is_array);
  }
  return memory;
}

void* AllocateOrNull(std::size_t size, bool is_array) noexcept {
  try {
    return Allocate(size, is_array);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void Free(void* memory) {
  State& state = TheState();
  if (!state.blocks.empty()) {
    const auto block = state.blocks.find(memory);
    if (block != state.blocks.end()) {
      --Counter(state, block->second);
      state.blocks.erase(block);
    }
  }
  std::free(memory);
}

}  // namespace

FailingNew::FailingNew(std::uint64_t from, std::uint64_t calls) {
  State& state = TheState();
  state.count = 0;
  state.from = from;
  state.calls = calls;
  state.is_on = true;
}

FailingNew::~FailingNew() { TheState().is_on = false; }

std::uint64_t FailingNew::Count() { return TheState().count; }
LiveBlocks FailingNew::Live() { return TheState().live; }

}  // namespace zqv::interface_test

void* operator new(std::size_t size) { return zqv::interface_test::Allocate(size, false); }
void* operator new[](std::size_t size) { return zqv::interface_test::Allocate(size, true); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return zqv::interface_test::AllocateOrNull(size, false);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return zqv::interface_test::AllocateOrNull(size, true);
}
void operator delete(void* memory) noexcept { zqv::interface_test::Free(memory); }
void operator delete[](void* memory) noexcept { zqv::interface_test::Free(memory); }
void operator delete(void* memory, std::size_t) noexcept { zqv::interface_test::Free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { zqv::interface_test::Free(memory); }
