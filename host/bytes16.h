// Sixteen characters at once, in the vector types that GCC and Clang share, so that one source
// serves every processor. Comparisons give a mask: each byte 0 or -1.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#elif defined(__ARM_NEON)
#include <arm_neon.h>
#endif

namespace zqv::host {

using Bytes16 = signed char __attribute__((vector_size(16)));
inline constexpr std::size_t kBytes16 = sizeof(Bytes16);

inline Bytes16 LoadBytes16(const char* from) {
  Bytes16 bytes;
  std::memcpy(&bytes, from, sizeof bytes);
  return bytes;
}

inline void StoreBytes16(Bytes16 bytes, char* to) { std::memcpy(to, &bytes, sizeof bytes); }

// Whether each byte lies between the two, both below 0x80 and included.
inline Bytes16 AreBetween(Bytes16 bytes, char first, char last) {
  return (bytes >= first) & (bytes <= last);
}

// A mask as an integer: kMaskBits of it for each byte, the first byte's lowest.
#if defined(__SSE2__)
inline constexpr unsigned kMaskBits = 1;
inline std::uint64_t BitsOf(Bytes16 mask) {
  return static_cast<unsigned>(_mm_movemask_epi8(reinterpret_cast<__m128i>(mask)));
}
#elif defined(__ARM_NEON)
inline constexpr unsigned kMaskBits = 4;
inline std::uint64_t BitsOf(Bytes16 mask) {
  const uint8x8_t narrow = vshrn_n_u16(reinterpret_cast<uint16x8_t>(mask), 4);
  return vget_lane_u64(vreinterpret_u64_u8(narrow), 0);
}
#endif

inline bool AllOf(Bytes16 mask) {
  return BitsOf(mask) == ~std::uint64_t{0} >> (64 - 16 * kMaskBits);
}

// The index of the first byte that is set; 16 when there is none.
inline std::size_t FirstOf(Bytes16 mask) {
  const std::uint64_t bits = BitsOf(mask);
  return bits != 0 ? static_cast<std::size_t>(__builtin_ctzll(bits)) / kMaskBits : kBytes16;
}

inline bool AnyOf(Bytes16 mask) { return BitsOf(mask) != 0; }

// The index of the last byte that is set, of at least one.
inline std::size_t LastOf(Bytes16 mask) {
  return (63 - static_cast<std::size_t>(__builtin_clzll(BitsOf(mask)))) / kMaskBits;
}

}  // namespace zqv::host
