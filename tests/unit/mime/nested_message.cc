#include "tests/unit/mime/nested_message.h"

namespace zqv::test {

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

}  // namespace zqv::test
