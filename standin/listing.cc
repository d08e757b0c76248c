// Lists all registered classes and members as text, one member a line, for comparison with a stored
// listing.
#include <array>
#include <cstdio>
#include <string>

#include "standin/host.h"

namespace zqv::standin {
namespace {

std::string Hex(std::uint32_t number) {
  std::array<char, 16> text{};
  static_cast<void>(std::snprintf(text.data(), text.size(), "0x%x", number));
  return text.data();
}

std::string Attributes(const abi::REALattribute* attributes, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    text += std::string(", attribute ") + attributes[i].name + "=\"" + attributes[i].value + "\"";
  }
  return text;
}

std::string Line(const char* kind, const Property& property) {
  const abi::REALproperty& row = *property.row;
  return std::string("  ") + kind + " " + row.name + " as " + row.type + ", flags " +
         Hex(property.flags) + ", " + (property.is_standard ? "record " : "getter ") +
         std::to_string(row.param) + (row.setter == nullptr ? "" : ", setter") +
         (row.group == nullptr ? std::string() : std::string(", group ") + row.group) +
         Attributes(row.attributes, row.attributeCount) + "\n";
}

std::string Line(const char* kind, const Method& method) {
  return std::string("  ") + kind + " \"" + method.row->declaration + "\", flags " +
         Hex(method.flags) + Attributes(method.row->attributes, method.row->attributeCount) + "\n";
}

}  // namespace

std::string Host::ListClasses() const {
  std::string text;
  for (const ClassInfo* info : classes_.registered()) {
    const abi::REALclassDefinition& d = *info->definition;
    text += "class " + info->name + (info->super ? " of " + info->super->name : "") + ", version " +
            std::to_string(d.version) + ", data size " + std::to_string(info->record_size) +
            ", flags " + Hex(info->flags) + (d.constructor == nullptr ? "" : ", constructor") +
            (d.destructor == nullptr ? "" : ", destructor") +
            Attributes(d.attributes, d.attributeCount) + "\n";
    for (const Property& property : info->properties) text += Line("property", property);
    for (const Method& method : info->methods) text += Line("method", method);
    for (const Property& property : info->shared_properties) {
      text += Line("shared property", property);
    }
    for (const Method& method : info->shared_methods) text += Line("shared method", method);
  }
  return text;
}

}  // namespace zqv::standin
