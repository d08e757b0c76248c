// Runs the target without libFuzzer, with any compiler and in the suite:
//   TARGET [--mutations N] FILE-OR-FOLDER...
// Runs each file, and each file in a folder, once; then N changes of them, the same ones on every
// run. While an input runs, it is in a file TARGET.<process>.input next to the program, where it
// stays if the run ends the process.
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/target.h"

namespace zqv::fuzz {
namespace {

namespace fs = std::filesystem;

// Longer texts take more time and find nothing more.
constexpr std::size_t kLongest = 2'000;

class Runner {
 public:
  explicit Runner(const std::string& program)
      : path_(program + "." + std::to_string(getpid()) + ".input") {}

  void Run(const std::string& input) {
    std::ofstream(path_, std::ios::binary | std::ios::trunc) << input;
    RunBoth(input);
    ++count_;
  }

  // All inputs passed, so the file with the last one is deleted.
  void Finish() const {
    fs::remove(path_);
    std::printf("%zu inputs\n", count_);
  }

 private:
  const std::string path_;
  std::size_t count_ = 0;
};

std::string ReadFile(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + path.string());
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::string> ReadAll(const std::vector<std::string>& names) {
  std::vector<fs::path> paths;
  for (const std::string& name : names) {
    if (!fs::is_directory(name)) {
      paths.emplace_back(name);
      continue;
    }
    for (const auto& entry : fs::recursive_directory_iterator(name)) {
      if (entry.is_regular_file()) paths.push_back(entry.path());
    }
  }
  std::sort(paths.begin(), paths.end());
  std::vector<std::string> inputs;
  for (const fs::path& path : paths) inputs.push_back(ReadFile(path));
  return inputs;
}

// Makes small changes to inputs, the same ones on every run and machine.
class Mutator {
 public:
  explicit Mutator(const std::vector<std::string>& inputs) : inputs_(inputs) {}

  std::string Next() {
    std::string text = Any();
    for (std::size_t steps = 1 + Below(4); steps > 0; --steps) Change(text);
    text.resize(std::min(text.size(), kLongest));
    return text;
  }

 private:
  std::size_t Below(std::size_t end) { return end == 0 ? 0 : random_() % end; }
  const std::string& Any() { return inputs_[Below(inputs_.size())]; }

  void Change(std::string& text) {
    const std::size_t at = Below(text.size() + 1);
    switch (Below(5)) {
      case 0:
        text.erase(at, 1 + Below(40));
        break;
      case 1:
        text.insert(at, 1, static_cast<char>(Below(256)));
        break;
      case 2:
        if (at < text.size()) text[at] = static_cast<char>(Below(256));
        break;
      case 3:
        text.insert(at, std::string(text, Below(text.size() + 1), 1 + Below(80)));
        break;
      default: {
        const std::string& other = Any();
        text.replace(at, std::string::npos, other, Below(other.size() + 1), std::string::npos);
      }
    }
  }

  const std::vector<std::string>& inputs_;
  std::mt19937 random_{20'240'611};
};

int Main(const std::string& program, std::vector<std::string> arguments) {
  std::size_t mutations = 0;
  if (arguments.size() >= 2 && arguments[0] == "--mutations") {
    mutations = std::stoul(arguments[1]);
    arguments.erase(arguments.begin(), arguments.begin() + 2);
  }
  const std::vector<std::string> inputs = ReadAll(arguments);
  if (inputs.empty()) throw std::runtime_error("no inputs");
  target.start();
  Runner runner(program);
  for (const std::string& input : inputs) runner.Run(input);
  Mutator mutator(inputs);
  for (; mutations > 0; --mutations) runner.Run(mutator.Next());
  runner.Finish();
  return 0;
}

}  // namespace
}  // namespace zqv::fuzz

int main(int argc, char** argv) {
  try {
    return zqv::fuzz::Main(argv[0], {argv + 1, argv + argc});
  } catch (const std::exception& error) {
    static_cast<void>(std::fprintf(stderr, "%s\n", error.what()));
    return 2;
  }
}
