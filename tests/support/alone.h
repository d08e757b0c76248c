// For tests of code that runs only once in a process, such as the caching of the host's layout.
#pragma once

namespace zqv::test {

// Returns true when the process runs this test only. Otherwise it runs the test in a new process,
// fails here if it failed there, and returns false; the test must then return at once.
bool IsAlone();

}  // namespace zqv::test
