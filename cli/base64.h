// Encoding in base64.
#pragma once

#include <string>
#include <string_view>

namespace zqv::cli {

// Encodes bytes in base64 (RFC 4648, section 4), in one line.
std::string Base64(std::string_view bytes);

}  // namespace zqv::cli
