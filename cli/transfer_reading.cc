#include "cli/transfer_reading.h"

#include <string>

#include "base/ascii.h"
#include "cli/mail_text.h"

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
    } else if (depth == 0 && (base::IsLetter(c) || base::IsDigit(c))) {
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
  if (transfer == Transfer::kBase64) return email::DecodeData("base64", body);
  if (transfer == Transfer::kQuotedPrintable) return email::DecodeData("quoted-printable", body);
  return email::DecodedBody(body);
}

}  // namespace zqv::cli
