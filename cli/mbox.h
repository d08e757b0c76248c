// Mailboxes in one file: messages one after the other, each behind a separator line.
//
// The separator is a line "From sender date" at the start of the file or after an empty line
// (RFC 4155): "From ", and further on the name of a month and a time of day, so that a paragraph
// that begins with "From" is none. The separator and one empty line before it belong to no message;
// of each line that begins with one ">" or more and "From ", one ">" is taken away.
//
// A message whose header has a Content-Length that ends just before a separator or the end of the
// file is taken at that length: lines in it that look like separators are its own, and nothing is
// taken away from them (mboxcl2). Once such a length was wrong, no other is believed.
//
// What is behind the first kMostMessageBytes of a message or of a line is left out, one byte
// excepted, so that its size tells.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace zqv::cli {

// What a host string holds.
inline constexpr std::size_t kMostMessageBytes = 0x7FFFFFFF;

// `line` without its line end.
bool IsMboxSeparator(std::string_view line);

class MboxSplitter {
 public:
  // Gets each message; false stops the splitter.
  using Give = std::function<bool(std::string&& message)>;

  explicit MboxSplitter(Give give) : give_(std::move(give)) {}

  // The next bytes of the file, in pieces of any size. False once `give` wanted no more, and for a
  // file that does not begin with a separator.
  bool Add(std::string_view bytes);
  // Behind the last bytes.
  bool Finish();

 private:
  // What a Content-Length says of the message at hand.
  enum class Length { kUnknown, kCounting, kReached };

  bool AddLine(std::string_view line);
  bool AddLineByLook(std::string_view line);
  // False when the line shows that the length is wrong.
  bool AddLineByLength(std::string_view line);
  // Takes the lines that were counted for what they look like.
  bool ForgetLength();
  void AppendCounted();
  void NoteHeaderLine(std::string_view text);
  bool GiveMessage();

  const Give give_;
  std::string held_;                // the line that has not ended yet
  std::string message_;             // what is known of the current one
  bool is_inside_ = false;          // a message has begun
  bool is_after_empty_ = true;      // the line before is empty, or there is none
  std::size_t last_line_size_ = 0;  // of the message's last line, with its end
  bool goes_on_ = true;

  bool believes_lengths_ = true;
  bool is_in_header_ = false;
  Length length_ = Length::kUnknown;
  std::size_t said_length_ = 0;  // by the header; 0: nothing
  std::string counted_;          // the body so far
  bool has_separator_in_it_ = false;
  bool is_after_empty_counted_ = false;
};

}  // namespace zqv::cli
