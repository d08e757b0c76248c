// Access to the system's loader of shared libraries.
#pragma once

#include <string>

#include "abi/records.h"

namespace zqv::standin {

// Loads a file and returns its exported function of this name. Null when the file cannot be loaded
// or lacks the function. All symbols of the file are bound at once and are not visible to other
// libraries. It stays loaded until the process ends.
abi::REALproc LoadFunction(const std::string& path, const char* name);

// The reason why this thread's last LoadFunction returned null.
std::string WhyNotLoaded();

}  // namespace zqv::standin
