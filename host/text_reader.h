// A host string read as text: ASCII, UTF-8 or UTF-32, whatever encoding the host holds it in.
//
// A view is made on demand and is either the string's own bytes (nothing is copied while the text
// is ASCII or UTF-8), data obtained from the host, or a copy that the reader owns. A length of -1
// means that a view is not made yet. Failures leave a view empty; nothing is raised.
#pragma once

#include <cstdint>
#include <forward_list>
#include <string>
#include <string_view>
#include <vector>

#include "abi/encodings.h"
#include "abi/records.h"
#include "host/ref.h"

namespace zqv::host {

// A view of the text: `length` units at `data`, or not made yet when `length` is -1.
template <class Unit>
struct TextView {
  const Unit* data;
  std::int64_t length = -1;
};

// A text obtained from the host in some encoding, given back when this goes. Not movable: the host
// may know the record by its address.
class HostTextData {
 public:
  HostTextData() = default;
  HostTextData(const HostTextData&) = delete;
  HostTextData& operator=(const HostTextData&) = delete;
  ~HostTextData();

  // Asks the host for `string` in `encoding`; false when it cannot be had. At most once.
  bool Get(abi::REALstring string, abi::Encoding encoding);

  const void* data() const { return record_.data; }
  std::size_t byte_length() const { return record_.length; }

 private:
  abi::REALstringData record_{};
  bool obtained_ = false;
};

class rbText {
 public:
  // Reads `string` [borrowed], which may be nil: a text without characters.
  explicit rbText(abi::REALstring string);
  rbText(const rbText&) = delete;
  rbText& operator=(const rbText&) = delete;
  ~rbText();

  // Finds out whether the text is pure ASCII; then every byte view is the string's own bytes.
  bool CheckASCII();

  // Make the view, replacing one that was made before. UTF-8 ends in a NUL after the last byte,
  // UTF-32 in a zero unit after the last.
  void ConvertUTF8();
  void ConvertUTF32();
  void ConvertUTF32_viaUTF16();

  // The views, made when they are not yet [borrowed: as long as this reader lives].
  std::string_view Utf8();
  std::u32string_view Utf32();

  abi::Encoding encoding() const { return encoding_; }
  // True after a host read failed, and after a text of unknown encoding was read as Mac Roman.
  bool flagged() const { return flag_; }

 private:
  enum class State : std::uint8_t {
    kAscii = 1,        // pure ASCII
    kDirectBytes = 2,  // single-byte or UTF-8 text: its bytes serve until a check says otherwise
    kNeedsHost = 3,    // read through the host's conversion
  };

  abi::REALstring string() const { return replaced_ ? replaced_.get() : string_; }
  void Reset();
  void ReadOwnBytes();
  void ReadUnknownEncoding();
  bool GetHostText(abi::Encoding encoding, const HostTextData** text);
  void WidenAscii();
  void DecodeUtf8();
  void ReadHostUtf32();
  void TerminateUtf32();
  void SwapUtf32();
  void SkipByteOrderMarks();
  char32_t* NewUtf32Buffer(std::size_t units);

  std::uint32_t head_guard_;
  abi::REALstring string_;  // borrowed for the call that the reader serves ...
  StringRef hold_;          // ... and kept alive besides
  StringRef replaced_;      // the copy read instead, for a text of unknown encoding
  TextView<char> ascii_;
  TextView<char> utf8_;
  TextView<char16_t> utf16_;
  TextView<char32_t> utf32_;
  std::forward_list<std::vector<char>> byte_buffers_;
  std::forward_list<std::vector<char32_t>> unit_buffers_;
  std::forward_list<HostTextData> host_texts_;
  abi::Encoding encoding_ = abi::kAscii;
  State state_ = State::kAscii;
  bool flag_ = false;
  std::uint32_t tail_guard_;
};

// The text of `string` [borrowed; nil is empty] as UTF-8, up to its first NUL.
std::string ReadUtf8(abi::REALstring string);

}  // namespace zqv::host
