// Reads a host string as UTF-8 or UTF-32, whatever its encoding is.
//
// Each view is made when it is first requested. It consists of the string's own bytes if these are
// ASCII or UTF-8, and otherwise of data from the host or of a copy that the reader owns. On failure
// a view is empty; no host exception is raised.
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

// A view of the text: `length` units at `data`. A length of -1 says that the view was not made yet.
template <class Unit>
struct TextView {
  const Unit* data;
  std::int64_t length = -1;
};

// A string's text in a requested encoding, as the host provides it. The destructor gives it back to
// the host. Not movable: the host must get the record back at the address at which it filled it.
class HostTextData {
 public:
  HostTextData() = default;
  HostTextData(const HostTextData&) = delete;
  HostTextData& operator=(const HostTextData&) = delete;
  ~HostTextData();

  // Requests `string` [borrowed] in `encoding`. Returns false on failure. Call it at most once.
  bool Get(abi::REALstring string, abi::Encoding encoding);

  // The text; data() may be null. [borrowed from this object]
  const void* data() const { return record_.data; }
  std::size_t byte_length() const { return record_.length; }

 private:
  abi::REALstringData record_{};
  bool obtained_ = false;
};

// Reads one string and keeps it alive as long as it exists.
class rbText {
 public:
  // `string` may be nil: it is an empty text. [borrowed; a lock is added]
  explicit rbText(abi::REALstring string);
  rbText(const rbText&) = delete;
  rbText& operator=(const rbText&) = delete;
  ~rbText();

  // Whether the text is pure ASCII. Always false for a text in UTF-16 or UTF-32, and for one that
  // an earlier call found not to be ASCII.
  bool CheckASCII();

  // Make a view, replacing an earlier one. A zero byte follows the UTF-8 text, and a zero code
  // point the UTF-32 text. The third converts through UTF-16 in any case.
  void ConvertUTF8();
  void ConvertUTF32();
  void ConvertUTF32_viaUTF16();

  // The text, converted at the first call. [borrowed from this object]
  std::string_view Utf8();
  std::u32string_view Utf32();

  abi::Encoding encoding() const { return encoding_; }
  // True after a request to the host has failed, and for a text of unknown encoding that was read
  // as Mac Roman.
  bool flagged() const { return flag_; }

 private:
  enum class State : std::uint8_t {
    kAscii = 1,        // known to be pure ASCII: its bytes are used directly
    kDirectBytes = 2,  // a single-byte encoding or UTF-8, not checked for ASCII yet
    kNeedsHost = 3,    // known not to be ASCII, or UTF-16 or UTF-32
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

  std::uint32_t head_guard_;  // this and tail_guard_ have a known value, to detect overwriting
  abi::REALstring string_;    // the string to read; nil when `replaced_` is read instead
  StringRef hold_;            // a lock on string_; nil when the host cannot add locks
  StringRef replaced_;        // for a text of unknown encoding: a copy labelled Mac Roman
  TextView<char> ascii_;
  TextView<char> utf8_;
  TextView<char32_t> utf32_;
  // Memory that the views point into. Lists, so that adding a buffer moves no other.
  std::forward_list<std::vector<char>> byte_buffers_;
  std::forward_list<std::vector<char32_t>> unit_buffers_;
  std::forward_list<HostTextData> host_texts_;
  abi::Encoding encoding_ = abi::kAscii;
  State state_ = State::kAscii;
  bool flag_ = false;
  std::uint32_t tail_guard_;
};

// A copy of the text of `string` [borrowed; nil is empty] as UTF-8, up to its first NUL.
std::string ReadUtf8(abi::REALstring string);

}  // namespace zqv::host
