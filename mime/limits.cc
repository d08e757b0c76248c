#include "mime/limits.h"

#include <algorithm>
#include <optional>
#include <stdexcept>

#include "host/stack.h"

namespace zqv::mime {
namespace {

// Whether the field's value is taken apart into a list.
bool IsListField(std::optional<FieldName> name) {
  switch (name.value_or(FieldName::kDate)) {
    case FieldName::kBcc:
    case FieldName::kCc:
    case FieldName::kContentDisposition:
    case FieldName::kContentType:
    case FieldName::kFrom:
    case FieldName::kReplyTo:
    case FieldName::kSender:
    case FieldName::kTo:
      return true;
    default:
      return false;
  }
}

// At least as many as the library makes of the value.
std::size_t CountEntries(std::string_view value) {
  const auto separates = [](char c) { return c == ',' || c == ';'; };
  return 1 + static_cast<std::size_t>(std::count_if(value.begin(), value.end(), separates));
}

std::size_t MeasureLevels(std::size_t levels) {
  const std::optional<std::size_t> left = host::StackLeft();
  if (!left.has_value()) return kLevelsUnknown;
  if (*left <= kStackReserve) return levels;
  return levels + (*left - kStackReserve) / kStackPerLevel;
}

}  // namespace

void MessageLimits::AdmitEntity(std::size_t levels) {
  if (++entities_ > kMostEntities) throw std::runtime_error("the message has too many parts");
  if (levels < kLevelsUnmeasured) return;
  if (most_levels_ == 0) most_levels_ = MeasureLevels(levels);
  if (levels > most_levels_) throw std::runtime_error("the message is nested too deeply");
}

void MessageLimits::AdmitField(std::optional<FieldName> name, std::string_view value) {
  if (++fields_ > kMostFields) throw std::runtime_error("the message has too many fields");
  if (!IsListField(name)) return;
  entries_ += CountEntries(value);
  if (entries_ > kMostEntries) {
    throw std::runtime_error("the message has too many addresses or parameters");
  }
}

void AdmitText(std::string_view text) {
  if (CountEntries(text) > kMostEntries) {
    throw std::runtime_error("the text has too many addresses");
  }
}

}  // namespace zqv::mime
