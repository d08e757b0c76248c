// One header field, "Name: value" (RFC 5322, section 2.2).
#pragma once

#include <optional>
#include <string_view>

#include "mime/field_name.h"

namespace zqv::mime {

// All texts are borrowed from the text that was parsed; a folded value, from the parsed message.
struct Field {
  std::string_view name;
  std::string_view value;          // each fold is replaced by one space; ends before the first NUL
  std::optional<FieldName> known;  // nullopt for a name that FieldName does not list

  // The field as it stands in the message, from its name to the end of its last line, without the
  // last line break. Empty for the result of ParseField.
  std::string_view bytes;
};

// Parses a text as one field. The name is everything before the first colon. Spaces before the
// value are skipped, but a value of spaces keeps the last one. Line ends stay. Name and value end
// before their first NUL. Both are empty when there is no colon. `known` is not set.
Field ParseField(std::string_view text);

}  // namespace zqv::mime
