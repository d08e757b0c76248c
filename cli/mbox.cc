#include "cli/mbox.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "base/ascii.h"

namespace zqv::cli {
namespace {

constexpr std::string_view kFrom = "From ";

bool IsMonth(std::string_view word) {
  static constexpr std::array<std::string_view, 12> kMonths = {
      "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  return std::find(kMonths.begin(), kMonths.end(), word) != kMonths.end();
}

// Whether a word is a time of day, such as "9:05" or "21:49:08".
bool IsTime(std::string_view word) {
  const std::size_t colon = word.find(':');
  return (colon == 1 || colon == 2) && word.size() >= colon + 3 && base::IsDigit(word[0]) &&
         base::IsDigit(word[colon - 1]) && base::IsDigit(word[colon + 1]) &&
         base::IsDigit(word[colon + 2]);
}

std::string_view WithoutEnd(std::string_view line) {
  if (!line.empty() && line.back() == '\n') line.remove_suffix(1);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

void AppendWithinLimit(std::string_view bytes, std::string* text) {
  *text += bytes.substr(0, kMostMessageBytes + 1 - std::min(text->size(), kMostMessageBytes + 1));
}

bool IsQuotedFrom(std::string_view line) {
  const std::size_t first = line.find_first_not_of('>');
  return first != 0 && first != std::string_view::npos &&
         line.compare(first, kFrom.size(), kFrom) == 0;
}

}  // namespace

bool IsMboxSeparator(std::string_view line) {
  if (line.compare(0, kFrom.size(), kFrom) != 0) return false;
  bool has_month = false;
  bool has_time = false;
  while (!line.empty()) {
    const std::string_view word = line.substr(0, line.find(' '));
    has_month = has_month || IsMonth(word);
    has_time = has_time || IsTime(word);
    line.remove_prefix(std::min(line.size(), word.size() + 1));
  }
  return has_month && has_time;
}

bool MboxSplitter::Add(std::string_view bytes) {
  while (goes_on_ && !bytes.empty()) {
    const std::size_t end = bytes.find('\n');
    if (end == std::string_view::npos) {
      AppendWithinLimit(bytes, &unfinished_line_);
      break;
    }
    const std::string_view line = bytes.substr(0, end + 1);
    if (unfinished_line_.empty()) {
      goes_on_ = AddLine(line);
    } else {
      AppendWithinLimit(line, &unfinished_line_);
      goes_on_ = AddLine(unfinished_line_);
      unfinished_line_.clear();
    }
    bytes.remove_prefix(line.size());
  }
  return goes_on_;
}

bool MboxSplitter::Finish() {
  if (goes_on_ && !unfinished_line_.empty()) goes_on_ = AddLine(unfinished_line_);
  unfinished_line_.clear();
  if (goes_on_ && length_ == Length::kCounting) goes_on_ = RejectLength();
  if (goes_on_ && is_inside_) goes_on_ = EndMessage();
  return goes_on_;
}

bool MboxSplitter::AddLine(std::string_view line) {
  if (length_ == Length::kUnknown) return AddLineBySeparators(line);
  if (AddLineByLength(line)) return goes_on_;
  return RejectLength() && AddLineBySeparators(line);
}

bool MboxSplitter::AddLineByLength(std::string_view line) {
  const std::string_view text = WithoutEnd(line);
  if (length_ == Length::kReached) {
    if (text.empty() && !is_after_empty_counted_) {  // the empty line before a separator
      is_after_empty_counted_ = true;
      return true;
    }
    if (!IsMboxSeparator(text)) return false;
    goes_on_ = EndMessage();
    is_in_header_ = true;
    return true;
  }
  counted_has_separator_ = counted_has_separator_ || (is_after_empty_ && IsMboxSeparator(text));
  is_after_empty_ = text.empty();
  if (counted_.size() + line.size() > stated_length_) return false;
  counted_ += line;
  if (counted_.size() == stated_length_) length_ = Length::kReached;
  return true;
}

bool MboxSplitter::RejectLength() {
  trusts_lengths_ = false;
  length_ = Length::kUnknown;
  stated_length_ = 0;
  std::string counted = std::exchange(counted_, {});
  if (std::exchange(is_after_empty_counted_, false)) counted += '\n';
  is_after_empty_ = true;  // the line before was the empty line at the end of the header
  counted_has_separator_ = false;
  bool goes_on = true;
  for (std::string_view rest = counted; goes_on && !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n') + 1);
    const std::string_view whole = line.empty() ? rest : line;
    goes_on = AddLineBySeparators(whole);
    rest.remove_prefix(whole.size());
  }
  return goes_on;
}

// If the body contains unquoted separators, its writer did not quote lines with ">", so nothing is
// unquoted.
void MboxSplitter::AppendCounted() {
  if (std::exchange(counted_has_separator_, false)) {
    message_ += std::exchange(counted_, {});
    return;
  }
  const std::string counted = std::exchange(counted_, {});
  for (std::string_view rest = counted; !rest.empty();) {
    const std::string_view line = rest.substr(0, std::min(rest.find('\n'), rest.size() - 1) + 1);
    message_ += IsQuotedFrom(line) ? line.substr(1) : line;
    rest.remove_prefix(line.size());
  }
}

void MboxSplitter::NoteHeaderLine(std::string_view text) {
  constexpr std::string_view kName = "content-length:";
  // A greater length is ignored, because so much of the body would be held in memory.
  constexpr std::size_t kMostTrusted = std::size_t{64} << 20U;
  if (text.empty()) {
    is_in_header_ = false;
    const bool is_good = trusts_lengths_ && stated_length_ > 0 && stated_length_ <= kMostTrusted;
    if (is_good) length_ = Length::kCounting;
  } else if (base::EqualsIgnoringCase(text.substr(0, kName.size()), kName)) {
    text.remove_prefix(kName.size());
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    std::from_chars(text.data(), text.data() + text.size(), stated_length_);
  }
}

bool MboxSplitter::AddLineBySeparators(std::string_view line) {
  const std::string_view text = WithoutEnd(line);
  const bool is_separator = is_after_empty_ && IsMboxSeparator(text);
  const bool is_first_separator = is_separator && !is_inside_;
  is_after_empty_ = text.empty();
  if (is_separator) is_in_header_ = true;
  if (is_first_separator) {
    is_inside_ = true;
    return true;
  }
  if (is_separator) return EndMessage();
  if (!is_inside_) return false;  // not a mailbox
  if (IsQuotedFrom(text)) line.remove_prefix(1);
  AppendWithinLimit(line, &message_);
  last_line_size_ = is_after_empty_ ? line.size() : 0;
  if (is_in_header_) NoteHeaderLine(text);
  return true;
}

// The empty line before a separator, or before the end of the file, is not part of the message.
bool MboxSplitter::EndMessage() {
  if (length_ == Length::kReached) {
    AppendCounted();
  } else {
    message_.resize(message_.size() - std::min(message_.size(), last_line_size_));
  }
  length_ = Length::kUnknown;
  stated_length_ = 0;
  is_after_empty_counted_ = false;
  last_line_size_ = 0;
  return visit_(std::exchange(message_, {}));
}

}  // namespace zqv::cli
