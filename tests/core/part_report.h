// Describes each part of a message with the core only, without a host.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "abi/encodings.h"
#include "email/date_text.h"
#include "mime/message.h"

namespace zqv::test {

// Bytes, and the number of their encoding.
struct LabelledText {
  std::string bytes;
  abi::Encoding encoding = abi::kUnknownEncoding;
};

struct PartReport {
  std::string number;  // "0" is the message, "1" its first part, "2.1" the first part of part 2
  std::string kind;    // "leaf", "multipart" or "message"
  std::string type;    // "type/subtype"
  std::string destination;  // "plain text", "HTML", "attachment", "inline", "container" or
                            // "unknown encoding"
  std::size_t place = 0;    // number of parts routed before this one; inner parts are routed first
  std::optional<LabelledText> file_name;  // only of an attachment or inline part
  std::optional<LabelledText> decoded;    // absent for containers and unknown encodings
  std::optional<LabelledText> subject;    // decoded
  std::optional<email::DateFields> sent;
  std::optional<email::DateFields> received;
};

// One report for each part, in the order of the message.
std::vector<PartReport> ReportParts(const mime::Message& message);

}  // namespace zqv::test
