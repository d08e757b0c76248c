// A field that stands by itself, outside a header: "Name: value". The results equal those of the
// MIME library's Field(text), which has no folds and keeps blanks that a header's reader drops.
//
//   "A : b"   name "A ", value "b"
//   "A:  "    name "A",  value " "
#include "mime/field.h"

#include <cstddef>

namespace zqv::mime {

Field ParseField(std::string_view text) {
  const auto up_to_nul = [](std::string_view piece) { return piece.substr(0, piece.find('\0')); };
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos) return {};
  std::size_t value = colon + 1;
  while (value + 1 < text.size() && text[value] == ' ') ++value;
  Field field;
  field.name = up_to_nul(text.substr(0, colon));
  field.value = up_to_nul(text.substr(value));
  return field;
}

}  // namespace zqv::mime
