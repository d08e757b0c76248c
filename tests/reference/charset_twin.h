// The normal form of charset names, each of its steps by itself: what text/charset.cc makes in one
// pass.
#pragma once

#include <string>

namespace zqv::reference {

std::string NormaliseCharset(const std::string& name);

}  // namespace zqv::reference
