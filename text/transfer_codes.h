// Base64 and quoted-printable (RFC 2045, sections 6.7 and 6.8) as the MIME library decodes them, to
// the byte and on every input, at several times its speed.
//
// QUIRK: neither refuses anything, and both have ways of their own with what is no regular code.
// Equal to the MIME library's results. Test: Base64.IsDecoded, QuotedPrintable.IsDecoded.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "base/large_pages.h"

namespace zqv::text {

// What a decoder made: room for the most that a text can give, and how much of it was needed. The
// room is not filled with zeros first. Its bytes stay where they are when it is moved.
class DecodedBytes {
 public:
  DecodedBytes() = default;  // no room, no bytes
  explicit DecodedBytes(std::size_t room) : bytes_(new char[room]) {
    base::PreferLargePages(bytes_.get(), room);
  }

  char* data() { return bytes_.get(); }
  void EndAt(const char* end) { size_ = static_cast<std::size_t>(end - bytes_.get()); }
  std::string_view view() const { return {bytes_.get(), size_}; }

 private:
  std::unique_ptr<char[]> bytes_;
  std::size_t size_ = 0;
};

// Characters that are neither of the alphabet nor "=" are skipped. Of each four others "=" in the
// third or fourth place ends what the four give; in the first or second it counts as a value. Fewer
// than four at the end give the whole bytes that they hold.
DecodedBytes DecodeBase64(std::string_view text);

// The same into memory of the caller, which must have room for Base64Room(text.size()) bytes; those
// behind the result are overwritten, too. Returns the end of the result.
char* DecodeBase64(std::string_view text, char* out);
inline constexpr std::size_t kBase64Slack = 32;
constexpr std::size_t Base64Room(std::size_t length) { return length / 4 * 3 + kBase64Slack; }

// Blanks before a CR or LF go, and that one character with them; CRLF, LFCR, CR and LF are one LF
// each; other control characters go. "=" with blanks and a line end is a soft break; "=" that
// begins no code stays, with what does not fit. What the end leaves undecided, blanks or the start
// of a code, becomes "=", with a tab if its second character is one.
DecodedBytes DecodeQuotedPrintable(std::string_view text);

}  // namespace zqv::text
