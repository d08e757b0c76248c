// The present test once more, in a process of its own.
#pragma once

namespace zqv::interface_test {

// Runs this program anew for the present test alone; true when it passed there. With a number of
// seconds above 0 it is ended after that time, and has not passed.
bool PassesAgain(unsigned seconds = 0);

}  // namespace zqv::interface_test
