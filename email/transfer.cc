// Two transfer encodings have to be decoded, base64 and quoted-printable (text/transfer_codes.h).
// With any other transfer encoding the body is used as it is.
#include "email/transfer.h"

#include <algorithm>
#include <iterator>

#include "base/ascii.h"
#include "text/transfer_codes.h"

namespace zqv::email {
namespace {

using base::EqualsIgnoringCase;

constexpr std::string_view kBase64 = "base64";
constexpr std::string_view kQuotedPrintable = "quoted-printable";
constexpr std::string_view kKnownMechanisms[] = {"",       kBase64, kQuotedPrintable,
                                                 "binary", "7bit",  "8bit"};

}  // namespace

bool is_known_mechanism(std::string_view mechanism) {
  return std::any_of(std::begin(kKnownMechanisms), std::end(kKnownMechanisms),
                     [&](std::string_view known) { return EqualsIgnoringCase(known, mechanism); });
}

DecodedBody DecodeData(std::string_view mechanism, std::string_view body) {
  if (EqualsIgnoringCase(mechanism, kBase64)) return DecodedBody(text::DecodeBase64(body));
  if (EqualsIgnoringCase(mechanism, kQuotedPrintable)) {
    return DecodedBody(text::DecodeQuotedPrintable(body));
  }
  return DecodedBody(body);
}

}  // namespace zqv::email
