// Files that are no message, or one with something around it.
#pragma once

#include <string>
#include <string_view>

namespace zqv::cli {

// The message in an .emlx file, which is a line with its size in bytes, the message, and a property
// list; nothing (a null view) for any other file.
std::string_view MessageInEmlx(std::string_view file);

// Why a file that begins with `start` is no message: "a program", "a text without header fields";
// empty for one that may be a message. `start` is the whole file or the first 1,024 bytes at least.
std::string WhyNoMessage(std::string_view start);

}  // namespace zqv::cli
