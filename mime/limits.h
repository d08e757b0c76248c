// What one message may have of things that cost far more memory or stack than they cost input. The
// MIME library itself limits nothing.
//
// All limits are far above what real mail has; beyond one, std::runtime_error says which.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "mime/field_name.h"

namespace zqv::mime {

// Entities of one message, the message itself included. An empty part costs 4 bytes of input and
// some 800 bytes of memory before any object is made of it.
inline constexpr std::size_t kMostEntities = 100'000;

// Header fields of all entities together. The shortest costs 3 bytes of input.
inline constexpr std::size_t kMostFields = 200'000;

// Addresses and parameters of all header fields together, or of one text that an application has
// parsed. An empty address costs one byte of input.
inline constexpr std::size_t kMostEntries = 100'000;

// Stack that one level of nesting may cost in the dearest of all walks: building the host objects,
// or the host's destroying them, which runs through the host's own frames between ours. Measured
// on the release build with room to spare; instrumented and unoptimised builds use several times as
// much.
#if !defined(__OPTIMIZE__) || defined(ZQV_INSTRUMENTED)
inline constexpr std::size_t kStackPerLevel = 12'000;
#else
inline constexpr std::size_t kStackPerLevel = 1'800;
#endif

// Stack that is left alone: what the host and its callbacks need beyond the deepest level.
inline constexpr std::size_t kStackReserve = 24'576;

// Levels that are always allowed, without looking at the stack: ordinary mail has up to about six.
inline constexpr std::size_t kLevelsUnmeasured = 8;

// Levels when the system does not say how much stack there is.
inline constexpr std::size_t kLevelsUnknown = 100;

// What the parse of one message may still add.
class MessageLimits {
 public:
  // For each new entity but the message itself: the levels above it.
  void AdmitEntity(std::size_t levels);
  // For each field, before it is parsed any further.
  void AdmitField(std::optional<FieldName> name, std::string_view value);

 private:
  std::size_t entities_ = 1;
  std::size_t fields_ = 0;
  std::size_t entries_ = 0;
  std::size_t most_levels_ = 0;  // 0: not measured yet
};

// For a text that is parsed by itself.
void AdmitText(std::string_view text);

}  // namespace zqv::mime
