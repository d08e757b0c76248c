// The value of MIME-Version (RFC 2045, section 4), as the MIME library reads it.
#pragma once

#include <string>
#include <string_view>

namespace zqv::mime {

// Two numbers with a dot between them, or three when there is a third that is not 0; "0.0" for an
// empty value. QUIRK: what is no number counts as 0, a number keeps its low 32 bits as a signed
// one, and 2^63 or more are -1. Test: MimeVersion.OddNumbers.
std::string MimeVersionText(std::string_view value);

}  // namespace zqv::mime
