// The positions of a message's parts and fields in its bytes, which the library's objects do not
// have.
//
// The first parts are the library's, in the same order. After them come the parts that the library
// loses: it stops parsing at a boundary of an outer multipart inside an inner one, while this
// parser continues. If the last line has no line end, one is added, so that a boundary in that line
// is recognised; the library takes it for text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/line_numbers.h"
#include "mime/message.h"

namespace zqv::cli {

class MessageSource {
 public:
  // Parses `bytes`, which must outlive this object. Line numbers count from after a byte-order
  // mark. Throws std::runtime_error when the message, including its lost parts, exceeds a limit.
  explicit MessageSource(std::string_view bytes);
  MessageSource(const MessageSource&) = delete;
  MessageSource& operator=(const MessageSource&) = delete;

  const mime::Message& message() const { return message_; }
  const std::vector<mime::Part>& parts() const { return message_.parts(); }
  // The text that was parsed, without an added line end.
  std::string_view written() const { return written_; }
  // The number of the library's parts, which come first.
  std::size_t known() const { return message_.parts_before_outer(); }

  // The number of a part as in PartTree: "2.1", or "0" for the message itself.
  std::string NumberOf(mime::PartIndex part) const;
  // Finds a part by its number. kNoPart when there is none.
  mime::PartIndex FindPart(std::string_view number) const;

  const LineNumbers& lines() const { return lines_; }
  // The number of the first line of the part's header.
  std::size_t LineOf(const mime::Part& part) const { return lines_.At(part.header.data()); }
  std::size_t LineOf(const mime::Field& field) const { return lines_.At(field.bytes.data()); }

  // The number of the line at which an unterminated multipart ends; kNoLine when it ends with the
  // message.
  std::size_t LineAfter(const mime::Part& multipart) const;

 private:
  // Copy of the bytes with a line end; empty when none was added.
  std::string completed_;
  std::string_view bytes_;
  std::string_view written_;
  LineNumbers lines_;
  mime::Message message_;
  std::vector<mime::PartIndex> ordinals_;  // by part: its position among its siblings, from 1
};

// Returns the start of a message up to and including its first empty line.
std::string_view HeaderOf(std::string_view message);

// Returns a field's value as it stands in the message, with its line ends.
std::string_view ValueBytes(const mime::Field& field);

// For each part: the first line of its header, including the line that ended the header, that is a
// boundary of a multipart around the part; a null view when there is none. RFC 2046, section 5.1.2,
// ends the header there; the library does not.
std::vector<std::string_view> BoundariesInHeaders(const MessageSource& source);

}  // namespace zqv::cli
