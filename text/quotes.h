// Stripping the quotes around a name.
#pragma once

#include <string>

namespace zqv::text {

// Without leading spaces and without one pair of double quotes, or of apostrophes, around the rest;
// apostrophes directly inside double quotes go as well. A text of fewer than 3 bytes stays.
std::string RemoveQuotes(std::string text);

}  // namespace zqv::text
