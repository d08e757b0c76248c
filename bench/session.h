// What every benchmark program needs: the built library in a stand-in host, and texts to feed it.
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

// Starts a session, calls `register_all` and runs what it registered, as the command line asks.
// Gives the program's exit code.
int Run(int argc, char** argv, void (*register_all)());

using test::Repeat;

// The header of an ordinary message, without Content-Type and the empty line behind it.
std::string_view Header();

// Has the speed shown in bytes of input, of which each iteration read so many.
void CountBytes(benchmark::State& state, std::size_t bytes);

// One registered row: constructing a message from `message`, and letting the object go.
void WholeConstruction(benchmark::State& state, const std::string& message);

}  // namespace zqv::bench
