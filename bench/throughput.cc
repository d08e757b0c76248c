#include "bench/throughput.h"

#include <malloc.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <ctime>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace zqv::bench {
namespace {

struct Options {
  std::string list;  // path of a file with the path of a message on each line
  std::string name;  // text of the first column
  double seconds = 1;
  int passes = 1;  // smallest number of passes
};

double ProcessorSeconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// A value of /proc/self/status, in KB.
long MemoryStatus(const std::string& key) {
  std::ifstream file("/proc/self/status");
  for (std::string line; std::getline(file, line);) {
    if (line.compare(0, key.size(), key) == 0) return std::stol(line.substr(key.size() + 1));
  }
  return 0;
}

// Resets the peak of memory.
void ForgetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

std::vector<std::string> ReadMessages(const std::string& list) {
  std::ifstream paths(list);
  if (!paths) throw std::runtime_error("cannot open " + list);
  std::vector<std::string> messages;
  for (std::string path; std::getline(paths, path);) {
    if (path.empty()) continue;
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot open " + path);
    messages.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  if (messages.empty()) throw std::runtime_error(list + ": no messages");
  return messages;
}

constexpr std::size_t kLookEvery = 100'000;  // bytes of message between two looks at the clock

// Makes freed memory stay with the process, as in an application whose heap is in use. Otherwise
// the kernel would clear the pages of each large message again, and that time would be measured
// too.
void KeepFreedMemory() {
  constexpr int kLargestKept = 32 << 20;  // bytes; glibc's maximum
  mallopt(M_MMAP_THRESHOLD, kLargestKept);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
}

void Measure(const Options& options, std::size_t count, std::size_t bytes, const Job& job) {
  malloc_trim(0);
  const long loaded = MemoryStatus("VmRSS:");
  ForgetPeak();
  const auto pass = [&] {
    for (std::size_t i = 0; i < count; ++i) job(i);
  };
  pass();
  const long peak = MemoryStatus("VmHWM:");
  double passes = 0;
  double seconds = 0;
  const double start = ProcessorSeconds();
  while (seconds < options.seconds || passes < options.passes) {
    // Reading the clock takes a tenth of the time of a small message.
    const std::size_t more = options.seconds > 0 ? 1 + kLookEvery / bytes : 1;
    const double next_look = passes + static_cast<double>(more);
    for (; passes < next_look; ++passes) pass();
    seconds = ProcessorSeconds() - start;
  }
  std::printf("%s\t%zu\t%zu\t%.0f\t%.6f\t%.1f\t%.2f\t%ld\t%ld\n", options.name.c_str(), count,
              bytes, passes, seconds, static_cast<double>(count) * passes / seconds,
              static_cast<double>(bytes) * passes / seconds / 1e6, peak, peak - loaded);
}

}  // namespace

int ThroughputMain(int argc, char** argv, const std::string& name, const std::string& description,
                   const std::function<Job(std::vector<std::string> messages)>& prepare) {
  Options options;
  options.name = name;
  CLI::App app(description, name + "-bench");
  app.add_option("--list", options.list, "A file with the path of a message on each line")
      ->required();
  app.add_option("--seconds", options.seconds, "Processor time to measure for");
  app.add_option("--passes", options.passes, "Passes to measure at least, besides the first");
  app.add_option("--name", options.name, "What the first column says");
  CLI11_PARSE(app, argc, argv);
  try {
    KeepFreedMemory();
    std::vector<std::string> messages = ReadMessages(options.list);
    const std::size_t count = messages.size();
    std::size_t bytes = 0;
    for (const std::string& message : messages) bytes += message.size();
    Measure(options, count, bytes, prepare(std::move(messages)));
    return 0;
  } catch (const std::exception& error) {
    static_cast<void>(std::fprintf(stderr, "%s-bench: %s\n", name.c_str(), error.what()));
    return 1;
  }
}

}  // namespace zqv::bench
