// The addresses of a header, as they are written.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "cli/message_source.h"

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

// One line for each entry of the message's fields of that name, as it is written and decoded for
// reading: `Ada Moss <ada@example.com>`, `Crew: ada@example.com;`. Not made safe yet.
std::vector<std::string> AddressLines(const MessageSource& source, std::string_view name);

}  // namespace zqv::cli
