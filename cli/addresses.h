// The addresses of a header, as a reader expects to see them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "standin/handles.h"

namespace zqv::cli {

// One safe line for each mailbox or group: `Ada Moss <ada@example.com>`, `Crew: ada@example.com;`.
// `property` names the header object's list or mailbox. When that gives nothing, the text of the
// field `field` serves; empty when the header has none either.
std::vector<std::string> AddressLines(const standin::Object& header, std::string_view property,
                                      std::string_view field);

}  // namespace zqv::cli
