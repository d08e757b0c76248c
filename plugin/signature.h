// Compares, at compile time, the function of a table row with what the row declares.
//
// A row names its function as an untyped pointer, and the host calls it as the row's text says. So
// each row is checked: the number of arguments, the type of each, and the type of the result.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

#include "abi/records.h"

namespace zqv::plugin {

// Whether the host passes values of a declared type as this C++ type; void stands for no value.
template <class Value>
constexpr bool FitsType(std::string_view type) {
  const bool is_string = type == "String" || type == "string";
  const bool is_boolean = type == "Boolean" || type == "boolean";
  const bool is_integer = type == "Integer";
  const bool is_array = !type.empty() && type.back() == ')';
  if constexpr (std::is_void_v<Value>) {
    return type.empty();
  } else if constexpr (std::is_same_v<Value, abi::REALstring>) {
    return is_string;
  } else if constexpr (std::is_same_v<Value, abi::RBBoolean>) {
    return is_boolean;
  } else if constexpr (std::is_same_v<Value, abi::RBInteger>) {
    return is_integer;
  } else if constexpr (std::is_same_v<Value, abi::REALarray>) {
    return is_array;
  } else {
    return std::is_same_v<Value, abi::REALobject> && !type.empty() && !is_string && !is_boolean &&
           !is_integer && !is_array;
  }
}

// The type in "index as Integer"; empty for none.
constexpr std::string_view TypeIn(std::string_view text) {
  constexpr std::string_view kAs = " as ";
  const std::size_t as = text.find(kAs);
  return as == text.npos ? std::string_view() : text.substr(as + kAs.size());
}

// Takes the first of "a as X,b as Y" away and returns its type.
constexpr std::string_view TakeType(std::string_view* parameters) {
  const std::size_t comma = std::min(parameters->find(','), parameters->size());
  const std::string_view type = TypeIn(parameters->substr(0, comma));
  parameters->remove_prefix(std::min(comma + 1, parameters->size()));
  return type;
}

// "index as Integer" and " as MimeFieldZQV" of "Fields(index as Integer) as MimeFieldZQV".
struct DeclaredParts {
  std::string_view parameters;
  std::string_view result;
};
constexpr DeclaredParts PartsOf(std::string_view declaration) {
  const std::size_t name = std::min(declaration.find_first_of(" ("), declaration.size());
  if (name == declaration.size() || declaration[name] == ' ') return {{}, declaration.substr(name)};
  const std::size_t end = declaration.find(')');
  return {declaration.substr(name + 1, end - name - 1), declaration.substr(end + 1)};
}

template <class Function>
struct Signature;
template <class Result, class... Arguments>
struct Signature<Result (*)(Arguments...)> {
  // Whether the function can stand in a row with such a type or declaration. A member of an
  // instance is passed that first, which no declaration says; a shared one is not.
  static constexpr bool IsGetter(std::string_view type) {
    return FitsType<Result>(type) && sizeof...(Arguments) <= 1 &&
           (std::is_same_v<Arguments, abi::REALobject> && ...);
  }
  static constexpr bool IsSetter(std::string_view type) {
    return std::is_void_v<Result> && sizeof...(Arguments) == 1 &&
           (FitsType<Arguments>(type) && ...);
  }
  static constexpr bool IsMethod(std::string_view declaration) {
    const DeclaredParts parts = PartsOf(declaration);
    return FitsType<Result>(TypeIn(parts.result)) &&
           (Takes<Arguments...>(parts.parameters) || TakesSelfAnd<Arguments...>(parts.parameters));
  }

 private:
  template <class... Parameters>
  static constexpr bool Takes(std::string_view parameters) {
    return (FitsType<Parameters>(TakeType(&parameters)) && ...) && parameters.empty();
  }
  template <class Self, class... Parameters>
  static constexpr bool TakesSelfAnd(std::string_view parameters) {
    return std::is_same_v<Self, abi::REALobject> && Takes<Parameters...>(parameters);
  }
  template <class... None>
  static constexpr std::enable_if_t<sizeof...(None) == 0, bool> TakesSelfAnd(std::string_view) {
    return false;
  }
};

// 0, and a compile-time check.
template <bool kFits>
inline constexpr std::uint32_t kFitting = [] {
  static_assert(kFits, "the function has other parameters or another result than the row declares");
  return 0U;
}();

static_assert(Signature<abi::RBBoolean (*)(abi::REALobject, abi::REALstring)>::IsMethod(
    "hasField(name as string) as boolean"));
static_assert(!Signature<abi::RBBoolean (*)(abi::REALobject)>::IsMethod(
    "hasField(name as string) as boolean"));
static_assert(!Signature<abi::REALobject (*)(abi::REALobject)>::IsMethod("Parts as X()"));
static_assert(!Signature<abi::RBInteger (*)(abi::REALobject)>::IsGetter("String"));

}  // namespace zqv::plugin
