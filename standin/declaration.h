// Parser for declarations of members in the syntax of the host's language: "Parts(index as Integer)
// as MimeEntityZQV", "Parts as MimeEntityZQV()", "Constructor".
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::standin {

// A parsed type: "MimeEntityZQV()" is an array of MimeEntityZQV.
struct TypeText {
  std::string name;  // empty: no result
  bool is_array = false;
};

// "index as Integer"
struct Parameter {
  std::string name;
  TypeText type;
};

// A parsed declaration. Names are spelt as in the text.
struct Declaration {
  std::string name;
  std::vector<Parameter> parameters;
  TypeText result;
};

// Parses a declaration. Returns nothing when the text does not follow the grammar.
std::optional<Declaration> ParseDeclaration(std::string_view text);

// Returns the name and the parameter types in lower case: "parts(integer)". Two members of one
// class must not have the same signature.
std::string Signature(const Declaration& declaration);

// Whether name, parameter types and result are equal, ignoring case. Parameter names are not
// compared.
bool SameDeclaration(const Declaration& left, const Declaration& right);

}  // namespace zqv::standin
