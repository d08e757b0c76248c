// The lines that NSLog of macOS writes to standard error.
#pragma once

#include <string>
#include <string_view>

namespace zqv::test {

// Takes from each line what NSLog puts before the text: date, time, the program's name and the ids
// of process and thread. Lines without it stay as they are.
//   2024-05-06 07:08:09.012 interface_test[345:6789] text
//   2024-05-06 07:08:09.012345+0200 interface_test[345:6789] text
std::string WithoutSystemLogPrefixes(std::string_view text);

}  // namespace zqv::test
