#include "mime/parser.h"

#include <mimetic/parser/itparser.h>

#include <iterator>
#include <memory>
#include <stdexcept>

#include "host/stack.h"
#include "mime/header_loader.h"

namespace zqv::mime {
namespace {

// What one parse may still add.
class ParseLimits {
 public:
  // Called for each new entity with the number of levels above it.
  void Admit(std::size_t levels) {
    if (++entities_ > kMostEntities) throw std::runtime_error("the message has too many parts");
    if (levels < kLevelsUnmeasured) return;
    if (most_levels_ == 0) most_levels_ = MeasureLevels(levels);
    if (levels > most_levels_) throw std::runtime_error("the message is nested too deeply");
  }

 private:
  static std::size_t MeasureLevels(std::size_t levels) {
    const std::optional<std::size_t> left = host::StackLeft();
    if (!left.has_value()) return kLevelsUnknown;
    if (*left <= kStackReserve) return levels;
    return levels + (*left - kStackReserve) / kStackPerLevel;
  }

  std::size_t entities_ = 1;     // the message itself
  std::size_t most_levels_ = 0;  // 0: not measured yet
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
  ByteIterator(const char* at, ParseLimits* limits) : at_(at), limits_(limits) {}

  reference operator*() const { return *at_; }
  ByteIterator& operator++() {
    ++at_;
    return *this;
  }
  bool operator==(const ByteIterator& other) const { return at_ == other.at_; }
  bool operator!=(const ByteIterator& other) const { return at_ != other.at_; }

  const char* at() const { return at_; }

  // Of the parse that this position belongs to.
  ParseLimits& limits() const { return *limits_; }

 private:
  const char* at_ = nullptr;
  ParseLimits* limits_ = nullptr;
};

using MessageParser = mimetic::IteratorParser<ByteIterator, std::input_iterator_tag>;

}  // namespace
}  // namespace zqv::mime

namespace mimetic {

// The library's own member but for the limits and for giving back the child when the list cannot
// take it. Throwing here leaks nothing.
template <>
void zqv::mime::MessageParser::pushNewChild() {
  m_eit.limits().Admit(m_entityStack.size());
  MimeEntityList& parts = m_entityStack.top()->body().parts();
  auto child = std::make_unique<MimeEntity>();
  parts.push_back(child.get());
  m_entityStack.push(child.release());
}

// Our own reading of a header, which leaves the position where the library's would.
template <>
void zqv::mime::MessageParser::loadHeader() {
  const zqv::mime::HeaderEnd header =
      zqv::mime::LoadHeader(m_bit.at(), m_eit.at(), m_entityStack.top()->header());
  m_bit = zqv::mime::ByteIterator(header.at, &m_eit.limits());
  m_entityStack.top()->body().append(header.body_start);
}

}  // namespace mimetic

namespace zqv::mime {

void ParseMessage(std::string_view message, mimetic::MimeEntity& top) {
  ParseLimits limits;
  MessageParser parser(top);
  parser.run(ByteIterator(message.data(), &limits),
             ByteIterator(message.data() + message.size(), &limits));
}

}  // namespace zqv::mime
