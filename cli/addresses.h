// The addresses of a header, as a reader expects to see them.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "standin/handles.h"

namespace zqv::cli {

// A header field that holds addresses, and the header object's property that has them.
struct AddressField {
  const char* field;
  const char* property;
};

// In the order in which a reader expects them.
inline constexpr std::array<AddressField, 6> kAddressFields = {{
    {"From", "from"},
    {"Sender", "sender"},
    {"To", "too"},
    {"Cc", "cc"},
    {"Bcc", "bcc"},
    {"Reply-To", "replyto"},
}};

// One safe line for each mailbox or group: `Ada Moss <ada@example.com>`, `Crew: ada@example.com;`.
// `property` names the header object's list or mailbox. When that gives nothing, the text of the
// field `field` serves; empty when the header has none either.
std::vector<std::string> AddressLines(const standin::Object& header, std::string_view property,
                                      std::string_view field);

}  // namespace zqv::cli
