// The entry points for strings. In arguments, nil means the empty string. Building a string of
// length 0 returns nil.
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "standin/convert.h"
#include "standin/entry_points.h"
#include "standin/fatal.h"
#include "standin/host.h"

namespace zqv::standin {
namespace {

constexpr std::string_view kLengthDeclaration = "LenB( s as string ) as integer";
constexpr std::uint32_t kRecordMark = 0x5A515653;
constexpr std::size_t kTailSize = 4;

// A string argument. Nil is an empty text in ASCII, which is valid in all encodings.
struct Text {
  std::string_view bytes;
  abi::Encoding encoding = abi::kAscii;
};

Text Read(abi::REALstring raw, const char* user) {
  if (raw == nullptr) return {};
  const StringThing* const string = Host::Get(user).store().String(raw, user);
  return {string->bytes(), string->encoding};
}

// Makes a string with one lock. `user` is the name of the entry point.
abi::REALstring Build(const char* bytes, int length, abi::Encoding encoding, const char* user) {
  if (length < 0) Fatal(std::string(user) + ": the length is negative");
  if (length == 0) return nullptr;
  if (bytes == nullptr) Fatal(std::string(user) + ": the bytes are null");
  const std::string_view text(bytes, static_cast<std::size_t>(length));
  return ToHost(Host::Get(user).store().NewString(text, encoding, user));
}

// A global method of the host, which returns the length of a string in bytes.
abi::RBInteger LenB(abi::REALstring string) {
  const EntryScope scope;
  return static_cast<abi::RBInteger>(Read(string, "LenB").bytes.size());
}

// Returns UTF-32 in the other byte order, after a byte-order mark.
std::string SwapUtf32(std::string_view text) {
  static constexpr char kMark[] = {'\0', '\0', '\xFE', '\xFF'};
  std::string swapped = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
                            ? std::string(std::begin(kMark), std::end(kMark))
                            : std::string(std::rbegin(kMark), std::rend(kMark));
  for (std::size_t i = 0; i + 4 <= text.size(); i += 4) {
    swapped.append(text.substr(i, 4).rbegin(), text.substr(i, 4).rend());
  }
  return swapped;
}

// Fills a record with a copy of the text. Its field private1 points to the buffer, which must be
// freed.
void Lend(std::string_view text, abi::Encoding encoding, bool terminated,
          abi::REALstringData* data) {
  char* const buffer = static_cast<char*>(std::malloc(text.size() + kTailSize));
  if (buffer == nullptr) OutOfMemory("PluginGetStringData");
  if (!text.empty()) std::memcpy(buffer, text.data(), text.size());
  std::memset(buffer + text.size(), terminated ? 0 : 'A', kTailSize);
  *data = {buffer, text.size(), encoding, buffer, kRecordMark};
}

}  // namespace

namespace entry {

REALstring REALBuildString(const char* bytes, int length) {
  return Build(bytes, length, abi::kUnknownEncoding, "REALBuildString");
}

REALstring REALBuildStringWithEncoding(const char* bytes, int length, std::uint32_t encoding) {
  return Build(bytes, length, encoding, "REALBuildStringWithEncoding");
}

std::uint32_t REALGetStringEncoding(REALstring string) {
  if (string == nullptr) return abi::kUnknownEncoding;
  return Read(string, "REALGetStringEncoding").encoding;
}

void REALSetStringEncoding(REALstring string, std::uint32_t encoding) {
  static constexpr const char* kName = "REALSetStringEncoding";
  if (string != nullptr) Host::Get(kName).store().String(string, kName)->encoding = encoding;
}

REALstring REALConvertString(REALstring string, std::uint32_t encoding) {
  static constexpr const char* kName = "REALConvertString";
  if (string == nullptr) return nullptr;
  const Text text = Read(string, kName);
  const std::optional<std::string> converted = Convert(text.bytes, text.encoding, encoding);
  if (!converted) return nullptr;
  return ToHost(Host::Get(kName).store().NewString(*converted, encoding, kName));
}

void* StringGetCString(REALstring string) {
  static constexpr const char* kName = "StringGetCString";
  return string == nullptr ? nullptr : Host::Get(kName).store().String(string, kName)->data();
}

void* REALLoadGlobalMethod(const char* reserved, const char* declaration) {
  if (reserved != nullptr) Fatal("REALLoadGlobalMethod: the first argument must be null");
  if (declaration == nullptr) Fatal("REALLoadGlobalMethod: the declaration is null");
  return kLengthDeclaration == declaration ? reinterpret_cast<void*>(&LenB) : nullptr;
}

RBBoolean PluginGetStringData(REALstring string, std::uint32_t encoding, REALstringData* data) {
  static constexpr const char* kName = "PluginGetStringData";
  if (data == nullptr) Fatal("PluginGetStringData: the record is null");
  Host& host = Host::Get(kName);
  std::optional<std::string> text = std::string();
  if (string != nullptr) {
    const Text source = Read(string, kName);
    text = Convert(source.bytes, source.encoding, encoding);
  }
  if (!text) return 0;
  const StringDataFlavour flavour = host.capabilities().string_data;
  if (flavour == StringDataFlavour::kSwappedUtf32 && encoding == abi::kUtf32) {
    text = SwapUtf32(*text);
  }
  Lend(*text, encoding, flavour != StringDataFlavour::kUnterminated, data);
  host.ledger().Lent(data, kName);
  return 1;
}

void PluginDisposeStringData(REALstringData* data) {
  static constexpr const char* kName = "PluginDisposeStringData";
  if (data == nullptr) Fatal("PluginDisposeStringData: the record is null");
  Host::Get(kName).ledger().GivenBack(data, kName);
  std::free(const_cast<void*>(data->private1));
  *data = {};
}

PlatformString REALGetStringCFString(REALstring string, RBBoolean) {
  static constexpr const char* kName = "REALGetStringCFString";
  const Text text = Read(string, kName);
  return Host::Get(kName).capabilities().platform_string(text.bytes, text.encoding);
}

REALstring RuntimeAddString(REALstring left, REALstring right) {
  static constexpr const char* kName = "RuntimeAddString";
  const Text a = Read(left, kName);
  const Text b = Read(right, kName);
  if (a.bytes.empty() && b.bytes.empty()) return nullptr;
  Store& store = Host::Get(kName).store();
  if (a.bytes.empty()) return ToHost(store.NewString(b.bytes, b.encoding, kName));
  if (b.bytes.empty()) return ToHost(store.NewString(a.bytes, a.encoding, kName));
  const std::string joined = std::string(a.bytes) + std::string(b.bytes);
  if (a.encoding == b.encoding) return ToHost(store.NewString(joined, a.encoding, kName));
  const std::optional<std::string> first = Convert(a.bytes, a.encoding, abi::kUtf8);
  const std::optional<std::string> second = Convert(b.bytes, b.encoding, abi::kUtf8);
  // Bytes that cannot be converted are joined unchanged, without a label.
  if (first && second) return ToHost(store.NewString(*first + *second, abi::kUtf8, kName));
  return ToHost(store.NewString(joined, abi::kUnknownEncoding, kName));
}

RBInteger RuntimeStringCompare(REALstring left, REALstring right) {
  const Text a = Read(left, "RuntimeStringCompare");
  const Text b = Read(right, "RuntimeStringCompare");
  return CompareText(a.bytes, a.encoding, b.bytes, b.encoding);
}

}  // namespace entry
}  // namespace zqv::standin
