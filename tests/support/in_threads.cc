#include "tests/support/in_threads.h"

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <thread>
#include <vector>

namespace zqv::test {

void InThreads(int count, const std::function<void(int number)>& work) {
  std::mutex mutex;
  std::condition_variable changed;
  int missing = count;
  std::vector<std::thread> threads;
  threads.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    threads.emplace_back([&, i] {
      {
        std::unique_lock<std::mutex> lock(mutex);
        if (--missing == 0) changed.notify_all();
        changed.wait(lock, [&] { return missing == 0; });
      }
      work(i);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace zqv::test
