// Throughput on messages of a list: each is constructed from a host string and let go, pass after
// pass, through the built library in a stand-in host without a ledger.
//
// Processor time is measured, not the clock on the wall: the machine may be shared. Prints one
// line of columns with tabs between: name, messages, bytes, passes, processor seconds, messages a
// second, MB (10^6 bytes of input) a second, peak memory in KB, peak over the loaded input in KB.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <ctime>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/session.h"
#include "standin/application.h"

namespace zqv::bench {
namespace {

struct Options {
  std::string list;
  std::string name = "zqv";
  double seconds = 1;
};

struct Load {
  std::vector<standin::String> messages;
  std::size_t bytes = 0;
};

double ProcessorSeconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// A figure of this process's memory in KB.
long MemoryStatus(const std::string& key) {
  std::ifstream file("/proc/self/status");
  for (std::string line; std::getline(file, line);) {
    if (line.compare(0, key.size(), key) == 0) return std::stol(line.substr(key.size() + 1));
  }
  return 0;
}

// From here on the peak is counted anew.
void ForgetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

Load LoadAll(const std::string& list) {
  std::ifstream paths(list);
  if (!paths) throw std::runtime_error("cannot open " + list);
  Load load;
  for (std::string path; std::getline(paths, path);) {
    if (path.empty()) continue;
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot open " + path);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    load.messages.push_back(standin::MakeString(bytes, abi::kUnknownEncoding));
    load.bytes += bytes.size();
  }
  if (load.bytes == 0) throw std::runtime_error(list + ": no messages");
  return load;
}

// A refused message costs what it costs.
void Construct(const standin::String& message) {
  try {
    static_cast<void>(
        standin::Construct("MimeEmailZQV", "Constructor(Content as string)", message));
  } catch (const standin::HostException&) {
  }
}

void Measure(const Options& options) {
  const Load load = LoadAll(options.list);
  const long loaded = MemoryStatus("VmRSS:");
  ForgetPeak();
  for (const standin::String& message : load.messages) Construct(message);  // to warm up

  double passes = 0;
  double seconds = 0;
  const double start = ProcessorSeconds();
  while (seconds < options.seconds) {
    for (const standin::String& message : load.messages) Construct(message);
    ++passes;
    seconds = ProcessorSeconds() - start;
  }
  const long peak = MemoryStatus("VmHWM:");
  std::printf("%s\t%zu\t%zu\t%.0f\t%.6f\t%.1f\t%.2f\t%ld\t%ld\n", options.name.c_str(),
              load.messages.size(), load.bytes, passes, seconds,
              static_cast<double>(load.messages.size()) * passes / seconds,
              static_cast<double>(load.bytes) * passes / seconds / 1e6, peak, peak - loaded);
}

int Main(int argc, char** argv) {
  CLI::App app("Measures how fast messages are constructed", "zqv-bench");
  Options options;
  app.add_option("--list", options.list, "A file with the path of a message on each line")
      ->required();
  app.add_option("--seconds", options.seconds, "Processor time to measure for");
  app.add_option("--name", options.name, "What the first column says");
  CLI11_PARSE(app, argc, argv);
  const Session session;
  Measure(options);
  return 0;
}

}  // namespace
}  // namespace zqv::bench

int main(int argc, char** argv) {
  try {
    return zqv::bench::Main(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zqv-bench: %s\n", error.what());
    return 1;
  }
}
