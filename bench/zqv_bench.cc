// Throughput on messages of a list: each is constructed from a host string and let go, pass after
// pass, through the built library in a stand-in host without a ledger.
#include <memory>
#include <string>
#include <vector>

#include "bench/session.h"
#include "bench/throughput.h"
#include "standin/application.h"

namespace zqv::bench {
namespace {

// A refused message costs what it costs.
void Construct(const standin::String& message) {
  try {
    static_cast<void>(
        standin::Construct("MimeEmailZQV", "Constructor(Content as string)", message));
  } catch (const standin::HostException&) {
  }
}

// The messages as the host holds them.
struct Hosted {
  Session session;
  std::vector<standin::String> messages;
};

Job Prepare(std::vector<std::string> messages) {
  const auto hosted = std::make_shared<Hosted>();
  for (std::string& message : messages) {
    hosted->messages.push_back(standin::MakeString(message, abi::kUnknownEncoding));
    message = std::string();
  }
  return [hosted](std::size_t index) { Construct(hosted->messages[index]); };
}

}  // namespace
}  // namespace zqv::bench

int main(int argc, char** argv) {
  return zqv::bench::ThroughputMain(argc, argv, "zqv", "Measures how fast messages are constructed",
                                    zqv::bench::Prepare);
}
