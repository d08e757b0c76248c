// Recognises files that are not messages, and messages with other data around them.
#pragma once

#include <string>
#include <string_view>

namespace zqv::cli {

// Returns the message in an .emlx file, which consists of a line with the message's size in bytes,
// the message, and a property list. A null view when the file is of another kind.
std::string_view MessageInEmlx(std::string_view file);

// Returns what a file that begins with `start` is if it is not a message, such as "a program" or "a
// text without header fields". Empty when it may be a message. `start` must be the whole file or at
// least its first 1,024 bytes.
std::string WhyNotAMessage(std::string_view start);

}  // namespace zqv::cli
