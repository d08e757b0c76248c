// Running code in several threads at the same time.
#pragma once

#include <functional>

namespace zqv::test {

// Runs `work`, which must not throw, in so many threads with the numbers from 0, and waits for all
// of them. None begins before all have been started.
void InThreads(int count, const std::function<void(int number)>& work);

}  // namespace zqv::test
