// Content transfer encodings (RFC 2045, section 6): which are known, and taking one off a body.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "text/transfer_codes.h"

namespace zqv::email {

// A body's bytes without transfer encoding: the very bytes when nothing had to be decoded, so it
// must not outlive them.
class DecodedBody {
 public:
  explicit DecodedBody(std::string_view borrowed) : borrowed_(borrowed) {}
  explicit DecodedBody(std::string&&) = delete;  // gone before it can be read
  explicit DecodedBody(text::DecodedBytes&& owned) : owned_(std::move(owned)) {}

  std::string_view bytes() const { return owned_.has_value() ? owned_->view() : borrowed_; }

 private:
  std::optional<text::DecodedBytes> owned_;
  std::string_view borrowed_;
};

// True for an absent mechanism and for base64, quoted-printable, binary, 7bit and 8bit, ignoring
// case and nothing else: "7bit " with a trailing blank is unknown.
bool is_known_mechanism(std::string_view mechanism);

// `body` [borrowed] with the transfer encoding removed; unchanged for the identity encodings and
// for mechanisms that are not known.
DecodedBody DecodeData(std::string_view mechanism, std::string_view body);

}  // namespace zqv::email
