// Runs code in several threads at the same time.
#pragma once

#include <functional>

namespace zqv::test {

// Calls work(number), which must not throw, in `count` threads, with the numbers from 0, and waits
// for all. The calls begin only when all threads have started.
void InThreads(int count, const std::function<void(int number)>& work);

}  // namespace zqv::test
