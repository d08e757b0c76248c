// Shared by zqv-bench and gmime-bench, so that their figures can be compared: throughput on the
// messages of a list.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace zqv::bench {

// Does the job on the message with this index.
using Job = std::function<void(std::size_t)>;

// Reads the messages in the list that --list names, and lets `prepare` make a job of them. Does the
// job on each message once to warm up, and then in whole passes until --seconds of processor time
// (independent of other load) and --passes are reached. Prints one line of columns separated by
// tabs: name, messages, bytes, passes, processor seconds, messages a second, MB (10^6 bytes) a
// second, peak memory in KB of the first pass, and the increase of that over the memory before it.
// Returns the program's exit code.
int ThroughputMain(int argc, char** argv, const std::string& name, const std::string& description,
                   const std::function<Job(std::vector<std::string> messages)>& prepare);

}  // namespace zqv::bench
