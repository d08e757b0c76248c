// Checks the encoded words (RFC 2047) of a header field.
#pragma once

#include <string_view>

#include "cli/findings.h"

namespace zqv::cli {

// Adds findings about the encoded words of field `name`, at most one of each kind. Asks the library
// how it decodes each word. `value` may contain line ends.
void CheckEncodedWords(std::string_view name, std::string_view value, const Place& place,
                       Findings* findings);

}  // namespace zqv::cli
