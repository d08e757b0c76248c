// The job of constructing messages through the built library, as zqv-bench and own-work-bench
// measure it.
#pragma once

#include <string>
#include <vector>

#include "bench/throughput.h"

namespace zqv::bench {

// Hands the messages to a host without a ledger; the job constructs one from a host string and lets
// it go.
Job PrepareConstruction(std::vector<std::string> messages);

}  // namespace zqv::bench
