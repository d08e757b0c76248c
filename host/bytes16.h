// Sixteen characters at once, in the vector types that GCC and Clang share, so that one source
// serves every processor. Comparisons give a mask: each byte 0 or -1.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <cpuid.h>
#include <tmmintrin.h>
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

inline Bytes16 TableOf(const std::array<std::int8_t, kBytes16>& values) {
  Bytes16 table;
  std::memcpy(&table, values.data(), sizeof table);
  return table;
}

// Each byte of those four code points is set that are `value` once the bits of `mask` are.
inline Bytes16 AreEqual(const char32_t* units, std::uint32_t mask, std::uint32_t value) {
  std::uint32_t __attribute__((vector_size(kBytes16))) words;
  std::memcpy(&words, units, sizeof words);
  return reinterpret_cast<Bytes16>((words | mask) == value);
}

// Bytes looked up by bytes, which the oldest x86-64 processors cannot: functions that use these
// have ZQV_LOOKS_UP before them, and are called only when CanLookUp() says so.
#if defined(__x86_64__)
#define ZQV_LOOKS_UP __attribute__((target("ssse3")))

// Asked once: on a virtual machine the question costs as much as decoding a page.
inline bool CanLookUp() {
  static const bool can = [] {
    unsigned int a = 0;
    unsigned int b = 0;
    unsigned int c = 0;
    unsigned int d = 0;
    return __get_cpuid(1, &a, &b, &c, &d) != 0 && (c & bit_SSSE3) != 0;
  }();
  return can;
}

// The table's byte at each index; 0 where the index is negative.
ZQV_LOOKS_UP inline Bytes16 LookUp(Bytes16 table, Bytes16 indexes) {
  return reinterpret_cast<Bytes16>(
      _mm_shuffle_epi8(reinterpret_cast<__m128i>(table), reinterpret_cast<__m128i>(indexes)));
}

// The 24 bits of each four values of six bits, the first one's highest, in a 32-bit word.
ZQV_LOOKS_UP inline Bytes16 JoinSixBits(Bytes16 values) {
  const __m128i twelve =
      _mm_maddubs_epi16(reinterpret_cast<__m128i>(values), _mm_set1_epi16(0x0140));
  return reinterpret_cast<Bytes16>(_mm_madd_epi16(twelve, _mm_set1_epi32(0x00011000)));
}
#else
#define ZQV_LOOKS_UP

inline bool CanLookUp() { return true; }

inline Bytes16 LookUp(Bytes16 table, Bytes16 indexes) {
  return reinterpret_cast<Bytes16>(
      vqtbl1q_u8(reinterpret_cast<uint8x16_t>(table), reinterpret_cast<uint8x16_t>(indexes)));
}

inline Bytes16 JoinSixBits(Bytes16 values) {
  using Words = std::uint32_t __attribute__((vector_size(kBytes16)));
  const auto v = reinterpret_cast<Words>(values);
  return reinterpret_cast<Bytes16>((v & 0x3F) << 18 | (v & 0x3F00) << 4 | (v & 0x3F0000) >> 10 |
                                   v >> 24);
}
#endif

}  // namespace zqv::host
