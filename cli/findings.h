// The findings of the verb `check`: faults of a message, and results of the library that an
// application may not expect.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/line_numbers.h"
#include "cli/message.h"

namespace zqv::cli {

// What a finding is about. Several kinds may have the same code; cli/findings.cc lists codes and
// texts.
enum class FindingKind {
  kNoBlankLine,
  kDelimiterInHeader,
  kCutHeader,
  kUnterminatedMultipart,
  kNoBoundary,
  kEmptyMultipart,
  kLostParts,
  kRepeatedField,
  kBadDate,
  kEarlyYear,
  kLowerCaseWord,
  kUnknownWordCharset,
  kMixedCharsets,
  kFieldBytes,
  kZeroByteInField,
  kLoneCr,
  kBadContentType,
  kUnknownCharset,
  kWrongCharset,
  kGuessedCharset,
  kZeroByteInText,
  kUnknownTransferEncoding,
  kEncodedMessage,
  kForeignInBase64,
  kCutBase64,
  kMoreBase64,
  kEncodedName,
  kUnreadName,
  kUnlistedPart,
  kNoSender,
  kNoContentType,
  kPackedFile,
  kEmptyFile,
  kNamedText,
  kListedMultipart,
  kRepeatedParameter,
  kPiece,
};

// Where in a message something was found.
struct Place {
  std::optional<std::size_t> part;  // index in PartTree; unset: not known
  std::size_t line = kNoLine;       // in the bytes of the message; kNoLine: not known
};

struct Finding {
  std::string_view code;  // identifier for programs; never changes
  Place place;
  std::string text;  // sentence for a reader, escaped for a terminal, on one line
};

class Findings {
 public:
  // Adds a finding. `details` replace the placeholders in the text of its kind.
  void Add(FindingKind kind, const Place& place,
           std::initializer_list<std::string_view> details = {});

  // Returns the findings, sorted by line. Findings without a line come last.
  std::vector<Finding> Take();

 private:
  std::vector<Finding> list_;
};

// All codes, each once, in the order of the documentation.
std::vector<std::string> FindingCodes();

// Names a place for a reader: "message" or "part 5.2", and "line 14". Empty when it is not known.
std::string PartText(const Place& place, const PartTree& tree);
std::string LineText(const Place& place);

// Returns a text from the message in double quotes, escaped for a terminal and shortened.
std::string Quoted(std::string_view text);

}  // namespace zqv::cli
