// Parses the value of MIME-Version (RFC 2045, section 4) as mimetic does.
#pragma once

#include <string>
#include <string_view>

namespace zqv::mime {

// Returns the version as numbers with dots between them: the first two numbers of the value and, if
// it is not 0, the third. An empty value gives "0.0". QUIRK: text that is no number gives 0; a
// large number is reduced to its low 32 bits, read as a signed number; 2^63 and above give -1.
// Equal to mimetic's result. Test: MimeVersion.UnusualNumbers.
std::string MimeVersionText(std::string_view value);

}  // namespace zqv::mime
