// The system's loader of shared libraries.
#pragma once

#include <string>

#include "abi/records.h"

namespace zqv::standin {

// Loads the file with all its symbols bound at once and kept to itself, and gives the exported
// function of this name; null when either cannot be had. The file stays loaded for the life of the
// process.
abi::REALproc LoadFunction(const std::string& path, const char* name);

// Why this thread's last LoadFunction gave null.
std::string WhyNotLoaded();

}  // namespace zqv::standin
