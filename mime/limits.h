// What one message may have of things that cost far more memory than they cost input. The figures
// are chosen so that no message below 1 MB takes more than 100 MB to construct and read in full,
// and none of 25 MB more than 500 MB (docs/limits.md).
//
// Beyond a limit std::runtime_error says which. All limits are far above what real mail has.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "mime/field.h"

namespace zqv::mime {

// Parts of one message, the message itself included. An empty part costs 4 bytes of input. The
// limit of parts is also the limit of nesting.
inline constexpr std::size_t kMostParts = 10'000;

// Header fields of all parts together. The shortest costs 3 bytes of input.
inline constexpr std::size_t kMostFields = 30'000;

// Addresses and parameters of all header fields together, or of one text that an application has
// parsed. An empty address costs one byte of input.
inline constexpr std::size_t kMostEntries = 20'000;

// How many addresses or parameters a value gives: one of the CountMailboxes of mime/addresses.h or
// the like.
using CountEntries = std::size_t (*)(std::string_view value);

// What the parse of one message may still add.
class MessageLimits {
 public:
  // For each new part, the message itself included.
  void AdmitPart();
  // For each field, the last of `fields`, which are those of all headers so far.
  void AdmitField(const std::vector<Field>& fields);

 private:
  std::size_t parts_ = 0;
  // Entries are counted once there could be too many: a value gives no more than it has bytes, and
  // one.
  std::size_t most_entries_ = 0;
  std::size_t entries_ = 0;         // of the fields that were counted
  std::size_t counted_fields_ = 0;  // the first so many
};

// For a text that an application has parsed by itself; null for one that gives no entries.
void AdmitText(CountEntries count, std::string_view text);

}  // namespace zqv::mime
