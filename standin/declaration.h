// Member declarations as the host writes them: "Parts(index as Integer) as MimeEntityZQV",
// "Parts as MimeEntityZQV()", "Constructor".
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::standin {

// A type text taken apart: "MimeEntityZQV()" is an array of MimeEntityZQV.
struct TypeText {
  std::string name;  // empty: no result
  bool is_array = false;
};

// "index as Integer"
struct Parameter {
  std::string name;
  TypeText type;
};

// A declaration's parts, spelt as they were written.
struct Declaration {
  std::string name;
  std::vector<Parameter> parameters;
  TypeText result;
};

// Nothing when the text does not follow the grammar.
std::optional<Declaration> ParseDeclaration(std::string_view text);

// The name and the parameter types in lower case, "parts(integer)": two members of one class must
// not agree in it.
std::string Signature(const Declaration& declaration);

// Name, parameter types and result agree, ignoring case. Parameter names do not matter.
bool SameDeclaration(const Declaration& left, const Declaration& right);

}  // namespace zqv::standin
