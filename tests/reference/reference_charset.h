// Reference implementation of the normal form of charset names: each step by itself.
// text/charset.cc does all steps in one pass.
#pragma once

#include <string>

namespace zqv::reference {

std::string NormaliseCharset(const std::string& name);

}  // namespace zqv::reference
