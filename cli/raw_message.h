// Where the parts of a message and their header fields stand in its bytes, which the library's
// objects do not tell.
//
// CR, LF, CRLF and LFCR each end a line, as for the library. A delimiter line ends whatever is
// inside its multipart (RFC 2046, section 5.1.2), also a header. There the library goes other ways:
// it takes a delimiter in a header for text, and gives nothing of what follows the delimiter of an
// outer multipart while an inner one is open. The parts before such a place are the library's, in
// the same order; of those behind it that is not known.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {

inline constexpr std::size_t kNoLine = 0;

struct RawField {
  std::string_view name;
  std::string_view value;  // with its line ends
  std::size_t line;        // from 1
};

// What a header ends with.
enum class HeaderEnd {
  kBlankLine,
  kOtherLine,  // neither a field nor a delimiter
  kDelimiter,
  kMessageEnd,
};

enum class RawKind { kLeaf, kMultipart, kMessage };

struct RawPart {
  bool is_message = false;     // the message itself or one that is attached
  std::size_t line = kNoLine;  // the first one of its header
  RawKind kind = RawKind::kLeaf;
  std::size_t first_field = 0;  // of the message's fields
  std::size_t field_count = 0;
  HeaderEnd header_end = HeaderEnd::kMessageEnd;
  std::string_view end_text;           // the line that ends the header
  std::size_t end_line = kNoLine;      // its number
  std::size_t lone_cr_line = kNoLine;  // of the header, when its other lines end otherwise
  // Of multiparts.
  std::optional<std::string> boundary;
  bool has_parts = false;
  bool is_closed = false;
  std::size_t last_line = kNoLine;  // the line that ends it; kNoLine: the message does
};

// What is known of the parts behind those that are surely the library's.
enum class RestOfParts { kNone, kUnknown, kLost };

struct RawMessage {
  std::vector<RawPart> parts;  // parents first, in the order of the message
  std::vector<RawField> fields;
  std::size_t known = 0;  // so many of the first parts are the library's
  RestOfParts rest = RestOfParts::kNone;
};

// The first field of this name, whatever its case; null when there is none.
const RawField* FindField(const RawMessage& message, const RawPart& part, std::string_view name);

// Views into `bytes`.
RawMessage ReadRawMessage(std::string_view bytes);

}  // namespace zqv::cli
