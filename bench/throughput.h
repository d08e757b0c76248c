// Throughput on messages of a list: what zqv-bench and gmime-bench have in common, so that their
// figures can be compared.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace zqv::bench {

// Does the job on the message of that index.
using Job = std::function<void(std::size_t)>;

// Reads the messages that the list named with --list names, has `prepare` make a job of them, and
// does it on each once to warm up, then in whole passes until --seconds of processor time are over
// (the machine may be shared) and --passes are done. Prints one line of columns with tabs between:
// name, messages, bytes, passes, processor seconds, messages a second, MB (10^6 bytes) a second,
// peak memory in KB of the pass that warms up, the same over what was in memory before. Gives the
// program's exit code.
int ThroughputMain(int argc, char** argv, const std::string& name, const std::string& description,
                   const std::function<Job(std::vector<std::string> messages)>& prepare);

}  // namespace zqv::bench
