// One header field, "Name: value" (RFC 5322, section 2.2).
#pragma once

#include <optional>
#include <string_view>

#include "mime/field_name.h"

namespace zqv::mime {

// All members are borrowed from the text that was parsed, except the value of a folded field: it is
// borrowed from the Message object (message.h).
struct Field {
  std::string_view name;
  std::string_view value;          // each fold is one space; ends before the first NUL
  std::optional<FieldName> known;  // nullopt for a name that FieldName does not list

  // The field as it stands in the message, from its name to the end of its last line, without the
  // last line break. Empty for the result of ParseField.
  std::string_view bytes;
};

// Parses a text as one field. The name is everything before the first colon. Spaces before the
// value are skipped, but a value of spaces only keeps its last space. Line ends are not removed.
// Name and value end before their first NUL. Both are empty when `text` has no colon. `known` is
// not set.
Field ParseField(std::string_view text);

}  // namespace zqv::mime
