// One header field as it was read.
#pragma once

#include <optional>
#include <string_view>

#include "mime/field_name.h"

namespace zqv::mime {

struct Field {
  std::string_view name;
  std::string_view value;          // folds are single spaces; ends at the first NUL
  std::optional<FieldName> known;  // what the name means, if anything

  // The field's bytes in the message, from its name to the end of its last line, without that
  // line's end; empty for a field that was not parsed from a message.
  std::string_view bytes;
};

// Reads "Name: value" by itself. The name is everything before the first colon. Spaces before the
// value are dropped, but never its last character, and line ends stay. Without a colon both are
// empty. Views of `text`, each up to its first NUL.
Field ParseField(std::string_view text);

}  // namespace zqv::mime
