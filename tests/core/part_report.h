// What the core makes of each part of a message, without a host.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "abi/encodings.h"
#include "email/date_text.h"
#include "mime/message.h"

namespace zqv::test {

// Bytes and the encoding that they are labelled with.
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
  std::size_t place = 0;    // how many parts were routed before it: parts inside come first
  std::optional<LabelledText> file_name;  // of what is listed as attachment or inline
  std::optional<LabelledText> decoded;    // nothing for a container and an unknown encoding
  std::optional<LabelledText> subject;    // decoded
  std::optional<email::DateFields> sent;
  std::optional<email::DateFields> received;
};

// One report for each part, in the order of the message.
std::vector<PartReport> ReportParts(const mime::Message& message);

}  // namespace zqv::test
