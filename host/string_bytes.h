// The bytes of a host string as they are stored, without conversion.
#pragma once

#include <cstdint>
#include <string_view>

#include "host/ref.h"

namespace zqv::host {

// Gives access to the bytes of one string, and keeps the string alive as long as it exists.
class rbData {
 public:
  // `string` may be nil: it has no bytes. [borrowed; a lock is added]
  explicit rbData(abi::REALstring string);

  // The bytes. [borrowed: the host's memory, valid as long as this object lives]
  std::string_view bytes() const;

  // The length in bytes as the host reports it, 0 without data. Negative only if the host is
  // faulty; bytes() is then empty.
  std::int64_t length() const { return length_; }

 private:
  StringRef hold_;
  const char* data_ = nullptr;
  std::int64_t length_ = 0;
};

}  // namespace zqv::host
