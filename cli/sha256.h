// The SHA-256 of bytes (FIPS 180-4).
#pragma once

#include <string>
#include <string_view>

namespace zqv::cli {

// In hexadecimal digits of lower case.
std::string Sha256(std::string_view bytes);

}  // namespace zqv::cli
