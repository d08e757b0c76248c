// Reads all members of an object and of the objects below it, and checks the relations that hold
// for every object of the library, whatever it was made from.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "standin/application.h"

namespace zqv::fuzz {

// Reads every property, every method and every element of every list, and checks the relations of
// relations.h for each object. Ignores host exceptions.
void ReadEverything(const standin::Object& top);

// The exception that `work` raises, as "Class: Message"; empty when there is none.
std::string RaisedBy(const std::function<void()>& work);

// Shows a string as its encoding and bytes; "nil" for nil.
std::string Show(const standin::Value& value);
std::string ShowProperty(const standin::Object& object, std::string_view property);

// The text of a string in UTF-8; nothing for nil. Fails when the string cannot be converted.
std::optional<std::string> TextOf(const standin::Value& value);

}  // namespace zqv::fuzz
