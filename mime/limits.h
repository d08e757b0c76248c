// Limits on the parts, fields and addresses of a message. A few bytes of input make each of these,
// and it takes hundreds of bytes of memory. The limits keep a message of 1 MB below 100 MB of
// memory and one of 25 MB below 500 MB, for constructing and reading it in full (docs/limits.md).
//
// When a limit is exceeded, std::runtime_error is thrown; its text names the limit.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "mime/field.h"

namespace zqv::mime {

// Parts of a message, the message itself included. The shortest part takes 4 bytes of input. This
// is also the limit of nesting.
inline constexpr std::size_t kMostParts = 10'000;

// Header fields of all parts together. The shortest field takes 3 bytes of input.
inline constexpr std::size_t kMostFields = 30'000;

// Entries: addresses and parameters, in all header fields together, or addresses in one text that
// an application passes to a constructor. The shortest entry takes one byte of input.
inline constexpr std::size_t kMostEntries = 20'000;

// Counts the entries in a field's value without allocating, such as AddressList::CountMailboxes.
using CountEntries = std::size_t (*)(std::string_view value);

// Checks the limits while one message is parsed. Both functions throw std::runtime_error.
class MessageLimits {
 public:
  // Call for each new part, the message itself included.
  void AdmitPart();
  // Call after appending each field. `fields` are all fields of the message so far.
  void AdmitField(const std::vector<Field>& fields);

 private:
  std::size_t parts_ = 0;
  // An upper bound of the number of entries: a value of n bytes has at most n + 1. Entries are
  // counted only when the bound exceeds the limit, which it does for few messages.
  std::size_t most_entries_ = 0;
  std::size_t entries_ = 0;         // exact number of entries in the fields counted so far
  std::size_t counted_fields_ = 0;  // number of fields counted so far, from the first
};

// Checks kMostEntries for a text that an application passes to a constructor. `count` is null for a
// text without entries. Throws std::runtime_error.
void AdmitText(CountEntries count, std::string_view text);

}  // namespace zqv::mime
