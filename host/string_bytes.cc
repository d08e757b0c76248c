// The host gives a pointer to a string's bytes, and their number by the global method LenB of its
// own language.
#include "host/string_bytes.h"

#include <atomic>

#include "base/log.h"

namespace zqv::host {
namespace {

using LenB = abi::RBInteger (*)(abi::REALstring);

// The host's method LenB; null when it is missing. The address is cached.
LenB FindLenB() {
  static std::atomic<LenB> g_cached{nullptr};
  LenB len_b = g_cached.load(std::memory_order_relaxed);
  if (len_b == nullptr) {
    len_b =
        ProcedureAt<LenB>(entry::REALLoadGlobalMethod(nullptr, "LenB( s as string ) as integer"));
    g_cached.store(len_b, std::memory_order_relaxed);
  }
  return len_b;
}

}  // namespace

rbData::rbData(abi::REALstring string) : hold_(StringRef::Share(string)) {
  if (string != nullptr) {
    data_ = static_cast<const char*>(entry::StringGetCString(string));
    if (const LenB len_b = FindLenB(); len_b != nullptr) length_ = len_b(string);
  }
  if (data_ == nullptr) {
    length_ = 0;
    ZQV_LOG("data is NULL, so size fixed to zero.");
  }
}

std::string_view rbData::bytes() const {
  return length_ > 0 ? std::string_view(data_, static_cast<std::size_t>(length_))
                     : std::string_view();
}

}  // namespace zqv::host
