#include "objects/release.h"

#include <memory>
#include <new>
#include <utility>

#include "base/thread_slot.h"

namespace zqv::objects {
namespace {

struct Waiting {
  host::ArrayRef list;
  std::unique_ptr<Waiting> next;
};

// The lists that wait on one thread, the newest first. It lives as long as the outermost call.
class ReleaseQueue {
 public:
  ReleaseQueue() { base::SetThreadSlot(this); }
  ReleaseQueue(const ReleaseQueue&) = delete;
  ReleaseQueue& operator=(const ReleaseQueue&) = delete;
  ~ReleaseQueue() { base::SetThreadSlot(nullptr); }

  static ReleaseQueue* OfThread() { return static_cast<ReleaseQueue*>(base::GetThreadSlot()); }

  void Add(host::ArrayRef&& list) {
    std::unique_ptr<Waiting> place(new (std::nothrow) Waiting);
    if (place == nullptr) return;  // `list` is given back by its owner
    place->list = std::move(list);
    place->next = std::move(first_);
    first_ = std::move(place);
  }

  void Run() {
    while (first_ != nullptr) {
      const std::unique_ptr<Waiting> place = std::exchange(first_, std::move(first_->next));
      const host::ArrayRef list = std::move(place->list);
    }
  }

 private:
  std::unique_ptr<Waiting> first_;
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
