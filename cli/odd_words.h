// What is odd about the encoded words of a header field.
#pragma once

#include <string_view>

#include "cli/findings.h"

namespace zqv::cli {

// Of what is wrong with several words of the field, the first is told. Asks the library how it
// decodes them. `value` may have line ends.
void FindInWords(std::string_view name, std::string_view value, const Place& place,
                 Findings* findings);

}  // namespace zqv::cli
