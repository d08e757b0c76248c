// Parses one field outside a header. Results equal those of mimetic's Field(text). Unlike the
// parser of a header (header_loader.cc) it does not unfold and does not trim the name:
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
