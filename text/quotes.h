// Removes the quotes around a name.
#pragma once

#include <string_view>

namespace zqv::text {

// Removes leading spaces and then one pair of double quotes or of apostrophes around the rest. A
// pair of apostrophes directly inside double quotes is removed, too. Quotes around nothing stay: a
// quoted text has at least 3 bytes. [borrowed from `text`]
std::string_view RemoveQuotes(std::string_view text);

}  // namespace zqv::text
