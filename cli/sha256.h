// The hash function SHA-256 (FIPS 180-4).
#pragma once

#include <string>
#include <string_view>

namespace zqv::cli {

// Returns the hash in lower-case hexadecimal digits.
std::string Sha256(std::string_view bytes);

}  // namespace zqv::cli
