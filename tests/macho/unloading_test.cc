// The library is loaded, used and unloaded many times, without leaking resources of the process.
#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "standin/host.h"
#include "standin/library.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"
#include "tests/macho/plugin.h"

namespace zqv::macho {
namespace {

class Unloading : public interface_test::InterfaceTest {};

std::unique_ptr<Plugin> g_plugin;

abi::REALproc Open(const std::string&) {
  g_plugin = std::make_unique<Plugin>();
  return g_plugin->entry();
}

// Releasing the children of the message makes the library take a slot for threads.
void LoadUseAndUnload() {
  {
    const auto host = standin::Host::Start({});
    standin::Library("").Enter(*host);
    static_cast<void>(Construct(interface_test::Way::kString, interface_test::RichMessage()));
    EXPECT_EQ(host->ledger().Report(), "");
  }
  g_plugin = nullptr;
}

// Takes at most `most` slots for threads. The destructor gives them back.
class TakenSlots {
 public:
  explicit TakenSlots(std::size_t most = SIZE_MAX) {
    pthread_key_t key;
    while (keys_.size() < most && pthread_key_create(&key, nullptr) == 0) keys_.push_back(key);
  }
  ~TakenSlots() {
    for (const pthread_key_t key : keys_) pthread_key_delete(key);
  }
  TakenSlots(const TakenSlots&) = delete;
  TakenSlots& operator=(const TakenSlots&) = delete;

  std::size_t count() const { return keys_.size(); }

 private:
  std::vector<pthread_key_t> keys_;
};

std::size_t FreeSlots() { return TakenSlots().count(); }

TEST_F(Unloading, GivesBackSlotsForThreads) {
  constexpr std::size_t kLeft = 10;
  standin::UseOpener(&Open);
  LoadUseAndUnload();
  const TakenSlots others(FreeSlots() - kLeft);
  ASSERT_EQ(FreeSlots(), kLeft);
  for (std::size_t i = 0; i < 2 * kLeft; ++i) LoadUseAndUnload();
  EXPECT_EQ(FreeSlots(), kLeft);
}

// More times than a process has slots, on Linux or macOS.
TEST_F(Unloading, MoreThanAThousandTimes) {
  standin::UseOpener(&Open);
  LoadUseAndUnload();
  const std::size_t slots = FreeSlots();
  for (std::size_t i = 0; i < 1100 && !HasFailure(); ++i) LoadUseAndUnload();
  EXPECT_EQ(FreeSlots(), slots);
}

}  // namespace
}  // namespace zqv::macho
