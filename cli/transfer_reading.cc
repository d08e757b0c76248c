#include "cli/transfer_reading.h"

#include <algorithm>
#include <string>

#include "base/ascii.h"
#include "cli/line_numbers.h"
#include "cli/text.h"
#include "text/transfer_codes.h"

namespace zqv::cli {
namespace {

// The letters and digits outside of comments, in lower case.
std::string Bare(std::string_view value) {
  std::string bare;
  std::size_t depth = 0;
  for (const char c : value) {
    if (c == '(') {
      ++depth;
    } else if (c == ')') {
      depth -= depth > 0 ? 1 : 0;
    } else if (depth == 0 && base::IsAlphanumeric(c)) {
      bare += base::LowerAscii(c);
    }
  }
  return bare;
}

struct Row {
  std::string_view start;
  Transfer transfer;
};
constexpr Row kRows[] = {
    {"base64", Transfer::kBase64},   {"quotedprint", Transfer::kQuotedPrintable},
    {"7bit", Transfer::kIdentity},   {"8bit", Transfer::kIdentity},
    {"binary", Transfer::kIdentity}, {"xuue", Transfer::kUuencode},
    {"uue", Transfer::kUuencode},
};

bool IsOfBase64(char c) { return base::IsAlphanumeric(c) || c == '+' || c == '/' || c == '='; }

// Cuts base64 after padding that is followed by a line of other text, such as the footer of a
// mailing list. Padding that is followed by more base64 does not end it, since some encoders work
// in pieces.
std::string_view WithoutFooter(std::string_view body) {
  std::size_t at = 0;
  while ((at = body.find('=', at)) != std::string_view::npos) {
    const std::size_t next = body.find_first_not_of("= \t\r\n", at);
    if (next == std::string_view::npos) return body;
    const std::size_t end = std::min(body.find_first_of("\r\n", next), body.size());
    const std::string_view line = Trim(body.substr(next, end - next));
    if (!std::all_of(line.begin(), line.end(), IsOfBase64)) return body.substr(0, next);
    // Continue with the padding at the end of that line.
    at = next + line.find_last_not_of('=') + 1;
  }
  return body;
}

// Decodes a line without its line end. Returns whether the line end is part of the text. Blanks at
// the end were added in transport (RFC 2045, section 6.7, rule 3).
bool DecodeQuotedLine(std::string_view line, char** out) {
  while (!line.empty() && base::IsBlank(line.back())) line.remove_suffix(1);
  const bool is_broken = !line.empty() && line.back() == '=';  // a soft line break (rule 5)
  if (is_broken) line.remove_suffix(1);
  for (std::size_t i = 0; i < line.size(); ++i) {
    const bool has_digits = line[i] == '=' && i + 2 < line.size();
    const int high = has_digits ? base::HexadecimalValue(line[i + 1]) : -1;
    const int low = has_digits ? base::HexadecimalValue(line[i + 2]) : -1;
    const bool is_code = high >= 0 && low >= 0;
    *(*out)++ = is_code ? static_cast<char>(high * 16 + low) : line[i];
    if (is_code) i += 2;
  }
  return !is_broken;
}

// Decodes quoted-printable. Unlike the library it keeps the line ends of the message. An invalid
// escape stays as it is.
text::DecodedBytes DecodeQuotedPrintable(std::string_view body) {
  text::DecodedBytes decoded(body.size());
  char* out = decoded.data();
  ForEachLine(body, [&](std::string_view line, std::string_view line_end) {
    if (DecodeQuotedLine(line, &out)) out = std::copy(line_end.begin(), line_end.end(), out);
  });
  decoded.EndAt(out);
  return decoded;
}

}  // namespace

Transfer ReadTransfer(std::string_view value) {
  const std::string bare = Bare(value.substr(0, value.find(';')));
  if (bare.empty()) return Transfer::kIdentity;
  for (const Row& row : kRows) {
    if (bare.compare(0, row.start.size(), row.start) == 0) return row.transfer;
  }
  return Transfer::kUnknown;
}

email::DecodedBody DecodeBody(Transfer transfer, std::string_view body) {
  if (transfer == Transfer::kBase64) return email::DecodeData("base64", WithoutFooter(body));
  if (transfer == Transfer::kQuotedPrintable) {
    return email::DecodedBody(DecodeQuotedPrintable(body));
  }
  return email::DecodedBody(body);
}

}  // namespace zqv::cli
