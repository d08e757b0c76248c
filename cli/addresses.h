// The addresses of a header, as a reader expects to see them.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "standin/handles.h"

namespace zqv::cli {

// A header field that holds addresses.
struct AddressField {
  const char* field;
  const char* property;  // of the header object that has them
  const char* key;       // in JSON
};

// In the order in which a reader expects them.
inline constexpr std::array<AddressField, 6> kAddressFields = {{
    {"From", "from", "from"},
    {"Sender", "sender", "sender"},
    {"To", "too", "to"},
    {"Cc", "cc", "cc"},
    {"Bcc", "bcc", "bcc"},
    {"Reply-To", "replyto", "reply_to"},
}};

// One safe line for each mailbox or group: `Ada Moss <ada@example.com>`, `Crew: ada@example.com;`.
// `property` names the header object's list or mailbox. When that gives nothing, the text of the
// field `field` serves; empty when the header has none either.
std::vector<std::string> AddressLines(const standin::Object& header, std::string_view property,
                                      std::string_view field);

}  // namespace zqv::cli
