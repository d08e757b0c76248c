// Compares our parser with mimetic's on random messages, for as long as requested:
//
//   compare_parsers [count] [seed]
//
// Message `i` is made from the seed `seed + i`, so that it can be made again alone. At the first
// difference the message is written to compare_parsers.eml, and the program ends with exit status
// 1.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "tests/unit/mime/message_maker.h"
#include "tests/unit/mime/tree_difference.h"

namespace {

std::uint64_t Argument(int count, char** arguments, int index, std::uint64_t otherwise) {
  return index < count ? std::strtoull(arguments[index], nullptr, 10) : otherwise;
}

}  // namespace

int main(int argument_count, char** arguments) {
  const std::uint64_t count = Argument(argument_count, arguments, 1, 10'000);
  const std::uint64_t seed = Argument(argument_count, arguments, 2, 1);
  std::uint64_t bytes = 0;
  for (std::uint64_t i = 0; i < count; ++i) {
    const std::string message = zqv::test::MessageMaker(seed + i).Make();
    const std::string difference = zqv::test::DifferenceFromTheReference(message);
    bytes += message.size();
    if (!difference.empty()) {
      std::ofstream("compare_parsers.eml", std::ios::binary) << message;
      std::printf("seed %llu: %s\n", static_cast<unsigned long long>(seed + i), difference.c_str());
      return 1;
    }
    if ((i + 1) % 10'000 == 0 || i + 1 == count) {
      std::printf("%llu messages, %llu MB, no difference\n", static_cast<unsigned long long>(i + 1),
                  static_cast<unsigned long long>(bytes / 1'000'000));
      std::fflush(stdout);
    }
  }
  return 0;
}
