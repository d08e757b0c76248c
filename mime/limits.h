// Limits on the parts, fields, addresses and parameters of a message. Each of them needs only a few
// bytes of input, but takes hundreds of bytes of memory. The limits keep a message of 1 MB below
// 100 MB of memory and a message of 25 MB below 500 MB, for constructing the message and reading it
// in full (docs/limits.md).
//
// When a limit is exceeded, std::runtime_error is thrown; its text names the limit.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "mime/field.h"

namespace zqv::mime {

// The most parts of a message, the message itself included. The shortest part takes 4 bytes of
// input. This also limits how deep parts can be nested.
inline constexpr std::size_t kMostParts = 10'000;

// The most header fields of all parts of a message together. The shortest field takes 3 bytes of
// input.
inline constexpr std::size_t kMostFields = 30'000;

// The most entries in all header fields of a message together, or in one text that an application
// passes to a constructor. An entry is a mailbox (members of groups included) or a parameter of
// Content-Type or Content-Disposition. The shortest entry takes one byte of input.
inline constexpr std::size_t kMostEntries = 20'000;

// A function, such as AddressList::CountMailboxes, that returns the number of entries in a field's
// value. It allocates nothing.
using CountEntries = std::size_t (*)(std::string_view value);

// Checks the limits while one message is parsed. Both functions throw std::runtime_error when a
// limit is exceeded.
class MessageLimits {
 public:
  // Call for each new part, the message itself included.
  void AdmitPart();
  // Call after appending each field. `fields` are all fields of the message so far.
  void AdmitField(const std::vector<Field>& fields);

 private:
  std::size_t parts_ = 0;
  // An upper bound of the number of entries: a value of n bytes has at most n + 1 entries. They are
  // counted only when this bound exceeds kMostEntries, as it does for few messages.
  std::size_t most_entries_ = 0;
  std::size_t entries_ = 0;         // the exact number of entries in the counted fields
  std::size_t counted_fields_ = 0;  // the number of fields counted, from the first
};

// Throws std::runtime_error when a text that an application passes to a constructor has more than
// kMostEntries entries. `count` counts them; it is null for a kind of text that has no entries.
void AdmitText(CountEntries count, std::string_view text);

}  // namespace zqv::mime
