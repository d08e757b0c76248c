// The job of zqv-bench and own-work-bench: constructing messages through the built library.
#pragma once

#include <string>
#include <vector>

#include "bench/throughput.h"

namespace zqv::bench {

// Gives the messages to a host without a ledger. The job constructs a message from a host string
// and releases it.
Job PrepareConstruction(std::vector<std::string> messages);

}  // namespace zqv::bench
