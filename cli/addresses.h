// The address fields of a message's header, as the sender wrote them.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "cli/message_source.h"

namespace zqv::cli {

// A header field that contains addresses.
struct AddressField {
  const char* field;
  const char* property;  // the property of the class of headers that holds the field's value
  const char* key;       // the key of the field in JSON
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

// Returns one line for each entry of the message's fields of this name, decoded for reading: `Ada
// Moss <ada@example.com>`, `Crew: ada@example.com;`. The lines are not escaped (cli/text.h).
std::vector<std::string> AddressLines(const MessageSource& source, std::string_view name);

}  // namespace zqv::cli
