// Prints a text that the user asked for, such as a body.
#pragma once

#include "cli/output.h"
#include "standin/handles.h"

namespace zqv::cli {

// Prints a host string in UTF-8 with line feeds as line ends. Output to a terminal is escaped.
// `raw` prints the bytes unchanged. Nil and empty strings print nothing.
void PrintText(const standin::String& string, bool raw, Output* output);

}  // namespace zqv::cli
