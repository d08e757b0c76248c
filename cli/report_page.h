// Formats a message as one HTML page that depends on nothing else: no network, no script, no other
// file.
#pragma once

#include <string>

#include "standin/handles.h"

namespace zqv::cli {

// Returns the page. `name` names the message for the reader. Long texts are shortened and large
// pictures are omitted. The size of the page is linear in the size of the message.
std::string ReportPage(const std::string& name, const standin::Object& email);

}  // namespace zqv::cli
