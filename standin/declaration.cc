// Parser for one declaration: a name, parameters in parentheses, "as" and a type. Blanks separate
// words, and keywords ignore case. The grammar contains nothing else.
#include "standin/declaration.h"

#include <cstddef>
#include <utility>

#include "base/ascii.h"
#include "standin/text.h"

namespace zqv::standin {
namespace {

bool IsNameByte(char c) { return base::IsAlphanumeric(c) || c == '_'; }

// Takes words and punctuation from the front of a text, and skips blanks.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) { SkipBlanks(); }

  bool AtEnd() const { return text_.empty(); }

  bool Take(char c) {
    if (text_.empty() || text_.front() != c) return false;
    text_.remove_prefix(1);
    SkipBlanks();
    return true;
  }

  std::string TakeName() {
    std::size_t length = 0;
    while (length < text_.size() && IsNameByte(text_[length])) ++length;
    std::string name(text_.substr(0, length));
    text_.remove_prefix(length);
    SkipBlanks();
    return name;
  }

  // Takes "as" and the type after it. False when they are missing.
  bool TakeType(TypeText* type) {
    if (!base::EqualsIgnoringCase(TakeName(), "as")) return false;
    type->name = TakeName();
    if (Take('(')) {
      if (!Take(')')) return false;
      type->is_array = true;
    }
    return !type->name.empty();
  }

 private:
  void SkipBlanks() {
    while (!text_.empty() && text_.front() == ' ') text_.remove_prefix(1);
  }

  std::string_view text_;
};

bool TakeParameters(Reader* reader, std::vector<Parameter>* parameters) {
  if (!reader->Take('(')) return true;
  if (reader->Take(')')) return true;
  do {
    Parameter parameter;
    parameter.name = reader->TakeName();
    if (parameter.name.empty() || !reader->TakeType(&parameter.type)) return false;
    parameters->push_back(std::move(parameter));
  } while (reader->Take(','));
  return reader->Take(')');
}

std::string LowerType(const TypeText& type) {
  return LowerName(type.name) + (type.is_array ? "()" : "");
}

}  // namespace

std::optional<Declaration> ParseDeclaration(std::string_view text) {
  Reader reader(text);
  Declaration declaration;
  declaration.name = reader.TakeName();
  if (declaration.name.empty()) return std::nullopt;
  if (!TakeParameters(&reader, &declaration.parameters)) return std::nullopt;
  if (!reader.AtEnd() && !reader.TakeType(&declaration.result)) return std::nullopt;
  if (!reader.AtEnd()) return std::nullopt;
  return declaration;
}

std::string Signature(const Declaration& declaration) {
  std::string signature = LowerName(declaration.name) + "(";
  for (const Parameter& parameter : declaration.parameters) {
    if (signature.back() != '(') signature += ",";
    signature += LowerType(parameter.type);
  }
  return signature + ")";
}

bool SameDeclaration(const Declaration& left, const Declaration& right) {
  return Signature(left) == Signature(right) && LowerType(left.result) == LowerType(right.result);
}

}  // namespace zqv::standin
