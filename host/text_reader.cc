// How a string is read depends on its encoding, which the host tells:
//
//   ASCII, UTF-8        its own bytes
//   other single-byte   its own bytes if they are ASCII, otherwise converted by the host
//   UTF-16, UTF-32      converted by the host
//   unknown             its own bytes if they are ASCII, otherwise a copy labelled Mac Roman
//
// UTF-32 is made here from ASCII, UTF-8 and UTF-16, and by the host from all others.
#include "host/text_reader.h"

#include <algorithm>
#include <atomic>
#include <new>

#include "base/log.h"
#include "base/unicode.h"
#include "host/string_bytes.h"
#include "host/strings.h"

namespace zqv::host {
namespace {

constexpr std::uint32_t kGuard = 0x5A515654;  // "ZQVT"

// The data of empty views, with zeros at the end as in all views.
constexpr char kNoBytes[4] = {};
constexpr char32_t kNoUtf32[2] = {};

constexpr char32_t kByteOrderMark = 0xFEFF;
constexpr char32_t kSwappedMark16 = 0xFFFE;
constexpr char32_t kSwappedMark32 = 0xFFFE0000;

bool IsWide(abi::Encoding encoding) {
  switch (encoding) {
    case abi::kUtf16:
    case abi::kUtf16BigEndian:
    case abi::kUtf16LittleEndian:
    case abi::kUtf32:
    case abi::kUtf32BigEndian:
    case abi::kUtf32LittleEndian:
      return true;
    default:
      return false;
  }
}

char32_t SwapBytes(char32_t c) {
  return (c >> 24) | ((c >> 8) & 0xFF00) | ((c << 8) & 0xFF0000) | (c << 24);
}

void LogIllegal(const base::Conversion& conversion) {
  if (!conversion.legal) ZQV_LOG("Illegal UTF-8 sequence! %zu", conversion.stopped);
}

bool IsAligned(const void* data, std::size_t alignment) {
  return reinterpret_cast<std::uintptr_t>(data) % alignment == 0;
}

}  // namespace

HostTextData::~HostTextData() {
  if (!obtained_) return;
  try {
    entry::PluginDisposeStringData(&record_);
  } catch (...) {
    // A destructor must not throw, and the host gives no way to repeat the call.
  }
}

bool HostTextData::Get(abi::REALstring string, abi::Encoding encoding) {
  obtained_ = entry::PluginGetStringData(string, encoding, &record_) != 0;
  return obtained_;
}

rbText::rbText(abi::REALstring string)
    : head_guard_(kGuard), string_(string), hold_(StringRef::Share(string)), tail_guard_(kGuard) {
  Reset();
  if (string_ == nullptr) return;
  if (entry::REALGetStringEncoding.Find() == nullptr) {
    encoding_ = abi::kMacRoman;
    state_ = State::kDirectBytes;
    return;
  }
  encoding_ = entry::REALGetStringEncoding(string_);
  if (IsWide(encoding_)) {
    state_ = State::kNeedsHost;
    return;
  }
  state_ = State::kDirectBytes;
  if (encoding_ == abi::kUtf8 || encoding_ == abi::kAscii) {
    ReadOwnBytes();
  } else if (encoding_ == abi::kUnknownEncoding && !CheckASCII()) {
    ReadUnknownEncoding();
  }
}

rbText::~rbText() {
  if (head_guard_ != kGuard) ZQV_LOG("Check1 in rbText invalid %u", head_guard_);
  if (tail_guard_ != kGuard) ZQV_LOG("Check2 in rbText invalid %u", tail_guard_);
}

// Sets all views to "not made yet" or, for a nil string, to the empty text.
void rbText::Reset() {
  encoding_ = abi::kAscii;
  state_ = State::kAscii;
  const std::int64_t length = string_ == nullptr ? 0 : -1;
  ascii_ = {kNoBytes, length};
  utf8_ = {kNoBytes, length};
  utf32_ = {kNoUtf32, length};
}

// Makes the UTF-8 view, and for a text labelled ASCII also the ASCII view, of the string's own
// bytes.
void rbText::ReadOwnBytes() {
  const std::string_view bytes = rbData(string()).bytes();
  const TextView<char> view{bytes.empty() ? kNoBytes : bytes.data(),
                            static_cast<std::int64_t>(bytes.size())};
  utf8_ = view;
  if (encoding_ != abi::kUtf8) ascii_ = view;
}

bool rbText::CheckASCII() {
  if (state_ == State::kNeedsHost) return false;
  if (string() == nullptr) return true;
  const std::string_view bytes = rbData(string()).bytes();
  if (!base::IsAscii(bytes)) {
    state_ = State::kNeedsHost;
    return false;
  }
  state_ = State::kAscii;
  ascii_ = {bytes.empty() ? kNoBytes : bytes.data(), static_cast<std::int64_t>(bytes.size())};
  utf8_ = ascii_;
  return true;
}

// Replaces a string of unknown encoding that is not ASCII by a copy labelled Mac Roman.
void rbText::ReadUnknownEncoding() {
  const rbData data(string_);
  if (data.length() == 0) {
    string_ = nullptr;
    Reset();
    return;
  }
  flag_ = true;
  if (data.length() < 0) {
    ZQV_LOG("Out of Memory.");
    return;
  }
  replaced_ = BuildString(data.bytes(), abi::kMacRoman);
  string_ = nullptr;
  hold_ = StringRef();
  encoding_ = replaced_ ? entry::REALGetStringEncoding(replaced_.get()) : abi::kMacRoman;
  state_ = State::kNeedsHost;
  // QUIRK: logged once in a process, even when the copy was made. Part of the interface's contract;
  // changing it is a major version. Test: TextReader.LogsOnceThatTheRebuildFailed.
  static std::atomic<bool> g_logged{false};
  if (!g_logged.exchange(true)) ZQV_LOG("REALBuildUnicodeString failed");
}

// Requests the text in `encoding` from the host; it lives as long as the reader. Returns false, and
// sets the flag, on failure.
bool rbText::GetHostText(abi::Encoding encoding, const HostTextData** text) {
  host_texts_.emplace_front();
  HostTextData& fresh = host_texts_.front();
  if (fresh.Get(string(), encoding)) {
    *text = &fresh;
    return true;
  }
  ZQV_LOG("REALGetStringData failed.");
  flag_ = true;
  return false;
}

void rbText::ConvertUTF8() {
  utf8_ = {kNoBytes, 0};
  if (string() != nullptr && !CheckASCII()) {
    const HostTextData* text = nullptr;
    if (GetHostText(abi::kUtf8, &text) && text->data() != nullptr) {
      utf8_ = {static_cast<const char*>(text->data()),
               static_cast<std::int64_t>(text->byte_length())};
    }
  }
  if (utf8_.length < 1 || utf8_.data[utf8_.length] == '\0') return;
  ZQV_LOG("String is not zero terminated. Fixed.");
  const auto length = static_cast<std::size_t>(utf8_.length);
  try {
    std::vector<char>& copy = byte_buffers_.emplace_front(length + 4);
    std::copy_n(utf8_.data, length, copy.data());
    utf8_.data = copy.data();
  } catch (const std::bad_alloc&) {
    ZQV_LOG("Out of memory");
    utf8_ = {kNoBytes, 0};
  }
}

// Allocates a zeroed buffer that the reader owns. When memory runs out, returns null and makes the
// UTF-32 view empty.
char32_t* rbText::NewUtf32Buffer(std::size_t units) {
  try {
    return unit_buffers_.emplace_front(units).data();
  } catch (const std::bad_alloc&) {
    ZQV_LOG("Out of memory");
    utf32_ = {kNoUtf32, 0};
    return nullptr;
  }
}

// Makes the UTF-32 view from the ASCII view.
void rbText::WidenAscii() {
  char32_t* units = NewUtf32Buffer(static_cast<std::size_t>(ascii_.length) + 1);
  if (units == nullptr) return;
  std::transform(ascii_.data, ascii_.data + ascii_.length, units,
                 [](char c) { return static_cast<char32_t>(static_cast<unsigned char>(c)); });
  utf32_ = {units, ascii_.length};
}

// Makes the UTF-32 view from the UTF-8 view, up to the first ill-formed sequence.
void rbText::DecodeUtf8() {
  ZQV_LOG("Try UTF8 to UTF32 conversion...");
  if (utf8_.length < 0) ConvertUTF8();
  if (utf8_.length == 0) return;
  const auto length = static_cast<std::size_t>(utf8_.length);
  char32_t* units = NewUtf32Buffer(length + 4);
  if (units == nullptr) return;
  const base::Conversion conversion = base::Utf8ToUtf32({utf8_.data, length}, units);
  LogIllegal(conversion);
  utf32_ = {units, static_cast<std::int64_t>(conversion.written)};
}

// Requests the UTF-32 view from the host. After a failure, now or earlier, converts through UTF-16.
void rbText::ReadHostUtf32() {
  const HostTextData* text = nullptr;
  if (flag_ || !GetHostText(abi::kUtf32, &text)) return ConvertUTF32_viaUTF16();
  if (text->data() == nullptr) return;
  utf32_.data = static_cast<const char32_t*>(text->data());
  utf32_.length = static_cast<std::int64_t>(text->byte_length() / sizeof(char32_t));
}

void rbText::ConvertUTF32_viaUTF16() {
  utf32_ = {kNoUtf32, 0};
  if (string() == nullptr) return;
  ZQV_LOG("Try UTF8 to UTF16 conversion...");
  const HostTextData* text = nullptr;
  if (!GetHostText(abi::kUtf16, &text) || text->data() == nullptr) return;
  ZQV_LOG("Try UTF16 to UTF32 conversion...");
  const std::size_t count = text->byte_length() / sizeof(char16_t);
  char32_t* units = NewUtf32Buffer(count + 4);
  if (units == nullptr) return;
  const base::Conversion conversion =
      base::Utf16ToUtf32(static_cast<const char16_t*>(text->data()), count, units);
  LogIllegal(conversion);
  utf32_ = {units, static_cast<std::int64_t>(conversion.written)};
}

void rbText::ConvertUTF32() {
  utf32_ = {kNoUtf32, 0};
  if (string() == nullptr) return;
  if (CheckASCII()) {
    WidenAscii();
  } else if (encoding_ == abi::kUtf8 || encoding_ == abi::kAscii) {
    DecodeUtf8();
  } else if (encoding_ == abi::kUtf16) {
    ConvertUTF32_viaUTF16();
  } else {
    ReadHostUtf32();
  }
  TerminateUtf32();
  SwapUtf32();
  SkipByteOrderMarks();
}

// Copies the UTF-32 view when the host's data is not aligned or lacks the zero after it.
void rbText::TerminateUtf32() {
  if (utf32_.length < 1) return;
  const auto count = static_cast<std::size_t>(utf32_.length);
  const bool aligned = IsAligned(utf32_.data, alignof(char32_t));
  if (aligned && utf32_.data[count] == 0) return;
  if (aligned) ZQV_LOG("String is not zero terminated. Fixed.");
  const char* source = reinterpret_cast<const char*>(utf32_.data);
  char32_t* units = NewUtf32Buffer(count + 1);
  if (units == nullptr) return;
  std::copy_n(source, count * sizeof(char32_t), reinterpret_cast<char*>(units));
  utf32_.data = units;
}

// Swaps the byte order of the UTF-32 view when it begins with a byte-order mark in the other order.
void rbText::SwapUtf32() {
  if (utf32_.length < 1 || utf32_.data[0] != kSwappedMark32) return;
  ZQV_LOG("String is Little Endian. Swap.");
  const char32_t* source = utf32_.data;
  const std::int64_t length = utf32_.length;
  char32_t* units = NewUtf32Buffer(static_cast<std::size_t>(length) + 1);
  if (units == nullptr) return;
  std::transform(source, source + length, units, SwapBytes);
  utf32_ = {units, length};
}

// Removes U+FEFF and then U+FFFE from the start of the UTF-32 view.
void rbText::SkipByteOrderMarks() {
  const auto skip = [this](char32_t mark) {
    if (utf32_.length < 1 || utf32_.data[0] != mark) return;
    ++utf32_.data;
    --utf32_.length;
  };
  skip(kByteOrderMark);
  skip(kSwappedMark16);
}

std::string_view rbText::Utf8() {
  if (utf8_.length < 0) ConvertUTF8();
  return {utf8_.data, static_cast<std::size_t>(utf8_.length)};
}

std::u32string_view rbText::Utf32() {
  if (utf32_.length < 0) ConvertUTF32();
  return {utf32_.data, static_cast<std::size_t>(utf32_.length)};
}

std::string ReadUtf8(abi::REALstring string) {
  rbText reader(string);
  const std::string_view text = reader.Utf8();
  return std::string(text.substr(0, text.find('\0')));
}

}  // namespace zqv::host
