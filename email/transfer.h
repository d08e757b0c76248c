// Content transfer encodings (RFC 2045, section 6): recognises them and decodes a body.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "text/transfer_codes.h"

namespace zqv::email {

// A body without its transfer encoding. Owns the bytes when they were decoded. Otherwise borrows
// the bytes of the message, which must then outlive this object.
class DecodedBody {
 public:
  explicit DecodedBody(std::string_view borrowed) : borrowed_(borrowed) {}
  explicit DecodedBody(std::string&&) = delete;  // a view of a temporary string would dangle
  explicit DecodedBody(text::DecodedBytes&& owned) : owned_(std::move(owned)) {}

  std::string_view bytes() const { return owned_.has_value() ? owned_->view() : borrowed_; }

 private:
  std::optional<text::DecodedBytes> owned_;
  std::string_view borrowed_;
};

// Whether `mechanism`, the value of Content-Transfer-Encoding, is empty, base64, quoted-printable,
// binary, 7bit or 8bit, ignoring case. The value is not trimmed: "7bit " is unknown.
bool is_known_mechanism(std::string_view mechanism);

// Decodes a body. `mechanism` is the value of Content-Transfer-Encoding: for base64 and
// quoted-printable, ignoring case, the result is decoded; otherwise it is `body` itself. [owned if
// decoded; otherwise borrowed from `body`]
DecodedBody DecodeData(std::string_view mechanism, std::string_view body);

}  // namespace zqv::email
