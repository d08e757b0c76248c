// What is odd about the encoded words of a header field.
#pragma once

#include "cli/findings.h"
#include "cli/raw_message.h"

namespace zqv::cli {

// Of what is wrong with several words of the field, the first is told. Asks the library how it
// decodes them.
void FindInWords(const RawField& field, const Place& place, Findings* findings);

}  // namespace zqv::cli
