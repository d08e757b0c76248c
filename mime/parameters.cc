// A value is split at each semicolon. In Content-Type the first piece is split at slashes into type
// and subtype; anything after a second slash is ignored. Each later piece is a parameter, which is
// split at its first "=":
//
//   text/plain; charset="utf-8"; x     type "text", subtype "plain"
//                                      parameters "charset" = "utf-8" and "" = ""
//                                      text form: text/plain; charset="utf-8"; =""
#include "mime/parameters.h"

#include <algorithm>

#include "base/ascii.h"
#include "mime/pieces.h"

namespace zqv::mime {
namespace {

// Returns `text` without one pair of surrounding double quotes. A backslash has no meaning.
std::string_view RemoveQuotes(std::string_view text) {
  const bool is_quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  return is_quoted ? text.substr(1, text.size() - 2) : text;
}

// Parses one parameter: the name stands before the first '=', the value after it. Spaces and tabs
// around both are removed, and then the double quotes around the value. QUIRK: name and value are
// empty when there is no '='. Equal to mimetic's result. Test: Parameters.WithoutEqualsSignIsEmpty.
Parameter ReadParameter(std::string_view text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos) return {};
  return {TrimBlanks(text.substr(0, equals)), RemoveQuotes(TrimBlanks(text.substr(equals + 1)))};
}

// Writes the texts one after the other to `out`. Returns the end of the output.
template <class... Texts>
char* Write(char* out, const Texts&... texts) {
  for (const std::string_view text : {std::string_view(texts)...}) {
    out = std::copy(text.begin(), text.end(), out);
  }
  return out;
}

// Returns the text form of a value: `front` bytes, followed by the parameters. write_front(out)
// writes these bytes to `out` and returns the end of its output.
template <class WriteFront>
std::string TextOf(std::size_t front, const Parameters& parameters, WriteFront write_front) {
  std::string text(front + parameters.TextRoom(), '\0');
  const char* const end = parameters.WriteText(write_front(text.data()));
  text.resize(static_cast<std::size_t>(end - text.data()));
  return text;
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

std::size_t Parameters::TextRoom() const {
  constexpr std::size_t kMostAdded = 5;  // the characters ; = and two quotes, and a space
  return list_.size() + kMostAdded * Count();
}

char* Parameters::WriteText(char* out) const {
  for (std::string_view rest = list_; !rest.empty();) {
    const Parameter parameter = ReadParameter(TakeUpTo(';', rest));
    out = Write(out, "; ", parameter.name, "=\"", parameter.value, "\"");
  }
  return out;
}

ContentType::ContentType(std::string_view value) {
  std::string_view types = TakeUpTo(';', value);
  type_ = TakeUpTo('/', types);
  subtype_ = TakeUpTo('/', types);
  parameters_ = Parameters(value);
}

std::string ContentType::Text() const {
  return TextOf(type_.size() + 1 + subtype_.size(), parameters_,
                [this](char* out) { return Write(out, type_, "/", subtype_); });
}

ContentDisposition::ContentDisposition(std::string_view value)
    : type_(TakeUpTo(';', value)), parameters_(value) {}

std::string ContentDisposition::Text() const {
  return TextOf(type_.size(), parameters_, [this](char* out) { return Write(out, type_); });
}

}  // namespace zqv::mime
