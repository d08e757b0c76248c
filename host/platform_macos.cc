// The macOS port: paths of files, and host strings as CoreFoundation strings (CFString). Paths are
// converted through CFURL and are in Unicode normalisation form D, as file systems of macOS store
// names.
//
// Builds on a Mac use Apple's headers. A cross build has none; the declarations needed stand below.
#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

#include "abi/encodings.h"
#include "base/ascii.h"
#include "base/log.h"
#include "host/entry_points.h"
#include "host/platform.h"
#include "host/ref.h"
#include "host/string_bytes.h"

#if __has_include(<CoreFoundation/CoreFoundation.h>)
#include <CoreFoundation/CoreFoundation.h>
#else
extern "C" {
using CFTypeRef = const void*;
using CFAllocatorRef = const struct CFAllocator*;
using CFStringRef = const struct CFString*;
using CFMutableStringRef = struct CFString*;
using CFURLRef = const struct CFURL*;
using CFIndex = long;
using CFStringEncoding = unsigned int;
using Boolean = unsigned char;
using UInt8 = unsigned char;
using UniChar = unsigned short;

void CFRelease(CFTypeRef object);
CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex count,
                                    CFStringEncoding, Boolean is_external);
CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar* units, CFIndex count);
CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef, CFIndex max_length, CFStringRef);
void CFStringNormalize(CFMutableStringRef, CFIndex form);
CFIndex CFStringGetLength(CFStringRef);
Boolean CFStringGetCString(CFStringRef, char* buffer, CFIndex size, CFStringEncoding);
CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef, CFStringRef path, CFIndex style,
                                       Boolean is_directory);
CFURLRef CFURLCreateWithString(CFAllocatorRef, CFStringRef url, CFURLRef base);
CFStringRef CFURLCopyFileSystemPath(CFURLRef, CFIndex style);
}
#define CFSTR(text) (reinterpret_cast<CFStringRef>(__builtin___CFStringMakeConstantString(text)))
constexpr CFIndex kCFURLPOSIXPathStyle = 0;
constexpr CFIndex kCFStringNormalizationFormD = 0;
#endif

// Declared here because the header that declares it, of Foundation, is Objective-C.
extern "C" void NSLog(CFStringRef format, ...);

namespace zqv::host {
namespace {

// Host versions from which FolderItem.NativePath exists, and from which REALGetStringCFString has
// its newer form.
constexpr double kHasNativePath = 2013.0;
constexpr double kHasNewerStringCall = 2012.0;

struct ReleaseObject {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};
// Owns one reference to a CoreFoundation object, or null.
template <class Object>
using PlatformRef = std::unique_ptr<std::remove_pointer_t<Object>, ReleaseObject>;
using StringHandle = PlatformRef<CFStringRef>;

CFStringRef CreateWithBytes(std::string_view bytes, abi::Encoding encoding, bool is_external) {
  return CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                                 static_cast<CFIndex>(bytes.size()), encoding,
                                 static_cast<Boolean>(is_external));
}

// Creates a CFString from the bytes of a host string, without the host's own conversion.
CFStringRef CreateFromOwnBytes(abi::REALstring string, abi::Encoding encoding) {
  const rbData data(string);
  const std::string_view bytes = data.bytes();
  switch (encoding) {
    case abi::kUtf16:
      return CFStringCreateWithCharacters(nullptr, reinterpret_cast<const UniChar*>(bytes.data()),
                                          static_cast<CFIndex>(bytes.size() / sizeof(UniChar)));
    case abi::kMacRoman:
    case abi::kIsoLatin1:
    case abi::kWindowsLatin1:
    case abi::kUtf8:
    case abi::kUtf32:
      break;
    default:
      ZQV_LOG("other encoding %u", encoding);
  }
  return CreateWithBytes(bytes, encoding, false);
}

// A string property of a host object; null when it cannot be read.
StringHandle PropertyText(abi::REALobject object, const char* property) {
  abi::REALstring value = nullptr;
  if (entry::REALGetPropValueString(object, property, &value) == 0) return nullptr;
  const auto text = StringRef::Adopt(value);
  return StringHandle(static_cast<CFStringRef>(RBString2CFString(text.get())));
}

// Converts to UTF-8. Empty when the text cannot be converted or contains a NUL. The buffer is first
// filled with 0x01: its last other byte is then the terminating NUL, and an earlier NUL belongs to
// the text.
std::string TextOf(CFStringRef text) {
  constexpr char kUnused = '\x01';
  const CFIndex size = 6 * CFStringGetLength(text) + 16;
  std::string bytes(static_cast<std::size_t>(size), kUnused);
  if (CFStringGetCString(text, bytes.data(), size, abi::kUtf8) == 0) return {};
  const std::size_t end = bytes.find_last_not_of(kUnused);
  return bytes.find('\0') == end ? bytes.substr(0, end) : std::string();
}

// Whether a URL names a file on this machine (RFC 8089): no host name, or "localhost", ignoring
// case (RFC 3986, section 6.2.2.1). CFURL would return a path for other URLs, too.
bool IsFileUrl(CFStringRef url) {
  const std::string text = TextOf(url);
  constexpr std::string_view kStarts[] = {"file:///", "file://localhost/"};
  return std::any_of(std::begin(kStarts), std::end(kStarts), [&](std::string_view start) {
    return base::EqualsIgnoringCase(std::string_view(text).substr(0, start.size()), start);
  });
}

// The URL of a FolderItem, from its native path or, in older hosts, its URL; null when it has none.
PlatformRef<CFURLRef> FileUrl(abi::REALobject file) {
  const bool native = HostVersion() >= kHasNativePath;
  const StringHandle text = PropertyText(file, native ? "NativePath" : "URLPath");
  if (base::IsLogging())
    NSLog(native ? CFSTR("native path: %@\n") : CFSTR("url path: %@\n"), text.get());
  if (text == nullptr || (!native && !IsFileUrl(text.get()))) return nullptr;
  return PlatformRef<CFURLRef>(
      native ? CFURLCreateWithFileSystemPath(nullptr, text.get(), kCFURLPOSIXPathStyle, 0)
             : CFURLCreateWithString(nullptr, text.get(), nullptr));
}

// Converts a path to UTF-8 in normalisation form D; empty when it cannot be converted.
std::string FileSystemBytes(CFStringRef path) {
  const PlatformRef<CFMutableStringRef> normalised(CFStringCreateMutableCopy(nullptr, 0, path));
  if (normalised == nullptr) return {};
  CFStringNormalize(normalised.get(), kCFStringNormalizationFormD);
  return TextOf(normalised.get());
}

}  // namespace

std::string FilePath(abi::REALobject file) {
  const PlatformRef<CFURLRef> url = FileUrl(file);
  if (url == nullptr) return {};
  const StringHandle path(CFURLCopyFileSystemPath(url.get(), kCFURLPOSIXPathStyle));
  return path != nullptr ? FileSystemBytes(path.get()) : std::string();
}

abi::PlatformString RBString2CFString(abi::REALstring string) {
  if (string == nullptr) return nullptr;
  const abi::Encoding encoding = entry::REALGetStringEncoding(string);
  if (encoding == abi::kUnknownEncoding) {
    const rbData data(string);
    return CreateWithBytes(data.bytes(), abi::kMacRoman, true);
  }
  // From version 2012 on the entry point has another form with the same name. The two are separate
  // objects, because a host's resolver may answer differently when it is asked twice.
  static EntryPoint<abi::PlatformString(abi::REALstring, abi::RBBoolean)> g_newer(
      "REALGetStringCFString");
  if (HostVersion() >= kHasNewerStringCall) {
    if (const abi::PlatformString text = g_newer(string, 0); text != nullptr) return text;
  }
  if (const abi::PlatformString text = entry::REALGetStringCFString(string, 0); text != nullptr)
    return text;
  return CreateFromOwnBytes(string, encoding);
}

}  // namespace zqv::host
