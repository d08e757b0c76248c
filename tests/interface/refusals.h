// Input that a constructor refuses: the exception, and the properties that stay set.
#pragma once

#include <string>
#include <string_view>

#include "tests/interface/reading.h"

namespace zqv::interface_test {

inline constexpr const char* kFromString = "Constructor(Content as string)";
inline constexpr const char* kFromBlock = "Constructor(Content as MemoryBlock)";
inline constexpr const char* kFromFile = "Constructor(File as FolderItem)";

inline constexpr const char* kEmpty = "UnsupportedOperationException, 0: Can't parse empty text.";
inline constexpr const char* kHighByte =
    "UnsupportedOperationException, 0: Email must start with an header text. BOM character?";
inline constexpr const char* kNotOpened = "IOException, 0: Failed to open file for reading.";
inline constexpr const char* kNotRead = "IOException, 0: Failed to read data from file.";
inline constexpr const char* kNoMemory =
    "OutOfMemoryException, 0: Failed to allocate memory for email";

Constructed ConstructWith(const char* constructor, const Value& content);

// The exception of the constructor for the file at this path.
std::string RaisedByFile(std::string_view path);

void ExpectNoParsedMembers(const Object& message);

// After refused input the message has two empty lists and its source, and nothing else.
void ExpectRefused(const Constructed& constructed, const std::string& raised,
                   const std::string& source);

// When there is no input at all, nothing is set.
void ExpectNothingSet(const Constructed& constructed, const std::string& raised);

}  // namespace zqv::interface_test
