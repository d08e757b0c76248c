// The queue of lists that wait to be given back. The outermost ReleaseParts of a thread has it on
// its stack and stores its address in a thread-local pointer, where nested calls find it.
#include "objects/release.h"

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

#include "base/thread_slot.h"

namespace zqv::objects {
namespace {

// A queued list on the heap.
struct Waiting {
  host::ArrayRef list;
  std::unique_ptr<Waiting> next;
};

// The queue of one thread, last in, first out. The first 32 lists need no memory from the heap.
class ReleaseQueue {
 public:
  ReleaseQueue() { base::SetThreadSlot(this); }
  ReleaseQueue(const ReleaseQueue&) = delete;
  ReleaseQueue& operator=(const ReleaseQueue&) = delete;
  ~ReleaseQueue() { base::SetThreadSlot(nullptr); }

  // The queue of the calling thread; null when no call of ReleaseParts is running on it.
  static ReleaseQueue* OfThread() { return static_cast<ReleaseQueue*>(base::GetThreadSlot()); }

  // Takes ownership of `list`, unless memory runs out.
  void Add(host::ArrayRef&& list) {
    if (count_ < kOnStack) {
      on_stack_[count_++] = std::move(list);
      return;
    }
    std::unique_ptr<Waiting> place(new (std::nothrow) Waiting);
    if (place == nullptr) return;  // the caller still owns `list` and gives it back
    place->list = std::move(list);
    place->next = std::move(on_heap_);
    on_heap_ = std::move(place);
  }

  // Gives back one list after the other, also those that are added meanwhile.
  void Run() {
    while (const host::ArrayRef list = TakeNewest()) {
    }
  }

 private:
  static constexpr std::size_t kOnStack = 32;

  host::ArrayRef TakeNewest() {
    if (on_heap_ != nullptr) {
      const std::unique_ptr<Waiting> place = std::exchange(on_heap_, std::move(on_heap_->next));
      return std::move(place->list);
    }
    return count_ > 0 ? std::move(on_stack_[--count_]) : host::ArrayRef();
  }

  host::ArrayRef on_stack_[kOnStack];
  std::size_t count_ = 0;
  std::unique_ptr<Waiting> on_heap_;
};

}  // namespace

void ReleaseParts(host::ArrayRef list) noexcept {
  if (!list) return;
  if (ReleaseQueue* const queue = ReleaseQueue::OfThread()) {
    queue->Add(std::move(list));
    return;
  }
  ReleaseQueue queue;
  { const host::ArrayRef first = std::move(list); }
  queue.Run();
}

}  // namespace zqv::objects
