// Names for the host's text-encoding numbers that the library treats specially. The host uses the
// CFStringEncoding numbers of macOS on every platform. text/charset.cc has further numbers.
#pragma once

#include <cstdint>

namespace zqv::abi {

using Encoding = std::uint32_t;

inline constexpr Encoding kMacRoman = 0;
inline constexpr Encoding kUtf16 = 0x0100;  // UTF-16 in the byte order of the processor
inline constexpr Encoding kIsoLatin1 = 0x0201;
inline constexpr Encoding kWindowsLatin1 = 0x0500;
inline constexpr Encoding kAscii = 0x0600;
inline constexpr Encoding kUtf8 = 0x08000100;
inline constexpr Encoding kUtf32 = 0x0C000100;  // UTF-32 in the byte order of the processor
inline constexpr Encoding kUtf16BigEndian = 0x10000100;
inline constexpr Encoding kUtf16LittleEndian = 0x14000100;
inline constexpr Encoding kUtf32BigEndian = 0x18000100;
inline constexpr Encoding kUtf32LittleEndian = 0x1C000100;
inline constexpr Encoding kUnknownEncoding = 0xFFFF;

}  // namespace zqv::abi
