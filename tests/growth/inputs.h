// Building blocks for inputs.
#pragma once

#include <string>
#include <string_view>

#include "tests/support/long_text.h"

namespace zqv::growth {

using test::Count;
using test::Repeat;

// A message of one text/plain part; `fields` are complete lines.
inline std::string PlainMessage(const std::string& fields, const std::string& body = "Hello.\n") {
  return "MIME-Version: 1.0\n" + fields + "\n" + body;
}

// A message of one text/plain part with one more field.
inline std::string MessageWithField(std::string_view name, const std::string& value) {
  return PlainMessage(std::string(name) + ": " + value + "\n");
}

// A message of one part with these fields, which include Content-Type.
inline std::string MessageWithBody(std::string_view fields, const std::string& body) {
  return PlainMessage(std::string(fields), body);
}

// A multipart/mixed with the boundary "b". `parts` are complete parts, each with its boundary line.
inline std::string Multipart(const std::string& parts) {
  return PlainMessage("Content-Type: multipart/mixed; boundary=b\n", parts + "--b--\n");
}

}  // namespace zqv::growth
