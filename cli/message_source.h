// Where the parts of a message and their header fields lie in its bytes, which the library's
// objects do not tell.
//
// The parts are those that the library gives, in the same order, and after them the parts that it
// loses: it parses no further than a boundary of an outer multipart inside an inner one. The last
// line counts as a whole one when it has no line end, which the library takes for text.
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
  // Parses `bytes`, which must outlive this; lines are counted behind a byte-order mark. Throws
  // std::runtime_error for a message beyond the limits, its lost parts included.
  explicit MessageSource(std::string_view bytes);
  MessageSource(const MessageSource&) = delete;
  MessageSource& operator=(const MessageSource&) = delete;

  const mime::Message& message() const { return message_; }
  const std::vector<mime::Part>& parts() const { return message_.parts(); }
  // The message's text up to its last byte, without a line end that was added.
  std::string_view written() const { return written_; }
  // So many of the first parts are the library's.
  std::size_t known() const { return message_.parts_before_outer(); }

  // The part's number, as PartTree has it: "2.1", "0" for the message itself.
  std::string NumberOf(mime::PartIndex part) const;
  // The part with this number; kNoPart when there is none.
  mime::PartIndex FindPart(std::string_view number) const;

  const LineNumbers& lines() const { return lines_; }
  // The first line of the part's header.
  std::size_t LineOf(const mime::Part& part) const { return lines_.At(part.header.data()); }
  std::size_t LineOf(const mime::Field& field) const { return lines_.At(field.bytes.data()); }

  // The line in front of which a multipart that is not closed ends; kNoLine: the message ends it.
  std::size_t LineAfter(const mime::Part& multipart) const;

 private:
  std::string completed_;  // the bytes, when their last line has no line end
  std::string_view bytes_;
  std::string_view written_;
  LineNumbers lines_;
  mime::Message message_;
  std::vector<mime::PartIndex> ordinals_;  // of each part among its siblings, from 1
};

// A message up to the first empty line, that included.
std::string_view HeaderOf(std::string_view message);

// A field's value as it stands in the message, with its line ends.
std::string_view ValueBytes(const mime::Field& field);

// By part: the first line of its header, or the line that ended the header, that is a boundary of a
// multipart around the part (RFC 2046, section 5.1.2, ends the header there; the library does not).
// A null view when there is none.
std::vector<std::string_view> BoundariesInHeaders(const MessageSource& source);

}  // namespace zqv::cli
