#include "cli/findings.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "cli/text.h"

namespace zqv::cli {
namespace {

constexpr std::size_t kMostQuoted = 60;  // columns

struct Row {
  Oddity oddity;
  std::string_view code;
  std::string_view text;  // "{}" stands for a detail
};

// In the order of the enumeration.
constexpr Row kRows[] = {
    {Oddity::kNoBlankLine, "no-blank-line",
     "no blank line ends the header: {} is taken for text of the body"},
    {Oddity::kDelimiterInHeader, "no-blank-line",
     "no blank line ends the header: the boundary {} is taken for text of the body"},
    {Oddity::kCutHeader, "cut-header", "the message ends within a header: its last field is lost"},
    {Oddity::kUnterminatedMultipart, "unterminated-multipart",
     "the multipart is not closed: no line --{}-- before {}"},
    {Oddity::kNoBoundary, "no-boundary",
     "the multipart names no boundary: every line that begins with -- divides it"},
    {Oddity::kEmptyMultipart, "empty-multipart",
     "the multipart has no parts: no line --{} begins one"},
    {Oddity::kLostParts, "lost-parts",
     "{} lost: the library reads no further, as a multipart above is not closed"},
    {Oddity::kRepeatedField, "repeated-field",
     "{} stands {} times where one is allowed: the {} counts"},
    {Oddity::kBadDate, "bad-date", "{} is no proper date: the message's date is a guess"},
    {Oddity::kEarlyYear, "early-year", "the year in {} is before 1000: it is taken as it stands"},
    {Oddity::kLowerCaseWord, "lower-case-word",
     "an encoded word in {} has a lower-case {} and stays undecoded: {}"},
    {Oddity::kUnknownWordCharset, "unknown-word-charset",
     "an encoded word in {} names the unknown charset {}"},
    {Oddity::kMixedCharsets, "mixed-charsets",
     "encoded words in {} name several charsets: the last one counts for all"},
    {Oddity::kFieldBytes, "field-bytes",
     "bytes in {} are not taken for UTF-8: they are read as Mac Roman"},
    {Oddity::kZeroByteInField, "zero-byte-in-field",
     "a zero byte stands in {}: what follows in the field is lost"},
    {Oddity::kLoneCr, "lone-cr", "a line of the header ends with a CR alone, others do not"},
    {Oddity::kBadContentType, "bad-content-type",
     "the Content-Type {} is not type/subtype: the part is taken for a file"},
    {Oddity::kUnknownCharset, "unknown-charset", "unknown charset {}: the text has no encoding"},
    {Oddity::kWrongCharset, "wrong-charset", "the text is not in the charset {}"},
    {Oddity::kGuessedCharset, "guessed-charset",
     "no charset, and the text is not taken for UTF-8: it is read as Mac Roman"},
    {Oddity::kZeroByteInText, "zero-byte-in-text", "a zero byte stands in the text"},
    {Oddity::kUnknownTransferEncoding, "unknown-transfer-encoding",
     "unknown transfer encoding {}: the part is not decoded"},
    {Oddity::kEncodedMessage, "encoded-message",
     "the attached message is in {}: it is read without decoding"},
    {Oddity::kForeignInBase64, "bad-base64",
     "the part's base64 has other characters in it: its data are damaged"},
    {Oddity::kCutBase64, "bad-base64", "the part's base64 is cut off: its data are not whole"},
    {Oddity::kMoreBase64, "bad-base64",
     "the part's base64 goes on after its padding: some readers stop there"},
    {Oddity::kEncodedName, "encoded-name", "the file name stays encoded: {}"},
    {Oddity::kUnreadName, "unread-name", "the file name in {} is not read"},
    {Oddity::kUnlistedPart, "unlisted-part",
     "the part is in no list: no attachment, no inline part, not the message's text"},
    {Oddity::kNoSender, "no-sender", "no address is in From: {}"},
    {Oddity::kNoContentType, "no-content-type",
     "the message has no Content-Type: the library gives it no type and lists its text as a file"},
    {Oddity::kPackedFile, "packed-file",
     "the file {} is packed in {}: the library does not see it"},
    {Oddity::kEmptyFile, "empty-file", "the file {} has no bytes"},
    {Oddity::kNamedText, "named-text",
     "the message's own text is called {}: the library shows the name nowhere"},
    {Oddity::kFrame, "frame-attachment",
     "the library lists the {} as a file, which has no bytes of its own"},
    {Oddity::kRepeatedParameter, "repeated-parameter",
     "the parameter {} stands several times in {}, with different values"},
    {Oddity::kPiece, "message-piece",
     "the message is a piece of one: only with the others it can be read"},
};

constexpr bool IsInOrder() {
  std::size_t index = 0;
  for (const Row& row : kRows) {
    if (static_cast<std::size_t>(row.oddity) != index) return false;
    ++index;
  }
  return index == static_cast<std::size_t>(Oddity::kPiece) + 1;
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

void Findings::Add(Oddity oddity, const Place& place,
                   std::initializer_list<std::string_view> details) {
  const Row& row = kRows[static_cast<std::size_t>(oddity)];
  list_.push_back({row.code, place, Filled(row.text, details)});
}

std::vector<Finding> Findings::Take() {
  std::stable_sort(list_.begin(), list_.end(), [](const Finding& a, const Finding& b) {
    return a.place.line - 1 < b.place.line - 1;  // kNoLine becomes the greatest
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
