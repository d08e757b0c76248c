// Runs the current test again, in a new process.
#pragma once

namespace zqv::interface_test {

// Starts this program for the current test only, and returns whether the test passed there. A
// process that takes longer than `seconds` is ended and counts as failed; 0 means no limit.
bool PassesAgain(unsigned seconds = 0);

}  // namespace zqv::interface_test
