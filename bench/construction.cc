#include "bench/construction.h"

#include <memory>
#include <utility>

#include "bench/session.h"
#include "standin/application.h"

namespace zqv::bench {
namespace {

// The cost of a refused message is measured too.
void Construct(const standin::String& message) {
  try {
    static_cast<void>(
        standin::Construct("MimeEmailZQV", "Constructor(Content as string)", message));
  } catch (const standin::HostException&) {
  }
}

// The messages as host strings.
struct Hosted {
  Session session;
  std::vector<standin::String> messages;
};

}  // namespace

Job PrepareConstruction(std::vector<std::string> messages) {
  const auto hosted = std::make_shared<Hosted>();
  for (std::string& message : messages) {
    hosted->messages.push_back(standin::MakeString(message, abi::kUnknownEncoding));
    message = std::string();
  }
  return [hosted](std::size_t index) { Construct(hosted->messages[index]); };
}

}  // namespace zqv::bench
