// SIMD on vectors of 16 bytes ("lanes"), and of 32 on x86-64 processors with AVX2. Written with the
// vector extensions that GCC and Clang share, so that most code is the same for x86-64 and arm64.
//
// A comparison of vectors gives a mask: 0xFF (-1) in each lane where it holds, 0 in the others.
// Functions named `test` take sixteen bytes and return such a mask.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <cpuid.h>
#include <immintrin.h>
#elif defined(__ARM_NEON) && defined(__aarch64__)
#include <arm_neon.h>
#else
#error "base/bytes16.h supports x86-64 (SSE2) and arm64 (NEON): add the new processor here"
#endif

namespace zqv::base {

using Bytes16 = signed char __attribute__((vector_size(16)));
inline constexpr std::size_t kBytes16 = sizeof(Bytes16);

inline Bytes16 LoadBytes16(const char* from) {
  Bytes16 bytes;
  std::memcpy(&bytes, from, sizeof bytes);
  return bytes;
}

// Loads a text of 1 to 15 bytes and fills all sixteen lanes by repeating some of its bytes. So a
// test of all lanes is a test of all bytes of the text. Never reads outside the text.
inline Bytes16 LoadShort(const char* text, std::size_t size) {
  std::uint64_t halves[2];
  if (size >= sizeof halves[0]) {
    std::memcpy(&halves[0], text, sizeof halves[0]);
    std::memcpy(&halves[1], text + size - sizeof halves[1], sizeof halves[1]);
  } else {
    std::uint32_t quarters[2];
    if (size >= sizeof quarters[0]) {
      std::memcpy(&quarters[0], text, sizeof quarters[0]);
      std::memcpy(&quarters[1], text + size - sizeof quarters[1], sizeof quarters[1]);
    } else {
      const char bytes[] = {text[0], text[size / 2], text[size - 1], text[0]};
      std::memcpy(&quarters[0], bytes, sizeof bytes);
      quarters[1] = quarters[0];
    }
    halves[0] = halves[1] = std::uint64_t{quarters[1]} << 32U | quarters[0];
  }
  Bytes16 bytes;
  std::memcpy(&bytes, halves, sizeof bytes);
  return bytes;
}

inline void StoreBytes16(Bytes16 bytes, char* to) { std::memcpy(to, &bytes, sizeof bytes); }

// Converts a mask to an integer with kMaskBits bits a lane; lane 0 has the lowest bits.
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

// Applies `test` to 64 bytes. Bit i of the result is set when byte i passes.
template <class Test>
inline std::uint64_t BitsOf64(const char* bytes, Test test) {
#if defined(__SSE2__)
  std::uint64_t bits = 0;
#pragma GCC unroll 4
  for (unsigned i = 0; i < 4; ++i) {
    bits |= BitsOf(test(LoadBytes16(bytes + i * kBytes16))) << (i * kBytes16);
  }
  return bits;
#elif defined(__ARM_NEON)
  constexpr Bytes16 kPlaces = {1, 2, 4, 8, 16, 32, 64, -128, 1, 2, 4, 8, 16, 32, 64, -128};
  uint8x16_t parts[4];
  for (unsigned i = 0; i < 4; ++i) {
    parts[i] = reinterpret_cast<uint8x16_t>(test(LoadBytes16(bytes + i * kBytes16)) & kPlaces);
  }
  const uint8x16_t halves = vpaddq_u8(vpaddq_u8(parts[0], parts[1]), vpaddq_u8(parts[2], parts[3]));
  return vgetq_lane_u64(vreinterpretq_u64_u8(vpaddq_u8(halves, halves)), 0);
#endif
}

// Whether the mask is set in every lane.
inline bool AllOf(Bytes16 mask) {
  return BitsOf(mask) == ~std::uint64_t{0} >> (64 - 16 * kMaskBits);
}

// The index of the first lane that is set; 16 when none is.
inline std::size_t FirstOf(Bytes16 mask) {
  const std::uint64_t bits = BitsOf(mask);
  return bits != 0 ? static_cast<std::size_t>(__builtin_ctzll(bits)) / kMaskBits : kBytes16;
}

// Whether the mask is set in at least one lane.
inline bool AnyOf(Bytes16 mask) { return BitsOf(mask) != 0; }

// The index of the last lane that is set. At least one must be set.
inline std::size_t LastOf(Bytes16 mask) {
  return (63 - static_cast<std::size_t>(__builtin_clzll(BitsOf(mask)))) / kMaskBits;
}

// Returns a pointer to the first byte in [at, limit) that passes `test`, or `limit`. Never reads
// outside the range.
template <class Test>
const char* FindFirst(const char* at, const char* limit, Test test) {
  for (; limit - at >= static_cast<std::ptrdiff_t>(kBytes16); at += kBytes16) {
    const Bytes16 mask = test(LoadBytes16(at));
    if (AnyOf(mask)) return at + FirstOf(mask);
  }
  if (at == limit) return limit;
  std::array<char, kBytes16> rest{};
  std::memcpy(rest.data(), at, static_cast<std::size_t>(limit - at));
  return std::min(limit, at + FirstOf(test(LoadBytes16(rest.data()))));
}

// Compares four 32-bit code points: gives 0xFF in all four lanes of each code point for which
// `(code_point | mask) == value`, and 0 in the others.
inline Bytes16 AreEqual(const char32_t* units, std::uint32_t mask, std::uint32_t value) {
  std::uint32_t __attribute__((vector_size(kBytes16))) words;
  std::memcpy(&words, units, sizeof words);
  return reinterpret_cast<Bytes16>((words | mask) == value);
}

// Table lookup: each lane of a vector is replaced by an entry of a table of sixteen bytes.
// WideBytes is 32 lanes with AVX2 on x86-64 and 16 lanes on arm64.
//
// x86-64 processors without AVX2 cannot do this. So functions that use WideBytes are marked
// ZQV_LOOKS_UP, which has them compiled for AVX2, and may be called only when CanLookUp() is true.
#if defined(__x86_64__)
#define ZQV_LOOKS_UP __attribute__((target("avx2")))

using WideBytes = signed char __attribute__((vector_size(32)));

// Whether both the processor and the operating system support AVX2. The answer is cached: in a
// virtual machine CPUID is trapped, and one call takes as long as decoding 4 KB of base64.
inline bool CanLookUp() {
  static const bool can = [] {
    unsigned int a = 0;
    unsigned int b = 0;
    unsigned int c = 0;
    unsigned int d = 0;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & bit_OSXSAVE) == 0) return false;
    unsigned int kept = 0;  // XCR0: bits 1 and 2 say that the system saves the vector registers
    __asm__("xgetbv" : "=a"(kept), "=d"(d) : "c"(0));
    if ((kept & 6U) != 6U) return false;
    return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & bit_AVX2) != 0;
  }();
  return can;
}

// Loads a lookup table of sixteen bytes into each half of a vector of 32 lanes.
ZQV_LOOKS_UP inline WideBytes TableOf(const std::array<std::int8_t, kBytes16>& values) {
  const auto* const table = reinterpret_cast<const __m128i*>(values.data());
  return reinterpret_cast<WideBytes>(_mm256_broadcastsi128_si256(_mm_loadu_si128(table)));
}

// Replaces each lane of `indexes` by the table entry of that index, 0 to 15. A negative index gives
// 0. An index of 16 and above gives different results on x86-64 and arm64 and must not occur.
ZQV_LOOKS_UP inline WideBytes LookUp(WideBytes table, WideBytes indexes) {
  return reinterpret_cast<WideBytes>(
      _mm256_shuffle_epi8(reinterpret_cast<__m256i>(table), reinterpret_cast<__m256i>(indexes)));
}

// The upper four bits of each lane, as a number from 0 to 15.
ZQV_LOOKS_UP inline WideBytes UpperNibbles(WideBytes bytes) {
  const __m256i shifted = _mm256_srli_epi16(reinterpret_cast<__m256i>(bytes), 4);
  return reinterpret_cast<WideBytes>(shifted) & 0x0F;
}

// Joins each group of four lanes, which hold 6-bit values, into one 24-bit number in a 32-bit word.
// The first lane gives the highest six bits.
ZQV_LOOKS_UP inline WideBytes JoinSixBits(WideBytes values) {
  const __m256i twelve =
      _mm256_maddubs_epi16(reinterpret_cast<__m256i>(values), _mm256_set1_epi16(0x0140));
  return reinterpret_cast<WideBytes>(_mm256_madd_epi16(twelve, _mm256_set1_epi32(0x00011000)));
}

// Moves the first twelve lanes of each 16-lane half together, to the front of the vector.
ZQV_LOOKS_UP inline WideBytes JoinTwelves(WideBytes bytes) {
  const __m256i order = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7);
  return reinterpret_cast<WideBytes>(
      _mm256_permutevar8x32_epi32(reinterpret_cast<__m256i>(bytes), order));
}

ZQV_LOOKS_UP inline bool IsAllZero(WideBytes bytes) {
  const auto raw = reinterpret_cast<__m256i>(bytes);
  return _mm256_testz_si256(raw, raw) != 0;
}
#else
#define ZQV_LOOKS_UP

using WideBytes = Bytes16;

inline bool CanLookUp() { return true; }

inline WideBytes TableOf(const std::array<std::int8_t, kBytes16>& values) {
  WideBytes table;
  std::memcpy(&table, values.data(), sizeof table);
  return table;
}

inline WideBytes LookUp(WideBytes table, WideBytes indexes) {
  return reinterpret_cast<WideBytes>(
      vqtbl1q_u8(reinterpret_cast<uint8x16_t>(table), reinterpret_cast<uint8x16_t>(indexes)));
}

inline WideBytes UpperNibbles(WideBytes bytes) { return (bytes >> 4) & 0x0F; }

inline WideBytes JoinSixBits(WideBytes values) {
  using Words = std::uint32_t __attribute__((vector_size(sizeof(WideBytes))));
  const auto v = reinterpret_cast<Words>(values);
  return reinterpret_cast<WideBytes>((v & 0x3F) << 18 | (v & 0x3F00) << 4 | (v & 0x3F0000) >> 10 |
                                     v >> 24);
}

inline WideBytes JoinTwelves(WideBytes bytes) { return bytes; }

inline bool IsAllZero(WideBytes bytes) { return AllOf(bytes == 0); }
#endif

inline constexpr std::size_t kWideBytes = sizeof(WideBytes);

ZQV_LOOKS_UP inline WideBytes LoadWideBytes(const char* from) {
  WideBytes bytes;
  std::memcpy(&bytes, from, sizeof bytes);
  return bytes;
}

ZQV_LOOKS_UP inline void StoreWideBytes(WideBytes bytes, char* to) {
  std::memcpy(to, &bytes, sizeof bytes);
}

}  // namespace zqv::base
