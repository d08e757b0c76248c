// Which entry points make a string depends on the host's version:
//
//   before 2012   REALBuildString, then REALSetStringEncoding
//   2012          REALBuildStringWithEncoding; UTF-32 is converted to UTF-16 here first
//   2013          the same, and UTF-32 is converted by the host
//
// Strings in UTF-16 and UTF-32 are then converted to UTF-8 by the host.
#include "host/strings.h"

#include <limits>

#include "base/heap.h"
#include "base/log.h"
#include "base/unicode.h"
#include "host/errors.h"

namespace zqv::host {
namespace {

// Host versions from which the entry points are used.
constexpr double kBuildsWithEncoding = 2012.0;
constexpr double kConvertsUtf32 = 2013.0;

// Creates a string of these bytes with `encoding` as its label.
StringRef BuildLabelled(const void* bytes, std::int64_t length, abi::Encoding encoding) {
  const char* text = static_cast<const char*>(bytes);
  const int count = static_cast<int>(length);
  if (HostVersion() >= kBuildsWithEncoding)
    return StringRef::Adopt(entry::REALBuildStringWithEncoding(text, count, encoding));
  auto string = StringRef::Adopt(entry::REALBuildString(text, count));
  if (string) entry::REALSetStringEncoding(string.get(), encoding);
  return string;
}

StringRef ConvertToUtf8(const StringRef& string) {
  return StringRef::Adopt(entry::REALConvertString(string.get(), abi::kUtf8));
}

StringRef BuildThroughUtf16(const char32_t* code_points, std::size_t count) {
  // Short texts use a buffer on the stack. Less than 800 bytes of UTF-32 are at most 199 code
  // points, which give at most 398 UTF-16 units and the zero.
  constexpr std::size_t kStackBytes = 800;
  char16_t on_stack[kStackBytes / sizeof(char16_t) + 1];
  base::HeapArray<char16_t> on_heap;
  char16_t* units = on_stack;
  if (count * sizeof(char32_t) >= kStackBytes) {
    on_heap = base::AllocateZeroed<char16_t>(2 * count + 1);
    if (on_heap == nullptr) {
      ZQV_LOG("Out of memory in REALBuildUnicodeStringUTF32.");
      return {};
    }
    units = on_heap.get();
  }
  const std::size_t written = base::Utf32ToUtf16(code_points, count, units);
  return REALBuildUnicodeStringUTF16(units, static_cast<std::int64_t>(written * sizeof(char16_t)));
}

StringRef BuildUtf32(const void* bytes, std::int64_t length) {
  if (HostVersion() >= kConvertsUtf32) {
    const auto string = StringRef::Adopt(entry::REALBuildStringWithEncoding(
        static_cast<const char*>(bytes), static_cast<int>(length), abi::kUtf32));
    StringRef converted = string ? ConvertToUtf8(string) : StringRef();
    if (converted) return converted;
    // The host may refuse a text because of one invalid code point. Convert it as for older hosts,
    // which drops or replaces such code points.
  }
  return BuildThroughUtf16(static_cast<const char32_t*>(bytes),
                           static_cast<std::size_t>(length) / sizeof(char32_t));
}

// `bytes` are not empty and their number fits an int.
StringRef Build(std::string_view bytes, abi::Encoding encoding) {
  const void* const data = bytes.data();
  const auto length = static_cast<std::int64_t>(bytes.size());
  switch (encoding) {
    case abi::kAscii:
    case abi::kUtf8:
      break;
    case abi::kMacRoman:
    case abi::kIsoLatin1:
    case abi::kWindowsLatin1:
    case abi::kUnknownEncoding:  // single-byte encodings that agree with ASCII below 0x80
      if (base::IsAscii(bytes)) encoding = abi::kAscii;
      break;
    case abi::kUtf16:
      return REALBuildUnicodeStringUTF16(static_cast<const char16_t*>(data), length);
    case abi::kUtf32:
      return BuildUtf32(data, length);
    default:
      ZQV_LOG("Unknown encoding in REALBuildUnicodeString %u", encoding);
  }
  return BuildLabelled(data, length, encoding);
}

}  // namespace

StringRef BuildStringOrThrow(std::string_view bytes, abi::Encoding encoding) {
  if (bytes.empty()) return {};
  if (bytes.size() > std::numeric_limits<std::int32_t>::max()) {
    ZQV_LOG("Count too big for REALBuildUnicodeString.");
    return {};
  }
  return Build(bytes, encoding);
}

StringRef BuildString(std::string_view bytes, abi::Encoding encoding) {
  try {
    return BuildStringOrThrow(bytes, encoding);
  } catch (...) {
    RaiseCurrentException();
    return {};
  }
}

StringRef REALBuildUnicodeString(const void* bytes, std::int64_t length, abi::Encoding encoding) {
  if (bytes == nullptr || length < 1) return {};
  return BuildString({static_cast<const char*>(bytes), static_cast<std::size_t>(length)}, encoding);
}

StringRef REALBuildUnicodeStringUTF16(const char16_t* units, std::int64_t byte_length) {
  const StringRef string = BuildLabelled(units, byte_length, abi::kUtf16);
  if (!string) {
    ZQV_LOG("Out of memory in REALBuildUnicodeStringUTF16.");
    return {};
  }
  return ConvertToUtf8(string);
}

StringRef BuildDetectedString(std::string_view bytes) {
  return bytes.empty() ? StringRef() : BuildString(bytes, base::DetectEncoding(bytes));
}

StringRef BuildDetectedText(std::string_view bytes) {
  // Most texts are ASCII without a NUL. This finds out in one pass, without DetectEncoding.
  const std::size_t length = base::LengthOfAsciiText(bytes);
  if (length == bytes.size() || bytes[length] == '\0')
    return BuildString(bytes.substr(0, length), abi::kAscii);
  return BuildDetectedString(bytes.substr(0, bytes.find('\0')));
}

StringRef CString2RB_detect_encoding(const char* cstring) {
  return cstring == nullptr ? StringRef() : BuildDetectedString(cstring);
}

}  // namespace zqv::host
