// The value is split at dots, and each of the first three pieces is converted as atoi() does:
//
//   "1.0"          "1.0"
//   "1.0 (x 2.1)"  "1.0.1"   pieces "1", "0 (x 2" and "1)"
#include "mime/mime_version.h"

#include <cstdint>

#include "mime/pieces.h"

namespace zqv::mime {
namespace {

bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Returns, on every platform, what atoi() of glibc returns where long has 64 bits. The number is
// leading white space, an optional sign and digits; later characters are ignored. It is clamped to
// the range of a 64-bit integer and then truncated to 32 bits: 2^63 and above give -1, -2^63 and
// below give 0.
std::int32_t ReadNumber(std::string_view text) {
  constexpr std::uint64_t kTooLarge = std::uint64_t{1} << 63;
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
  const bool is_negative = !text.empty() && text.front() == '-';
  if (is_negative || (!text.empty() && text.front() == '+')) text.remove_prefix(1);
  std::uint64_t number = 0;
  for (; !text.empty() && IsDigit(text.front()) && number < kTooLarge; text.remove_prefix(1)) {
    const auto digit = static_cast<std::uint64_t>(text.front() - '0');
    number = number > (kTooLarge - digit) / 10 ? kTooLarge : number * 10 + digit;
  }
  if (number >= kTooLarge) return is_negative ? 0 : -1;
  const auto low = static_cast<std::uint32_t>(number);
  return static_cast<std::int32_t>(is_negative ? 0 - low : low);
}

}  // namespace

std::string MimeVersionText(std::string_view value) {
  const auto take_number = [&value] { return ReadNumber(TakeUpTo('.', value)); };
  std::string text = std::to_string(take_number());
  text.append(".").append(std::to_string(take_number()));
  if (const std::int32_t third = take_number(); third != 0) {
    text.append(".").append(std::to_string(third));
  }
  return text;
}

}  // namespace zqv::mime
