// Building blocks of the inputs.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqv::growth {

// `text` as often as it takes to have at least so many bytes.
inline std::string Repeat(std::string_view text, std::size_t bytes) {
  std::string result;
  result.reserve(bytes + text.size());
  while (result.size() < bytes) result += text;
  return result;
}

// item(0), item(1) and so on, until there are at least so many bytes.
template <typename Item>
std::string Count(std::size_t bytes, Item item) {
  std::string result;
  for (std::size_t number = 0; result.size() < bytes; ++number) result += item(number);
  return result;
}

// A message of one text/plain part; `fields` are whole lines.
inline std::string PlainMessage(const std::string& fields, const std::string& body = "Hello.\n") {
  return "MIME-Version: 1.0\n" + fields + "\n" + body;
}

// The same with a single field beyond the first.
inline std::string MessageWithField(std::string_view name, const std::string& value) {
  return PlainMessage(std::string(name) + ": " + value + "\n");
}

// A message of one part with the given fields, Content-Type among them.
inline std::string MessageWithBody(std::string_view fields, const std::string& body) {
  return PlainMessage(std::string(fields), body);
}

// A multipart/mixed with the boundary "b" around whole parts, each with its boundary line.
inline std::string Multipart(const std::string& parts) {
  return PlainMessage("Content-Type: multipart/mixed; boundary=b\n", parts + "--b--\n");
}

}  // namespace zqv::growth
