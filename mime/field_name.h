// The names of the header fields that the library interprets (RFC 5322, section 3.6; RFC 2045,
// section 3; RFC 2183).
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
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

// A field name in lower case and its enumerator.
struct FieldNameRow {
  std::string_view text;
  FieldName name;
};

// One row for each enumerator, sorted by the length of the text.
inline constexpr FieldNameRow kFieldNameRows[] = {
    // clang-format off
    {"cc",                        FieldName::kCc},
    {"to",                        FieldName::kTo},
    {"bcc",                       FieldName::kBcc},
    {"date",                      FieldName::kDate},
    {"from",                      FieldName::kFrom},
    {"sender",                    FieldName::kSender},
    {"subject",                   FieldName::kSubject},
    {"received",                  FieldName::kReceived},
    {"reply-to",                  FieldName::kReplyTo},
    {"content-id",                FieldName::kContentId},
    {"message-id",                FieldName::kMessageId},
    {"content-type",              FieldName::kContentType},
    {"mime-version",              FieldName::kMimeVersion},
    {"content-description",       FieldName::kContentDescription},
    {"content-disposition",       FieldName::kContentDisposition},
    {"content-transfer-encoding", FieldName::kContentTransferEncoding},
    // clang-format on
};
inline constexpr std::size_t kFieldNames = std::size(kFieldNameRows);
static_assert(kFieldNames == static_cast<std::size_t>(FieldName::kTo) + 1,
              "each name has one row, and kTo is the last name");

// Looks up a field name, ignoring case (RFC 5322, section 1.2.2). Returns nullopt for a name that
// kFieldNameRows does not list.
std::optional<FieldName> RecogniseFieldName(std::string_view name);

}  // namespace zqv::mime
