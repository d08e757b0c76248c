// A date in the regular form, the most usual form of RFC 5322, is parsed here in one pass, without
// allocating:
//
//   Tue, 1 Jul 2003 10:52:37 +0200 (CEST)
//
// The name of the day and the comment may be missing. The comment has no parentheses or quotes in
// it. Any other text is passed to mimetic, which gives the same numbers for regular dates but
// allocates a dozen strings for each.
#include "email/date_text.h"

#include <mimetic/rfc822/datetime.h>

#include <cstddef>
#include <iterator>
#include <string>

#include "base/ascii.h"

namespace zqv::email {
namespace {

constexpr std::string_view kMonths[] = {"jan", "feb", "mar", "apr", "may", "jun",
                                        "jul", "aug", "sep", "oct", "nov", "dec"};
static_assert(std::size(kMonths) == 12);

using base::IsDigit;
using base::IsLetter;

// Parses a date from front to back. When an element is missing, is_good() becomes false and stays
// so; the results are then meaningless.
class PartReader {
 public:
  explicit PartReader(std::string_view text) : rest_(text) {}

  bool is_good() const { return is_good_; }

  // Parses a number of at most `most` digits and returns it. Fewer than `least` digits make the
  // date invalid.
  int Number(std::size_t least, std::size_t most) {
    int value = 0;
    std::size_t count = 0;
    for (; count < most && IsDigit(Front()); ++count) {
      value = value * 10 + (Front() - '0');
      rest_.remove_prefix(1);
    }
    is_good_ = is_good_ && count >= least;
    return value;
  }

  // Parses the English abbreviation of a month, ignoring case, and returns 1 to 12. Any other text
  // makes the date invalid.
  int Month() {
    int month = 1;
    for (const std::string_view name : kMonths) {
      if (base::EqualsIgnoringCase(rest_.substr(0, name.size()), name)) {
        rest_.remove_prefix(name.size());
        return month;
      }
      ++month;
    }
    is_good_ = false;
    return 0;
  }

  // Parses '+' or '-' and returns 1 or -1. Any other character makes the date invalid.
  int Sign() {
    const int sign = Front() == '-' ? -1 : 1;
    Take(sign < 0 ? '-' : '+');
    return sign;
  }

  // Skips the character `c`. Any other character makes the date invalid.
  void Take(char c) {
    is_good_ = is_good_ && Front() == c;
    if (is_good_) rest_.remove_prefix(1);
  }

  void SkipSpaces() {
    while (Front() == ' ') rest_.remove_prefix(1);
  }

  // If letters are next, skips them as the name of a day, a comma, which is then required, and
  // spaces.
  void SkipDayName() {
    if (!IsLetter(Front())) return;
    while (IsLetter(Front())) rest_.remove_prefix(1);
    Take(',');
    SkipSpaces();
  }

  // Skips spaces and at most one comment. The date is invalid if the text does not end there.
  void End() {
    SkipSpaces();
    if (Front() == '(') {
      const std::size_t end = rest_.find_first_of("()\"", 1);
      if (end != std::string_view::npos && rest_[end] == ')') rest_.remove_prefix(end + 1);
      SkipSpaces();
    }
    is_good_ = is_good_ && rest_.empty();
  }

 private:
  // The next character, which is not consumed; NUL, which is part of no regular date, at the end.
  char Front() const { return rest_.empty() ? '\0' : rest_.front(); }

  std::string_view rest_;
  bool is_good_ = true;
};

// Parses a date in the regular form, which the comment at the top of this file defines. Returns
// nullopt for any other text.
std::optional<DateFields> ReadRegular(std::string_view text) {
  DateFields date{};
  PartReader reader(text);
  reader.SkipSpaces();
  reader.SkipDayName();
  date.day = reader.Number(1, 2);
  reader.Take(' ');
  date.month = reader.Month();
  reader.Take(' ');
  date.year = reader.Number(4, 4);
  reader.Take(' ');
  date.hour = reader.Number(1, 2);
  reader.Take(':');
  date.minute = reader.Number(2, 2);
  reader.Take(':');
  date.second = reader.Number(2, 2);
  reader.Take(' ');
  date.zone = reader.Sign();
  date.zone *= reader.Number(4, 4);
  reader.End();
  if (!reader.is_good()) return std::nullopt;
  return date;
}

}  // namespace

DateFields ReadDateText(std::string_view text) {
  if (const std::optional<DateFields> date = ReadRegular(text)) return *date;
  const mimetic::DateTime date{std::string(text)};
  return {date.year(),   date.month().ordinal(), date.day(),           date.hour(),
          date.minute(), date.second(),          date.zone().ordinal()};
}

std::optional<std::string_view> ReceivedDateText(std::string_view value) {
  const std::size_t semicolon = value.find("; ");
  if (semicolon == std::string_view::npos) return std::nullopt;
  return value.substr(semicolon + 1);
}

}  // namespace zqv::email
