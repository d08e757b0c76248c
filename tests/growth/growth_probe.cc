// Makes inputs of the given dimensions and uses them through the built library, while callgrind
// counts instructions:
//   valgrind --tool=callgrind --collect-atstart=no
//     growth_probe [--phase=PHASE] DIMENSION=BYTES[,BYTES...]...
//   growth_probe --list    lists the dimensions: name, default size, what grows, separated by tabs
//
// Writes one line an input: the dimension, the requested size, the actual size, and the limit by
// which the input was refused, if any. Callgrind writes one profile an input, in the same order.
// The exit status is 2 for a wrong command line, and 3 when an input is refused for another reason
// than a limit of its dimension.

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "standin/host.h"
#include "standin/library.h"
#include "tests/growth/dimensions.h"
#include "tests/support/thread_stack.h"

namespace zqv::growth {
namespace {

// One argument: the inputs of one dimension.
struct Job {
  const Dimension* dimension = nullptr;
  std::vector<std::size_t> sizes;
};

struct Request {
  std::vector<Job> jobs;
  std::string_view phase;  // empty: the phase of the dimension
};

bool ParseSizes(std::string_view text, std::vector<std::size_t>* sizes) {
  const char* position = text.data();
  const char* const end = position + text.size();
  while (true) {
    std::size_t size = 0;
    const auto [next, error] = std::from_chars(position, end, size);
    if (error != std::errc()) return false;
    sizes->push_back(size);
    if (next == end) return true;
    if (*next != ',') return false;
    position = next + 1;
  }
}

std::optional<Request> ParseArguments(const std::vector<std::string_view>& arguments) {
  constexpr std::string_view kPhase = "--phase=";
  Request request;
  for (const std::string_view argument : arguments) {
    if (argument.substr(0, kPhase.size()) == kPhase) {
      request.phase = argument.substr(kPhase.size());
      const auto& phases = PhaseNames();
      if (std::find(phases.begin(), phases.end(), request.phase) == phases.end()) return {};
      continue;
    }
    const std::size_t equals = std::min(argument.find('='), argument.size() - 1);
    Job job;
    job.dimension = FindDimension(argument.substr(0, equals));
    if (job.dimension == nullptr) return {};
    if (!ParseSizes(argument.substr(equals + 1), &job.sizes)) return {};
    request.jobs.push_back(std::move(job));
  }
  if (request.jobs.empty()) return {};
  return request;
}

void List() {
  for (const Dimension* const dimension : ListedDimensions()) {
    std::printf("%s\t%zu\t%s\n", dimension->name, dimension->bytes, dimension->grows);
  }
}

// Measures the inputs of a job in turn. Returns false when one was refused that should not be.
bool Measure(const Job& job, std::string_view phase) {
  const Dimension& dimension = *job.dimension;
  // The first use in a process fills the library's caches, so it is not counted.
  Meter nothing("none");
  dimension.work(dimension.make(0), nothing);

  Meter meter(phase.empty() ? dimension.phase : phase);
  for (const std::size_t size : job.sizes) {
    const std::string input = dimension.make(size);
    const std::string refusal = dimension.work(input, meter);
    Meter::Report(std::string(dimension.name) + " " + std::to_string(size));
    if (!refusal.empty() && (dimension.limit == nullptr || refusal != dimension.limit)) {
      std::fprintf(stderr, "%s: refused: %s\n", dimension.name, refusal.c_str());
      return false;
    }
    std::printf("%s\t%zu\t%zu\t%s\n", dimension.name, size, input.size(), refusal.c_str());
    std::fflush(stdout);
  }
  return true;
}

bool MeasureInHost(const Request& request) {
  standin::Capabilities capabilities;
  capabilities.ledger = false;
  const auto host = standin::Host::Start(capabilities);
  const standin::Library library(ZQV_LIBRARY);
  library.Enter(*host);
  return std::all_of(request.jobs.begin(), request.jobs.end(),
                     [&](const Job& job) { return Measure(job, request.phase); });
}

int Run(const std::vector<std::string_view>& arguments) {
  if (arguments.size() == 1 && arguments[0] == "--list") {
    List();
    return 0;
  }
  const auto request = ParseArguments(arguments);
  if (!request) {
    std::fputs("usage: growth_probe [--phase=PHASE] DIMENSION=BYTES[,BYTES...]... | --list\n",
               stderr);
    return 2;
  }
  int code = 1;
  // A large stack, so that the stack does not limit the nesting.
  test::RunOnStack(test::kLargeStack, [&] {
    try {
      code = MeasureInHost(*request) ? 0 : 3;
    } catch (const std::exception& exception) {
      std::fprintf(stderr, "growth_probe: %s\n", exception.what());
    }
  });
  return code;
}

}  // namespace
}  // namespace zqv::growth

int main(int argc, char** argv) {
  return zqv::growth::Run(std::vector<std::string_view>(argv + 1, argv + argc));
}
