// Stripping the quotes around a name.
#pragma once

#include <string_view>

namespace zqv::text {

// `text` without leading spaces and without one pair of double quotes, or of apostrophes, around the
// rest; apostrophes directly inside double quotes go as well. A rest of fewer than 3 bytes stays.
// [borrowed from the text]
std::string_view RemoveQuotes(std::string_view text);

}  // namespace zqv::text
