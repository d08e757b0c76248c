// Sixteen characters at once, in the vector types that GCC and Clang share, so that one source
// serves every processor. Comparisons give a mask: each byte 0 or -1.
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

// Sixteen bytes that are those of a text of 1 to 15 bytes, some of them more than once: for asking
// whether all of them pass a test.
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

// A bit for each of 64 bytes, the first byte's lowest: whether `test`, which gives a mask for
// sixteen of them, sets it.
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

// The first byte in [at, limit) that `test`, which gives a mask for sixteen of them, sets; or
// `limit`.
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

// Each byte of those four code points is set that are `value` once the bits of `mask` are.
inline Bytes16 AreEqual(const char32_t* units, std::uint32_t mask, std::uint32_t value) {
  std::uint32_t __attribute__((vector_size(kBytes16))) words;
  std::memcpy(&words, units, sizeof words);
  return reinterpret_cast<Bytes16>((words | mask) == value);
}

// Bytes looked up by bytes, as many at once as the processor can, which is a multiple of sixteen.
// Older x86-64 processors cannot: functions that use these have ZQV_LOOKS_UP before them, and are
// called only when CanLookUp() says so.
#if defined(__x86_64__)
#define ZQV_LOOKS_UP __attribute__((target("avx2")))

using WideBytes = signed char __attribute__((vector_size(32)));

// Whether processor and system know AVX2. Asked once: on a virtual machine the question costs as
// much as decoding a page.
inline bool CanLookUp() {
  static const bool can = [] {
    unsigned int a = 0;
    unsigned int b = 0;
    unsigned int c = 0;
    unsigned int d = 0;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & bit_OSXSAVE) == 0) return false;
    unsigned int kept = 0;  // the registers that the system keeps for each thread
    __asm__("xgetbv" : "=a"(kept), "=d"(d) : "c"(0));
    if ((kept & 6U) != 6U) return false;
    return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & bit_AVX2) != 0;
  }();
  return can;
}

// The same sixteen bytes for each sixteen.
ZQV_LOOKS_UP inline WideBytes TableOf(const std::array<std::int8_t, kBytes16>& values) {
  const auto* const table = reinterpret_cast<const __m128i*>(values.data());
  return reinterpret_cast<WideBytes>(_mm256_broadcastsi128_si256(_mm_loadu_si128(table)));
}

// The byte at each index of its sixteen of the table; 0 where the index is negative.
ZQV_LOOKS_UP inline WideBytes LookUp(WideBytes table, WideBytes indexes) {
  return reinterpret_cast<WideBytes>(
      _mm256_shuffle_epi8(reinterpret_cast<__m256i>(table), reinterpret_cast<__m256i>(indexes)));
}

// The upper four bits of each byte.
ZQV_LOOKS_UP inline WideBytes UpperHalves(WideBytes bytes) {
  const __m256i shifted = _mm256_srli_epi16(reinterpret_cast<__m256i>(bytes), 4);
  return reinterpret_cast<WideBytes>(shifted) & 0x0F;
}

// The 24 bits of each four values of six bits, the first one's highest, in a 32-bit word.
ZQV_LOOKS_UP inline WideBytes JoinSixBits(WideBytes values) {
  const __m256i twelve =
      _mm256_maddubs_epi16(reinterpret_cast<__m256i>(values), _mm256_set1_epi16(0x0140));
  return reinterpret_cast<WideBytes>(_mm256_madd_epi16(twelve, _mm256_set1_epi32(0x00011000)));
}

// The first twelve of each sixteen bytes, one after the other.
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

inline WideBytes UpperHalves(WideBytes bytes) { return (bytes >> 4) & 0x0F; }

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
