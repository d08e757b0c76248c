// Decoders for base64 and quoted-printable (RFC 2045, sections 6.8 and 6.7).
//
// QUIRK: no input is an error. Malformed input gives the same bytes as mimetic, the MIME library
// (THIRD_PARTY.md), gives. Test: Base64.IsDecoded, QuotedPrintable.IsDecoded.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "base/large_pages.h"

namespace zqv::text {

// The output buffer of a decoder. The capacity is chosen for the longest possible output; the size
// is set after decoding. The buffer is not zeroed. Moving the object does not move its bytes.
class DecodedBytes {
 public:
  DecodedBytes() = default;  // empty, without a buffer
  // Allocates `room` bytes. Throws std::bad_alloc.
  explicit DecodedBytes(std::size_t room) : bytes_(new char[room]) {
    base::PreferLargePages(bytes_.get(), room);
  }

  char* data() { return bytes_.get(); }
  // Sets the size: the output ends before `end`, a pointer into the buffer.
  void EndAt(const char* end) { size_ = static_cast<std::size_t>(end - bytes_.get()); }
  // The output. [borrowed from this object]
  std::string_view view() const { return {bytes_.get(), size_}; }

 private:
  std::unique_ptr<char[]> bytes_;
  std::size_t size_ = 0;
};

// Decodes base64. Characters outside the alphabet, other than "=", are skipped. Each group of four
// remaining characters gives three bytes. "=" as the third or fourth character of a group is
// padding: the group gives one or two bytes, and decoding goes on with the next group. "=" as the
// first or second character counts as the 6-bit value 36. A shorter group at the end gives the
// bytes that are complete in it.
DecodedBytes DecodeBase64(std::string_view text);

// The same, into a buffer of the caller with room for Base64Room(text.size()) bytes. Also
// overwrites bytes of the buffer after the result. Returns the end of the result.
char* DecodeBase64(std::string_view text, char* out);
inline constexpr std::size_t kBase64Slack = 32;
constexpr std::size_t Base64Room(std::size_t length) { return length / 4 * 3 + kBase64Slack; }

// Decodes quoted-printable; line ends in the result are LF.
//
//   CRLF, LFCR, CR, LF         one LF
//   blanks before CR or LF     removed together with that CR or LF (so " \r\n" gives one LF, from
//                              the "\n", and " \n" gives nothing)
//   others below 0x20          removed, but for the tab
//   "=" and two digits         the byte; digits of either case
//   "=", blanks, line end      removed (a soft line break)
//   "=" and anything else      kept, with the blanks or the one or two characters after it
//   at the end of the text     blanks, and "=" followed by nothing but blanks and at most one CR or
//                              LF, become "=", plus a tab when the second character is a tab
DecodedBytes DecodeQuotedPrintable(std::string_view text);

}  // namespace zqv::text
