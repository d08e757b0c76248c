// A message as one page of HTML that needs nothing else: no network, no script, no other file.
#pragma once

#include <string>

#include "standin/handles.h"

namespace zqv::cli {

// `name` is the message's for people. Long texts are cut, large pictures left out; what is shown of
// them grows no faster than the message.
std::string ReportPage(const std::string& name, const standin::Object& email);

}  // namespace zqv::cli
