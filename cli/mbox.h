// Mailboxes in one file: messages one after the other, each behind a separator line.
//
// The separator is a line "From sender date" at the start of the file or after an empty line
// (RFC 4155): "From ", and further on the name of a month and a time of day, so that a paragraph
// that begins with "From" is none. The separator and one empty line before it belong to no message;
// of each line that begins with one ">" or more and "From ", one ">" is taken away.
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
  bool AddLine(std::string_view line);
  bool GiveMessage();

  const Give give_;
  std::string held_;                // the line that has not ended yet
  std::string message_;             // what is known of the current one
  bool is_inside_ = false;          // a message has begun
  bool is_after_empty_ = true;      // the line before is empty, or there is none
  std::size_t last_line_size_ = 0;  // of the message's last line, with its end
  bool goes_on_ = true;
};

}  // namespace zqv::cli
