// A host string's own bytes, as the string holds them, without conversion.
#pragma once

#include <cstdint>
#include <string_view>

#include "host/ref.h"

namespace zqv::host {

// Reads one string [borrowed], which it keeps alive meanwhile. The bytes are the host's memory.
class rbData {
 public:
  explicit rbData(abi::REALstring string);

  // The bytes [borrowed: as long as this reader lives]; empty when there are none.
  std::string_view bytes() const;

  // The byte length as the host gives it, 0 without data. A broken host may say a negative one.
  std::int64_t length() const { return length_; }

 private:
  StringRef hold_;
  const char* data_ = nullptr;
  std::int64_t length_ = 0;
};

}  // namespace zqv::host
