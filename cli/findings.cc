#include "cli/findings.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "cli/text.h"

namespace zqv::cli {
namespace {

constexpr std::size_t kMostQuoted = 60;  // columns

struct Row {
  FindingKind kind;
  std::string_view code;
  std::string_view text;  // "{}" is replaced by a detail
};

// In the order of the enumeration.
constexpr Row kRows[] = {
    {FindingKind::kNoBlankLine, "no-blank-line",
     "no blank line ends the header: {} is taken for text of the body"},
    {FindingKind::kDelimiterInHeader, "no-blank-line",
     "no blank line ends the header: the boundary {} is taken for text of the body"},
    {FindingKind::kCutHeader, "cut-header",
     "the message ends within a header: its last field is lost"},
    {FindingKind::kUnterminatedMultipart, "unterminated-multipart",
     "the multipart is not closed: no line --{}-- before {}"},
    {FindingKind::kNoBoundary, "no-boundary",
     "the multipart has no boundary parameter: every line that begins with -- is taken for a "
     "boundary"},
    {FindingKind::kEmptyMultipart, "empty-multipart",
     "the multipart has no parts: no line --{} begins one"},
    {FindingKind::kLostParts, "lost-parts",
     "{} lost: the library stops at the boundary of an outer multipart while an inner one is not "
     "closed"},
    {FindingKind::kRepeatedField, "repeated-field",
     "{} occurs {} times, but is allowed once: the {} is used"},
    {FindingKind::kBadDate, "bad-date", "{} is not a valid date: the message's date is a guess"},
    {FindingKind::kEarlyYear, "early-year", "the year in {} is before 1000: no century is added"},
    {FindingKind::kLowerCaseWord, "lower-case-word",
     "an encoded word in {} has a lower-case {} and is not decoded: {}"},
    {FindingKind::kUnknownWordCharset, "unknown-word-charset",
     "an encoded word in {} names the unknown charset {}"},
    {FindingKind::kMixedCharsets, "mixed-charsets",
     "encoded words in {} name several charsets: the last one counts for all"},
    {FindingKind::kFieldBytes, "field-bytes",
     "bytes in {} are not taken for UTF-8: they are read as Mac Roman"},
    {FindingKind::kZeroByteInField, "zero-byte-in-field",
     "{} contains a zero byte: the rest of the field is lost"},
    {FindingKind::kLoneCr, "lone-cr", "a line of the header ends with a single CR, others do not"},
    {FindingKind::kBadContentType, "bad-content-type",
     "the Content-Type {} is not type/subtype: the part is listed as a file"},
    {FindingKind::kUnknownCharset, "unknown-charset",
     "unknown charset {}: the text has no encoding"},
    {FindingKind::kWrongCharset, "wrong-charset", "the text is not in the charset {}"},
    {FindingKind::kGuessedCharset, "guessed-charset",
     "no charset, and the text is not taken for UTF-8: it is read as Mac Roman"},
    {FindingKind::kZeroByteInText, "zero-byte-in-text", "the text contains a zero byte"},
    {FindingKind::kUnknownTransferEncoding, "unknown-transfer-encoding",
     "unknown transfer encoding {}: the part is not decoded"},
    {FindingKind::kEncodedMessage, "encoded-message",
     "the attached message is in {}: it is read without decoding"},
    {FindingKind::kForeignInBase64, "bad-base64",
     "the part's base64 contains other characters: its data are damaged"},
    {FindingKind::kCutBase64, "bad-base64",
     "the part's base64 is cut off: its data are incomplete"},
    {FindingKind::kMoreBase64, "bad-base64",
     "the part's base64 goes on after its padding: some readers stop there"},
    {FindingKind::kEncodedName, "encoded-name", "the file name stays encoded: {}"},
    {FindingKind::kUnreadName, "unread-name", "the library does not read the file name in {}"},
    {FindingKind::kUnlistedPart, "unlisted-part",
     "the part is in no list: it is neither an attachment nor an inline part, nor the message's "
     "text"},
    {FindingKind::kNoSender, "no-sender", "From has no address: {}"},
    {FindingKind::kNoContentType, "no-content-type",
     "the message has no Content-Type: the library gives it no type and lists its text as a file"},
    {FindingKind::kPackedFile, "packed-file",
     "the file {} is packed in {}: the library does not see it"},
    {FindingKind::kEmptyFile, "empty-file", "the file {} has no bytes"},
    {FindingKind::kNamedText, "named-text",
     "the message's own text has the file name {}, which no property gives"},
    {FindingKind::kListedMultipart, "frame-attachment",
     "the library lists the {} as an attachment, which has no bytes of its own"},
    {FindingKind::kRepeatedParameter, "repeated-parameter",
     "the parameter {} occurs several times in {}, with different values"},
    {FindingKind::kPiece, "message-piece",
     "the message is one piece of another, which can be read only when all pieces are joined"},
};

constexpr bool IsInOrder() {
  std::size_t index = 0;
  for (const Row& row : kRows) {
    if (static_cast<std::size_t>(row.kind) != index) return false;
    ++index;
  }
  return index == static_cast<std::size_t>(FindingKind::kPiece) + 1;
}
static_assert(IsInOrder());

std::string Filled(std::string_view text, std::initializer_list<std::string_view> details) {
  constexpr std::string_view kGap = "{}";
  std::string filled;
  for (const std::string_view detail : details) {
    const std::size_t gap = text.find(kGap);
    filled += text.substr(0, gap);
    filled += detail;
    text.remove_prefix(std::min(gap, text.size() - kGap.size()) + kGap.size());
  }
  return filled += text;
}

}  // namespace

void Findings::Add(FindingKind kind, const Place& place,
                   std::initializer_list<std::string_view> details) {
  const Row& row = kRows[static_cast<std::size_t>(kind)];
  list_.push_back({row.code, place, Filled(row.text, details)});
}

std::vector<Finding> Findings::Take() {
  std::stable_sort(list_.begin(), list_.end(), [](const Finding& a, const Finding& b) {
    // KNoLine is 0, so that it becomes the greatest number.
    return a.place.line - 1 < b.place.line - 1;
  });
  return std::move(list_);
}

std::vector<std::string> FindingCodes() {
  std::vector<std::string> codes;
  for (const Row& row : kRows) {
    if (codes.empty() || codes.back() != row.code) codes.emplace_back(row.code);
  }
  return codes;
}

std::string PartText(const Place& place, const PartTree& tree) {
  if (!place.part) return {};
  return *place.part == 0 ? "message" : "part " + tree.Number(*place.part);
}

std::string LineText(const Place& place) {
  return place.line == kNoLine ? std::string() : "line " + std::to_string(place.line);
}

std::string Quoted(std::string_view text) {
  const std::string safe = SafeText(text.substr(0, 4 * kMostQuoted), Lines::kOne);
  return '"' + CutToWidth(safe, kMostQuoted) + '"';
}

}  // namespace zqv::cli
