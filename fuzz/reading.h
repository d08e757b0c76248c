// Reads all that an object and what lies below it have to tell, and checks what holds of every
// object of the library's classes, whatever it was made from.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "standin/application.h"

namespace zqv::fuzz {

// Every property, every method, every element of every list; the relations of relations.h, which
// ask for elements by their indexes, hold of each object found. Exceptions of the host are let
// pass.
void ReadEverything(const standin::Object& top);

// What `work` raises as "Class: Message"; empty for nothing.
std::string RaisedBy(const std::function<void()>& work);

// A string's encoding and bytes, or "nil".
std::string Show(const standin::Value& value);
std::string ShowProperty(const standin::Object& object, std::string_view property);

// A string's text in UTF-8; nothing for nil. Fails when the text cannot be had.
std::optional<std::string> TextOf(const standin::Value& value);

}  // namespace zqv::fuzz
