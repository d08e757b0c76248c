// Printing a text that is data for whoever asked for it.
#pragma once

#include "cli/output.h"
#include "standin/handles.h"

namespace zqv::cli {

// In UTF-8 with a line feed at the end of each line; safe for a terminal when that is where it
// goes. With `raw` the string's bytes as they are. Nil and empty print nothing.
void PrintText(const standin::String& string, bool raw, Output* output);

}  // namespace zqv::cli
