// Work with known growth, to test growth.py. It must report work that grows too fast, such work
// hidden by a fixed cost, and refusal without a limit, and nothing else.
#include <cstddef>

#include "tests/growth/dimensions.h"
#include "tests/growth/inputs.h"

namespace zqv::growth {
namespace {

volatile std::size_t sink = 0;

void Spend(std::size_t steps) {
  for (std::size_t i = 0; i < steps; ++i) sink = sink + 1;
}

// A function of its own, so that the report can name it.
[[gnu::noinline]] void SpendSquare(std::size_t steps) {
  for (std::size_t i = 0; i < steps; ++i) {
    for (std::size_t j = 0; j < steps; ++j) sink = sink + 1;
  }
}

std::string Linear(const std::string& input, Meter& meter) {
  meter.Enter("call");
  Spend(input.size());
  meter.Leave();
  return {};
}

// At 1,024 bytes half of the work is linear and half is quadratic.
std::string PartlyQuadratic(const std::string& input, Meter& meter) {
  meter.Enter("call");
  Spend(input.size() * 1024);
  SpendSquare(input.size());
  meter.Leave();
  return {};
}

// Quadratic work hidden by a fixed cost that at 1,024 bytes is sixteen times as large.
std::string Hidden(const std::string& input, Meter& meter) {
  meter.Enter("call");
  Spend(std::size_t{16} * 1024 * 1024);
  SpendSquare(input.size());
  meter.Leave();
  return {};
}

std::string Refused(const std::string& input, Meter& meter) {
  return Linear(input, meter), input.size() > 1024 ? "refused" : "";
}

std::string Nothing(const std::string&, Meter&) { return {}; }

std::string Letters(std::size_t n) { return Repeat("a", n); }

}  // namespace

const std::vector<Dimension> kPlantedDimensions = {
    {"planted.linear", "work as the input", Linear, Letters, nullptr, 1024},
    {"planted.quadratic", "work by half as its square", PartlyQuadratic, Letters, nullptr, 1024},
    {"planted.hidden", "work beside much that is fixed", Hidden, Letters, nullptr, 1024},
    {"planted.limited", "work up to a documented limit", Refused, Letters, "refused", 1024},
    {"planted.nothing", "no work", Nothing, Letters, nullptr, 1024},
    {"planted.refused", "work up to another limit", Refused, Letters, nullptr, 1024},
};

}  // namespace zqv::growth
