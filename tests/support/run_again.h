// Running this program once more, as tests need that want a process of their own.
#pragma once

#include <string>
#include <vector>

namespace zqv::test {

// The path of this program's file.
std::string ThisProgram();

// Runs a program, `words[0]`, with the others as its arguments, and waits for it. Gives whether it
// could be started and ended with exit code 0. `words` must not be empty.
bool Succeeds(std::vector<std::string> words);

// The argument by which a GoogleTest program runs the present test alone.
std::string PresentTestAlone();

}  // namespace zqv::test
