#include "tests/unit/mime/nested_message.h"

#include <mimetic/mimeentity.h>

#include <stdexcept>

#include "mime/parser.h"
#include "tests/support/thread_stack.h"

namespace zqv::test {
namespace {

bool Accepts(Nesting nesting, std::size_t levels) {
  mimetic::MimeEntity entity;
  try {
    mime::ParseMessage(NestedMessage(nesting, levels), entity);
  } catch (const std::runtime_error&) {
    return false;
  }
  return true;
}

}  // namespace

std::string NestedMessage(Nesting nesting, std::size_t levels) {
  std::string message;
  for (std::size_t i = 0; i < levels; ++i) {
    const bool is_multipart =
        nesting == Nesting::kMultipart || (nesting == Nesting::kBoth && i % 2 == 0);
    message += is_multipart ? "Content-Type: multipart/mixed; boundary=b\n\n--b\n"
                            : "Content-Type: message/rfc822\n\n";
  }
  return message + "\nend\n";
}

std::size_t MostLevels(Nesting nesting, std::size_t bytes) {
  std::size_t accepted = 0;
  RunOnStack(bytes, [&] {
    std::size_t refused = 100'000;
    while (refused - accepted > 1) {
      const std::size_t middle = accepted + (refused - accepted) / 2;
      (Accepts(nesting, middle) ? accepted : refused) = middle;
    }
  });
  return accepted;
}

}  // namespace zqv::test
