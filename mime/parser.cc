#include "mime/parser.h"

#include <mimetic/parser/itparser.h>

#include <cstddef>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

#include "host/bytes16.h"
#include "mime/header_loader.h"
#include "mime/limits.h"
#include "mime/line_ends.h"
#include "mime/open_boundaries.h"
#include "text/ascii.h"

namespace zqv::mime {
namespace {

// What the parse of one message knows beside the library's own parser.
struct ParseState {
  ParseState(std::string_view message, MessageTexts* message_texts)
      : line_ends(message.data()), texts(message_texts) {}

  MessageLimits limits;
  OpenBoundaries boundaries;
  LineEndFinder line_ends;
  MessageTexts* texts;  // null: the tree gets copies
};

// A position in the message. An input iterator to the library: any stronger kind selects another
// algorithm there, with other results.
class ByteIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  ByteIterator() = default;
  ByteIterator(const char* at, ParseState* state) : at_(at), state_(state) {}

  reference operator*() const { return *at_; }
  ByteIterator& operator++() {
    ++at_;
    return *this;
  }
  bool operator==(const ByteIterator& other) const { return at_ == other.at_; }
  bool operator!=(const ByteIterator& other) const { return at_ != other.at_; }

  const char* at() const { return at_; }

  // Of the parse that this position belongs to.
  ParseState& state() const { return *state_; }

 private:
  const char* at_ = nullptr;
  ParseState* state_ = nullptr;
};

using host::Bytes16;
using host::kBytes16;
using text::IsLineEnd;

// The lines of a text, up to a boundary, as the library reads them.
//
// QUIRK: the library reads through a buffer of 4,096 bytes and knows of a text only what is in it.
// When it is full, all but the last line is written out of it; of a line that fills it alone, all
// is, and what follows counts as the start of a line. So the line end before a boundary stays when
// it was written out just before. Test:
// Parser.GivesTheLibrarysTreeForEveryBodyLengthAroundItsBlocks.
class BlockReader {
 public:
  BlockReader(const char* at, const char* end, LineEndFinder& line_ends)
      : at_(at), end_(end), searched_(at), block_(at), line_(at), line_ends_(line_ends) {}

  const char* at() const { return at_; }
  // The line that was read, which begins no earlier than the buffer.
  std::string_view line() const { return {line_, static_cast<std::size_t>(line_end_ - line_)}; }

  // Reads a line and its end; false when the text ends first. Lines that are surely no boundary are
  // passed over.
  bool ReadLine() {
    SkipPlainLines();
    line_ = at_;
    while (true) {
      EmptyFullBuffer();
      line_end_ = line_ends_.Next(at_, Full());
      at_ = line_end_;
      if (at_ == end_) return false;
      if (at_ == Full()) continue;
      at_ = SkipLineEnd(at_, end_);
      return true;
    }
  }

  // Where the text ends when the line that was read is a boundary: before the line end in front of
  // it, if that is in the buffer.
  const char* TextEnd() const {
    const std::ptrdiff_t before = line_ - block_;
    if (before >= 2 && IsPair(line_[-1], line_[-2])) return line_ - 2;
    return before >= 1 && IsLineEnd(line_[-1]) ? line_ - 1 : line_;
  }

 private:
  static constexpr std::ptrdiff_t kBlock = 4093;
  static constexpr std::ptrdiff_t kStep = 4 * kBytes16;

  // Where the buffer is full, or the text ends.
  const char* Full() const { return end_ - block_ > kBlock ? block_ + kBlock : end_; }

  static Bytes16 AreLineEnds(Bytes16 c) { return (c == '\r') | (c == '\n'); }

  // From the start of a line to that of another, with all between in the buffer: the last one, or
  // the first that begins with "-".
  void SkipPlainLines() {
    if (at_ < searched_ || (at_ != end_ && *at_ == '-')) return;
    const char* const full = Full();
    const char* block = at_;
    while (full - block > kStep && !host::AnyOf(DashesIn(block))) block += kStep;
    for (; full - block > static_cast<std::ptrdiff_t>(kBytes16); block += kBytes16) {
      const Bytes16 dashes = DashesAt(block);
      if (host::AnyOf(dashes)) {
        at_ = block + host::FirstOf(dashes) + 1;
        return;
      }
    }
    at_ = LastLine(block);
    searched_ = full;
  }

  // After which of sixteen bytes a line begins with "-".
  static Bytes16 DashesAt(const char* bytes) {
    return AreLineEnds(host::LoadBytes16(bytes)) & (host::LoadBytes16(bytes + 1) == '-');
  }
  // The same of a step's bytes, all in one.
  static Bytes16 DashesIn(const char* bytes) {
    return DashesAt(bytes) | DashesAt(bytes + kBytes16) | DashesAt(bytes + 2 * kBytes16) |
           DashesAt(bytes + 3 * kBytes16);
  }

  // The start of the last line that begins between here and `end`.
  const char* LastLine(const char* end) const {
    while (end != at_ && !IsLineEnd(end[-1])) --end;
    return end;
  }

  void EmptyFullBuffer() {
    if (at_ - block_ < kBlock) return;
    if (line_ == block_) line_ = at_;
    block_ = line_;
  }

  const char* at_;
  const char* const end_;
  const char* searched_;  // before it there is no other line to pass on to
  const char* block_;     // the first byte that is in the buffer
  const char* line_;
  const char* line_end_ = nullptr;
  LineEndFinder& line_ends_;
};

const mimetic::ContentType& TypeOf(const mimetic::MimeEntity& entity, const ParseState& state) {
  return state.texts != nullptr ? state.texts->TypeOf(entity)
                                : std::as_const(entity.header()).contentType();
}

using MessageParser = mimetic::IteratorParser<ByteIterator, std::input_iterator_tag>;

}  // namespace
}  // namespace zqv::mime

namespace mimetic {

// The library's own member but for the limits and for giving back the child when the list cannot
// take it. Throwing here leaks nothing.
template <>
void zqv::mime::MessageParser::pushNewChild() {
  m_eit.state().limits.AdmitEntity(m_entityStack.size());
  MimeEntityList& parts = m_entityStack.top()->body().parts();
  auto child = std::make_unique<MimeEntity>();
  parts.push_back(child.get());
  m_entityStack.push(child.release());
}

// The library's own two, but that the type is where the fields are.
template <>
zqv::mime::MessageParser::EntityType zqv::mime::MessageParser::getType() {
  const ContentType& type = zqv::mime::TypeOf(*m_entityStack.top(), m_eit.state());
  if (type.isMultipart()) return etMultipart;
  return type.type() == "message" && type.subtype() == "rfc822" ? etMsgRfc822 : etRfc822;
}
template <>
std::string zqv::mime::MessageParser::getBoundary() {
  return "--" + zqv::mime::TypeOf(*m_entityStack.top(), m_eit.state()).param("boundary");
}

// Our own reading of a header, which leaves the position where the library's would.
template <>
void zqv::mime::MessageParser::loadHeader() {
  zqv::mime::ParseState& state = m_eit.state();
  const zqv::mime::HeaderEnd header = zqv::mime::LoadHeader(
      m_bit.at(), m_eit.at(), *m_entityStack.top(), state.limits, state.line_ends, state.texts);
  m_bit = zqv::mime::ByteIterator(header.at, &state);
  m_entityStack.top()->body().append(header.body_start);
}

// The library asks every open boundary, innermost first, and tells only of the innermost whether it
// closes.
template <>
zqv::mime::MessageParser::BoundaryType zqv::mime::MessageParser::isBoundary(
    const std::string& line) {
  const zqv::mime::OpenBoundaries& open = m_eit.state().boundaries;
  m_lastBoundary = NoBoundary;
  if (open.IsEmpty()) return m_lastBoundary;
  const std::string& innermost = open.Innermost();
  if (line.compare(0, innermost.size(), innermost) == 0) {
    const bool closes = line.compare(innermost.size(), 2, "--") == 0;
    m_lastBoundary = closes ? ClosingBoundary : Boundary;
  } else if (open.AnyBegins(line)) {
    m_lastBoundary = HigherLevelBoundary;
  }
  return m_lastBoundary;
}

// The library's own member reads bytes one by one into its buffer; here the text is taken as it
// lies.
template <>
void zqv::mime::MessageParser::copy_until_boundary(ParsingElem element) {
  const char* const text = m_bit.at();
  const char* text_end = m_eit.at();
  zqv::mime::BlockReader reader(text, text_end, m_eit.state().line_ends);
  while (reader.ReadLine()) {
    const std::string_view line = reader.line();
    if (line.substr(0, 2) == "--" && isBoundary(std::string(line)) != NoBoundary) {
      text_end = reader.TextEnd();
      break;
    }
  }
  m_bit = zqv::mime::ByteIterator(reader.at(), &m_eit.state());
  zqv::mime::MessageTexts* const texts = m_eit.state().texts;
  std::string* part = nullptr;
  mimetic::Body& body = m_entityStack.top()->body();
  if (element == peBody && texts != nullptr && body.empty()) {
    texts->AddBody(*m_entityStack.top(), {text, static_cast<std::size_t>(text_end - text)});
    return;
  }
  if (element == peBody) part = &body;
  if (element == pePreamble) part = &body.preamble();
  if (element == peEpilogue) part = &body.epilogue();
  if (part != nullptr) part->append(text, static_cast<std::size_t>(text_end - text));
}

// The library's own member, with the boundaries kept where isBoundary looks for them. One that ends
// with the message stays open, as nothing asks any more.
template <>
void zqv::mime::MessageParser::loadMultipart() {
  zqv::mime::OpenBoundaries& open = m_eit.state().boundaries;
  open.Push(getBoundary());
  copy_until_boundary(pePreamble);
  while (m_bit != m_eit && m_lastBoundary == Boundary) {
    pushNewChild();
    doLoad();
    popChild();
  }
  if (m_bit == m_eit || m_lastBoundary == NoBoundary) return;
  open.Pop();
  if (m_lastBoundary == ClosingBoundary) copy_until_boundary(peEpilogue);
}

}  // namespace mimetic

namespace zqv::mime {

namespace {

void Parse(std::string_view message, mimetic::MimeEntity& top, MessageTexts* texts) {
  ParseState state(message, texts);
  MessageParser parser(top);
  parser.run(ByteIterator(message.data(), &state),
             ByteIterator(message.data() + message.size(), &state));
}

}  // namespace

void ParseMessage(std::string_view message, mimetic::MimeEntity& top) {
  Parse(message, top, nullptr);
}

void ParseMessage(std::string_view message, mimetic::MimeEntity& top, MessageTexts& texts) {
  Parse(message, top, &texts);
}

}  // namespace zqv::mime
