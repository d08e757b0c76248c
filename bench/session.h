// Shared by the benchmark programs: the built library in a stand-in host, and texts as input.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "standin/application.h"
#include "standin/host.h"
#include "tests/support/long_text.h"

namespace zqv::bench {

// The built library in a host that keeps no ledger, for the life of the object.
class Session {
 public:
  Session();

 private:
  std::unique_ptr<standin::Host> host_;
};

// Starts a session, calls `register_all`, and runs the benchmarks that it registered, as the
// command line requests. Returns the program's exit code.
int Run(int argc, char** argv, void (*register_all)());

using test::Repeat;

// The header of an ordinary message, without Content-Type and without the empty line after it.
std::string_view Header();

// Shows the speed in bytes of input, of which each iteration reads `bytes`.
void CountBytes(benchmark::State& state, std::size_t bytes);

// A benchmark that constructs a message from `message` and releases the object.
void WholeConstruction(benchmark::State& state, const std::string& message);

}  // namespace zqv::bench
