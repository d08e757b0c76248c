// The normal form of charset names, by the rules one after the other.
#pragma once

#include <string>

namespace zqv::reference {

std::string NormaliseCharset(const std::string& name);

}  // namespace zqv::reference
