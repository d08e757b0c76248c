#include "objects/switches.h"

#include <atomic>

#include "base/log.h"

namespace zqv::objects {
namespace {

std::atomic<bool> g_raises_unknown_formats{false};

}  // namespace

bool RaisesUnknownFormats() { return g_raises_unknown_formats.load(std::memory_order_relaxed); }

abi::RBBoolean getRaiseUnknownFormatExceptions() { return RaisesUnknownFormats() ? 1 : 0; }

void setRaiseUnknownFormatExceptions(abi::RBBoolean value) {
  g_raises_unknown_formats = value != 0;
}

abi::RBBoolean getDebugging() { return base::IsLogging() ? 1 : 0; }

void setDebugging(abi::RBBoolean value) {
  const bool was_on = base::DebuggingEnabled.exchange(value != 0);
  if (!was_on) ZQV_LOG("ZQV debug logging enabled.");
}

}  // namespace zqv::objects
