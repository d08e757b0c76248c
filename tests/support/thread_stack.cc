#include "tests/support/thread_stack.h"

#include <pthread.h>

#include <stdexcept>

namespace zqv::test {
namespace {

void* Run(void* body) {
  (*static_cast<const std::function<void()>*>(body))();
  return nullptr;
}

}  // namespace

void RunOnStack(std::size_t bytes, const std::function<void()>& body) {
  pthread_attr_t attributes;
  pthread_t thread{};
  std::function<void()> own = body;
  if (pthread_attr_init(&attributes) != 0 || pthread_attr_setstacksize(&attributes, bytes) != 0 ||
      pthread_create(&thread, &attributes, &Run, &own) != 0 || pthread_join(thread, nullptr) != 0) {
    throw std::runtime_error("there is no thread with such a stack");
  }
  pthread_attr_destroy(&attributes);
}

}  // namespace zqv::test
