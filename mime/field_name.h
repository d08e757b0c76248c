// The names of the header fields that the library interprets (RFC 5322, section 3.6; RFC 2045,
// section 3; RFC 2183).
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zqv::mime {

enum class FieldName : std::uint8_t {
  kBcc,
  kCc,
  kContentDescription,
  kContentDisposition,
  kContentId,
  kContentTransferEncoding,
  kContentType,
  kDate,
  kFrom,
  kMessageId,
  kMimeVersion,
  kReceived,
  kReplyTo,
  kSender,
  kSubject,
  kTo,
};
inline constexpr std::size_t kFieldNames = static_cast<std::size_t>(FieldName::kTo) + 1;

// Looks up a field's name, ignoring case (RFC 5322, section 1.2.2). Returns nullopt for a name that
// is not listed above.
std::optional<FieldName> RecogniseFieldName(std::string_view name);

}  // namespace zqv::mime
