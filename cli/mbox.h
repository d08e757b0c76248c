// Splits a mailbox in mbox format: several messages in one file, each after a separator line.
//
// A separator is a line "From sender date" at the start of the file or after an empty line (RFC
// 4155). It must begin with "From " and contain the name of a month and a time of day, so that a
// paragraph that begins with "From" is not a separator. The separator and one empty line before it
// do not belong to any message. Writers quote other lines that begin with "From " by a ">" before
// them; the splitter removes one ">" from each line that begins with one or more ">" and "From ".
//
// A Content-Length field in a message's header is obeyed if the message then ends just before a
// separator or the end of the file: separators inside that length belong to the message, and if
// there are any, its lines are not unquoted (format mboxcl2). Values above 64 MB are ignored, and
// after one wrong value all others in the file.
//
// Messages and lines are cut to kMostMessageBytes + 1 bytes, so that their size shows that they
// were too long.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace zqv::cli {

// The greatest length of a host string.
inline constexpr std::size_t kMostMessageBytes = 0x7FFFFFFF;

// Whether a line, without its line end, is a separator.
bool IsMboxSeparator(std::string_view line);

class MboxSplitter {
 public:
  // Receives each message. Returns false to stop the splitter.
  using VisitMessage = std::function<bool(std::string&& message)>;

  explicit MboxSplitter(VisitMessage visit) : visit_(std::move(visit)) {}

  // Splits the next bytes of the file, which may come in blocks of any size. False once the
  // callback returned false, or when the file does not begin with a separator.
  bool Add(std::string_view bytes);
  // Must be called after the last bytes.
  bool Finish();

 private:
  // The state of the current message's Content-Length: kUnknown: there is none, or it is ignored;
  // kCounting: lines are being counted; kReached: all of its lines have been read.
  enum class Length { kUnknown, kCounting, kReached };

  bool AddLine(std::string_view line);
  bool AddLineBySeparators(std::string_view line);
  // Adds a line by Content-Length. False when the line shows that the length is wrong.
  bool AddLineByLength(std::string_view line);
  // Ignores Content-Length from now on, and adds the counted lines again, by separators.
  bool RejectLength();
  void AppendCounted();
  void NoteHeaderLine(std::string_view text);
  bool EndMessage();

  const VisitMessage visit_;
  std::string unfinished_line_;  // an incomplete line
  std::string message_;          // the current message so far
  bool is_inside_ = false;       // a message has begun
  bool is_after_empty_ = true;   // the line before is empty, or there is none
  // Size of the message's last line if that is empty, with its line end; else 0.
  std::size_t last_line_size_ = 0;
  bool goes_on_ = true;

  bool trusts_lengths_ = true;
  bool is_in_header_ = false;
  Length length_ = Length::kUnknown;
  std::size_t stated_length_ = 0;  // the Content-Length; 0: none
  std::string counted_;            // the body so far, while its length is counted
  bool counted_has_separator_ = false;
  bool is_after_empty_counted_ = false;
};

}  // namespace zqv::cli
