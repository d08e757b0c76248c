#include "mime/parameters.h"

#include "base/ascii.h"
#include "mime/pieces.h"

namespace zqv::mime {
namespace {

// One pair of outer quotes; no backslash counts.
std::string_view RemoveQuotes(std::string_view text) {
  const bool is_quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  return is_quoted ? text.substr(1, text.size() - 2) : text;
}

// QUIRK: without an '=' both texts are empty. Test: Parameters.WithoutEqualsSignIsEmpty.
Parameter ReadParameter(std::string_view text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos) return {};
  return {TrimBlanks(text.substr(0, equals)), RemoveQuotes(TrimBlanks(text.substr(equals + 1)))};
}

}  // namespace

std::string_view Parameters::Find(std::string_view name) const {
  for (std::string_view rest = list_; !rest.empty();) {
    const Parameter parameter = ReadParameter(TakeUpTo(';', rest));
    if (base::EqualsIgnoringCase(parameter.name, name)) return parameter.value;
  }
  return {};
}

std::size_t Parameters::Count() const {
  std::size_t count = 0;
  for (std::string_view rest = list_; !rest.empty(); ++count) TakeUpTo(';', rest);
  return count;
}

void Parameters::AppendText(std::string& text) const {
  for (std::string_view rest = list_; !rest.empty();) {
    const Parameter parameter = ReadParameter(TakeUpTo(';', rest));
    text.append("; ").append(parameter.name).append("=\"").append(parameter.value).append("\"");
  }
}

ContentType::ContentType(std::string_view value) {
  std::string_view types = TakeUpTo(';', value);
  type_ = TakeUpTo('/', types);
  subtype_ = TakeUpTo('/', types);
  parameters_ = Parameters(value);
}

std::string ContentType::Text() const {
  std::string text;
  text.append(type_).append("/").append(subtype_);
  parameters_.AppendText(text);
  return text;
}

ContentDisposition::ContentDisposition(std::string_view value)
    : type_(TakeUpTo(';', value)), parameters_(value) {}

std::string ContentDisposition::Text() const {
  std::string text(type_);
  parameters_.AppendText(text);
  return text;
}

}  // namespace zqv::mime
