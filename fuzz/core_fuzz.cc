// The core only, without a host. A message is parsed, each part is decoded and routed, and the
// message is written without its files. An input is used as the message itself, and as choices of a
// grammar that makes a message.
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "email/strip.h"
#include "fuzz/message_grammar.h"
#include "fuzz/target.h"
#include "mime/message.h"
#include "tests/core/part_report.h"
#include "tests/unit/mime/tree_difference.h"

namespace zqv::fuzz {
namespace {

void ExpectIsIn(std::string_view text, std::string_view around, const char* what) {
  if (text.empty()) return;
  Expect(text.data() >= around.data() && text.data() + text.size() <= around.data() + around.size(),
         what);
}

// Checks the positions of all parts and fields.
void CheckPlaces(const mime::Message& message) {
  Expect(message.parsed_size() <= message.bytes().size(), "the parse ends in the message");
  ExpectIsIn(message.top().whole, message.bytes().substr(0, message.parsed_size()),
             "the message lies in what was parsed");
  for (const mime::Part& part : message.parts()) {
    for (const std::string_view text : {part.header, part.body, part.preamble, part.epilogue})
      ExpectIsIn(text, part.whole, "a part's texts lie in it");
    if (part.parent != mime::kNoPart) {
      ExpectIsIn(part.whole, message.parts()[part.parent].whole,
                 "a part lies in the one around it");
    }
    const mime::Header header = message.HeaderOf(part);
    for (std::size_t i = 0; i < header.size(); ++i) {
      ExpectIsIn(header[i].bytes, part.header, "a field lies in its header");
    }
  }
}

// Checks the setting by which an outer boundary ends inner multiparts: everything is parsed, and
// the parts before the first outer boundary are the same as with the other setting.
void CheckOuterBoundaries(const mime::Message& message) {
  const mime::Message whole(message.bytes(), mime::OuterBoundary::kEndsInner);
  Expect(whole.parsed_size() == message.bytes().size(), "all of the message is parsed");
  Expect(message.parts_before_outer() == message.parts().size(),
         "an outer boundary ends the parse");
  Expect(whole.parts_before_outer() == message.parts().size(), "both meet the same outer boundary");
  for (std::size_t i = 0; i < message.parts().size(); ++i) {
    const mime::Part& part = whole.parts()[i];
    const bool is_same = part.header == message.parts()[i].header &&
                         part.parent == message.parts()[i].parent &&
                         part.preamble == message.parts()[i].preamble;
    Expect(is_same, "parts before an outer boundary are the same");
  }
  CheckPlaces(whole);
}

// Checks the descriptions of the parts.
void CheckReports(const mime::Message& message) {
  std::size_t plain = 0;
  std::size_t html = 0;
  for (const test::PartReport& part : test::ReportParts(message)) {
    const bool is_listed = part.destination == "attachment" || part.destination == "inline";
    Expect(part.file_name.has_value() == is_listed, "what is listed has a file name, nothing else");
    if (is_listed) Expect(!part.file_name->bytes.empty(), "a file name is never empty");
    const bool has_no_content =
        part.destination == "container" || part.destination == "unknown encoding";
    Expect(part.decoded.has_value() != has_no_content, "what has content is decoded");
    if (has_no_content || part.decoded->bytes.empty()) continue;
    plain += part.destination == "plain text" ? 1 : 0;
    html += part.destination == "HTML" ? 1 : 0;
  }
  Expect(plain <= 1 && html <= 1, "a message has one text of each kind");
}

void CheckStripped(std::string_view input) {
  const std::string text = email::WriteWithoutFiles(input);
  Expect(text.find('\n') == text.npos, "line breaks are CRs");
  Expect(text.find('\0') == text.npos, "the text ends at a NUL");
}

void Start() {}

void Run(std::string_view input) {
  try {
    const mime::Message message(input);
    CheckPlaces(message);
    CheckOuterBoundaries(message);
    CheckReports(message);
    CheckStripped(input);
    // mimetic's parser is recursive and has no limit of nesting, so deep messages would exhaust its
    // stack.
    if (test::Levels(message) > 1'000) return;
  } catch (const std::runtime_error& error) {
    return ExpectSame("what is not parsed", std::string(error.what()).substr(0, 20),
                      "the message has too ");
  }
  ExpectSame("the trees differ", test::DifferenceFromTheReference(input), "");
}

std::string Spell(std::string_view input) { return MakeMessage(input); }

}  // namespace

const Target target = {Start, Run, Spell};

}  // namespace zqv::fuzz
