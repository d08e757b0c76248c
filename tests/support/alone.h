// Tests of what a process does only once need a process in which nothing has run before.
#pragma once

namespace zqv::test {

// True when this is the only test that this process runs. Otherwise runs it in a process of its
// own, fails here when it fails there, and gives false: the test then returns at once.
bool IsAlone();

}  // namespace zqv::test
