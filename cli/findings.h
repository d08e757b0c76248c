// What can be odd about a message, each with its code and its words.
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

enum class Oddity {
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
  kFrame,
  kRepeatedParameter,
  kPiece,
};

struct Place {
  std::optional<std::size_t> part;  // index in the tree
  std::size_t line = kNoLine;       // of the message's bytes
};

struct Finding {
  std::string_view code;  // stays the same from version to version
  Place place;
  std::string text;  // safe, on one line
};

class Findings {
 public:
  // The oddity's words with these details in them.
  void Add(Oddity oddity, const Place& place, std::initializer_list<std::string_view> details = {});

  // In the order of their lines; those without come last.
  std::vector<Finding> Take();

 private:
  std::vector<Finding> list_;
};

// All codes, each once, in the order of the documents.
std::vector<std::string> FindingCodes();

// For a reader: "message", "part 5.2", "line 14"; empty when it is not known.
std::string PartText(const Place& place, const PartTree& tree);
std::string LineText(const Place& place);

// A detail from the message: safe, cut when it is long, in double quotes.
std::string Quoted(std::string_view text);

}  // namespace zqv::cli
