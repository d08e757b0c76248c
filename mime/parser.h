// From a message's bytes to the MIME library's tree of entities.
//
// The bytes are parsed where they lie: no stream and no copy, with the same result as the library's
// own stream constructor. The library itself limits neither nesting nor the number of parts, so
// both are limited here, at the one place that adds an entity.
#pragma once

#include <mimetic/mimeentity.h>

#include <cstddef>
#include <string_view>

namespace zqv::mime {

// Entities of one message, the message itself included. An empty part costs 4 bytes of input and
// some 800 bytes of memory, so that a mail of ordinary size could exhaust it.
inline constexpr std::size_t kMostEntities = 100'000;

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

// Parses `message` into `top`, which must be empty. Throws std::runtime_error, leaving `top` with
// what was parsed until then, when the message is nested too deeply for the stack at hand or has
// too many parts.
void ParseMessage(std::string_view message, mimetic::MimeEntity& top);

}  // namespace zqv::mime
