#include "mime/parser.h"

#include <mimetic/parser/itparser.h>

#include <iterator>
#include <memory>

#include "mime/header_loader.h"
#include "mime/limits.h"
#include "mime/open_boundaries.h"

namespace zqv::mime {
namespace {

// What the parse of one message knows beside the library's own parser.
struct ParseState {
  MessageLimits limits;
  OpenBoundaries boundaries;
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

// Our own reading of a header, which leaves the position where the library's would.
template <>
void zqv::mime::MessageParser::loadHeader() {
  zqv::mime::ParseState& state = m_eit.state();
  const zqv::mime::HeaderEnd header =
      zqv::mime::LoadHeader(m_bit.at(), m_eit.at(), m_entityStack.top()->header(), state.limits);
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

void ParseMessage(std::string_view message, mimetic::MimeEntity& top) {
  ParseState state;
  MessageParser parser(top);
  parser.run(ByteIterator(message.data(), &state),
             ByteIterator(message.data() + message.size(), &state));
}

}  // namespace zqv::mime
