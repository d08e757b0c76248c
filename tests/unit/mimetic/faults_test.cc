// Each fault of mimetic that third_party/mimetic/mendings.cmake mends, shown to be gone. A fault
// that only reads out of bounds is seen by the address sanitizer or the checked standard library.
#include <gtest/gtest.h>
#include <mimetic/mimetic.h>
#include <mimetic/rfc822/datetime.h>
#include <rapidcheck.h>

#include <cstddef>
#include <iterator>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

std::string DecodeRange(const std::string& text) {
  mimetic::Base64::Decoder decoder;
  std::string out;
  decoder.process(text.begin(), text.end(), std::back_inserter(out));
  return out;
}

std::string DecodeByteByByte(const std::string& text) {
  mimetic::Base64::Decoder decoder;
  std::string out;
  auto sink = std::back_inserter(out);
  for (const char c : text) decoder.process(static_cast<unsigned char>(c), sink);
  decoder.flush(sink);
  return out;
}

// '|' is 124, the number of rows of the decoder's table.
TEST(MimeticFaults, Base64DecoderSkipsTheByteJustPastItsTable) {
  EXPECT_EQ(DecodeRange("QU|JD||||"), "ABC");
  EXPECT_EQ(DecodeByteByByte("QU|JD||||"), "ABC");
}

TEST(MimeticFaults, Base64DecoderSkipsEveryByteAboveItsTable) {
  std::string text = "QUJD";
  for (int byte = 123; byte < 256; ++byte) text += static_cast<char>(byte);
  EXPECT_EQ(DecodeRange(text), "ABC");
  EXPECT_EQ(DecodeByteByByte(text), "ABC");
}

TEST(MimeticFaults, CanonicalOfBlanksIsEmpty) {
  EXPECT_EQ(mimetic::canonical(" "), "");
  EXPECT_EQ(mimetic::canonical("    "), "");
  // Longer than a string keeps in itself, so that the byte before it belongs to nobody.
  EXPECT_EQ(mimetic::canonical(std::string(100, ' ')), "");
}

TEST(MimeticFaults, CanonicalCutsBlanksAndNothingElse) {
  EXPECT_EQ(mimetic::canonical("a"), "a");
  EXPECT_EQ(mimetic::canonical("a "), "a");
  EXPECT_EQ(mimetic::canonical("  ab   "), "ab");
  EXPECT_EQ(mimetic::Mailbox("a@b.c ").domain(), "b.c");
}

TEST(MimeticFaults, DateKeepsTheLastDigitOfItsZoneBeforeABlank) {
  const mimetic::DateTime date("Mon, 1 Jan 2024 10:00:00 +0200 ");
  EXPECT_EQ(date.zone().ordinal(), 200);
}

// A value that getField() may replace again, and that knows how many of its kind are alive.
class CountedValue : public mimetic::FieldValue {
 public:
  CountedValue() { Begin(); }
  explicit CountedValue(const std::string& text) : text_(text) { Begin(); }
  CountedValue(const CountedValue& other) : mimetic::FieldValue(other), text_(other.text_) {
    Begin();
  }
  CountedValue& operator=(const CountedValue&) = delete;
  ~CountedValue() override { --alive; }

  void set(const std::string& text) override { text_ = text; }
  std::string str() const override { return text_; }
  mimetic::FieldValue* clone() const override { return new CountedValue(*this); }

  static int alive;

 private:
  void Begin() {
    typeChecked(false);
    ++alive;
  }

  std::string text_;
};

int CountedValue::alive = 0;

// A value that cannot be made from text.
class RefusedValue : public CountedValue {
 public:
  RefusedValue() = default;
  explicit RefusedValue(const std::string&) { throw std::invalid_argument("refused"); }
};

class OpenHeader : public mimetic::Rfc822Header {
 public:
  using mimetic::Rfc822Header::getField;
};

// Calls getField<RefusedValue>() on `header`, const or not, whose field X holds a CountedValue.
template <typename HeaderType>
void ExpectFieldToSurvive(OpenHeader& owner, HeaderType& header) {
  owner.push_back(mimetic::Field("X", "kept"));
  header.template getField<CountedValue>("X");
  ASSERT_EQ(CountedValue::alive, 1);
  EXPECT_THROW(header.template getField<RefusedValue>("X"), std::invalid_argument);
  ASSERT_EQ(CountedValue::alive, 1);
  EXPECT_EQ(owner.begin()->value(), "kept");
}

TEST(MimeticFaults, FieldKeepsItsValueWhenTheTypedOneCannotBeMade) {
  {
    OpenHeader header;
    ExpectFieldToSurvive(header, header);
  }
  EXPECT_EQ(CountedValue::alive, 0);
}

TEST(MimeticFaults, FieldKeepsItsValueWhenTheTypedOneCannotBeMadeConst) {
  {
    OpenHeader header;
    ExpectFieldToSurvive<const OpenHeader>(header, header);
  }
  EXPECT_EQ(CountedValue::alive, 0);
}

// The label ends where the text has a NUL; what lies behind it is not the label's.
TEST(MimeticFaults, ATextThatGoesOnBehindALabelIsAnother) {
  const std::string may("May\0x", 5);
  EXPECT_EQ(mimetic::DateTime::Month(may).ordinal(), 0);
  EXPECT_EQ(mimetic::DateTime::Month("May").ordinal(), 5);
  EXPECT_FALSE(mimetic::istring(may) == "May");
  EXPECT_TRUE(mimetic::istring("mAy") == "May");
  EXPECT_FALSE(mimetic::istring("Ma") == "May");
}

TEST(MimeticFaults, GroupWithoutMembersAndSemicolonIsEmpty) {
  const mimetic::Group group("undisclosed-recipients:");
  EXPECT_EQ(group.name(), "undisclosed-recipients");
  EXPECT_TRUE(group.empty());

  const mimetic::Group cut("G: a@b.c,");
  ASSERT_EQ(cut.size(), 1U);
  EXPECT_EQ(cut.front().mailbox(), "a");

  const mimetic::AddressList list("undisclosed-recipients:");
  ASSERT_EQ(list.size(), 1U);
  EXPECT_TRUE(list.front().isGroup());
}

using StringParser = mimetic::IteratorParser<std::string::const_iterator, std::input_iterator_tag>;

// The parser's growing buffer alone. Adds up what every growth asks for.
class GrowingBuffer : private StringParser {
 public:
  GrowingBuffer() : StringParser(entity_) {}
  GrowingBuffer(const GrowingBuffer&) = delete;
  GrowingBuffer& operator=(const GrowingBuffer&) = delete;
  ~GrowingBuffer() override { delete[] buffer_; }

  void Append(char c) {
    const std::size_t before = capacity_;
    append(buffer_, capacity_, c, size_);
    if (capacity_ != before) requested_ += capacity_;
  }
  std::string str() const { return std::string(buffer_, size_); }
  std::size_t requested() const { return requested_; }

 private:
  mimetic::MimeEntity entity_;
  char* buffer_ = nullptr;
  std::size_t capacity_ = 0;
  std::size_t size_ = 0;
  std::size_t requested_ = 0;
};

TEST(MimeticFaults, LongFieldsGrowInProportionToTheirLength) {
  constexpr std::size_t kLength = 1 << 20;
  GrowingBuffer buffer;
  std::string expected;
  for (std::size_t i = 0; i < kLength; ++i) {
    const char c = static_cast<char>('a' + i % 26);
    buffer.Append(c);
    expected += c;
  }
  EXPECT_EQ(buffer.str(), expected);
  EXPECT_LE(buffer.requested(), 4 * kLength);
}

TEST(MimeticFaults, LongFieldArrivesWhole) {
  for (const std::size_t length : {127U, 128U, 129U, 255U, 256U, 257U, 100000U}) {
    const std::string value(length, 'v');
    const std::string name(length, 'n');
    const std::string message = name + ": " + value + "\n\nbody\n";
    mimetic::MimeEntity entity;
    StringParser parser(entity);
    parser.run(message.begin(), message.end());
    ASSERT_EQ(entity.header().size(), 1U);
    EXPECT_EQ(entity.header().front().value(), value);
    EXPECT_EQ(std::string(entity.header().front().name().c_str()), name);
    EXPECT_EQ(entity.body(), "body\n");
  }
}

// Every text of up to `most` of these characters.
template <typename Visit>
void ForEachText(const std::string& characters, std::size_t most, const Visit& visit,
                 const std::string& text = {}) {
  visit(text);
  if (text.size() == most) return;
  for (const char c : characters) ForEachText(characters, most, visit, text + c);
}

// The rules of canonical(), one character after the other from the right: a comment becomes a space
// or nothing, and without blanks those outside of quotes and comments go, up to the first '>'.
std::string SlowCanonical(const std::string& text, bool without_blanks) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  const std::string trimmed = text.substr(first, text.find_last_not_of(' ') - first + 1);
  std::string result;
  std::string comment;  // open since its ')'
  bool in_quotes = false;
  bool in_angles = false;
  int depth = 0;
  for (auto at = trimmed.rbegin(); at != trimmed.rend(); ++at) {
    const char c = *at;
    bool ends_comment = false;
    bool is_dropped = false;
    if (c == '"') {
      in_quotes = !in_quotes;
    } else if (!in_quotes) {
      in_angles = in_angles || c == '>';
      if (c == ')') ++depth;
      if (c == '(') ends_comment = --depth == 0;
      is_dropped = c == ' ' && without_blanks && depth == 0 && !in_angles;
    }
    if (ends_comment) {
      comment.clear();
      if (!without_blanks) result.insert(0, 1, ' ');
    } else if (depth > 0) {
      comment.insert(0, 1, c);
    } else if (!is_dropped) {
      result.insert(0, 1, c);
    }
  }
  return comment + result;
}

TEST(MimeticFaults, CanonicalKeepsItsResultsInLinearTime) {
  const bool agreed = rc::check([] {
    const std::string text =
        *rc::gen::container<std::string>(rc::gen::elementOf(std::string("  ab\"()<>@.,\t")));
    RC_ASSERT(mimetic::canonical(text, true) == SlowCanonical(text, true));
    RC_ASSERT(mimetic::canonical(text, false) == SlowCanonical(text, false));
  });
  EXPECT_TRUE(agreed);
}

TEST(MimeticFaults, CanonicalKeepsItsResultsOnEveryShortText) {
  std::size_t different = 0;
  ForEachText(" a\"()>", 7, [&](const std::string& text) {
    if (mimetic::canonical(text, true) != SlowCanonical(text, true)) ++different;
    if (mimetic::canonical(text, false) != SlowCanonical(text, false)) ++different;
  });
  EXPECT_EQ(different, 0U);
}

TEST(MimeticFaults, CanonicalByHand) {
  EXPECT_EQ(mimetic::canonical(" a (x (y) \")\") b ", true), "ab");
  EXPECT_EQ(mimetic::canonical(" a (x (y) \")\") b ", false), "a   b");
  EXPECT_EQ(mimetic::canonical("a b <c d> e f", true), "a b <c d>ef");
  EXPECT_EQ(mimetic::canonical("\"a b\" c", true), "\"a b\"c");
  EXPECT_EQ(mimetic::canonical("a ( b", true), "a (b");
  EXPECT_EQ(mimetic::canonical("a ) b", true), "a )b");
}

// A field in lines of at most `fold` characters where it has blanks outside of quotes.
std::string SlowFold(const std::string& name, const std::string& value, std::size_t fold) {
  std::string rest = name + ": " + value;
  std::string written;
  for (std::size_t skip = name.size() + 2; rest.size() > fold; skip = 0) {
    std::size_t blank = 0;
    bool in_quotes = false;
    for (std::size_t i = skip; i < rest.size() && (i <= fold || blank == 0); ++i) {
      if (rest[i] == '"' && (i == skip || rest[i - 1] != '\\')) in_quotes = !in_quotes;
      if (!in_quotes && (rest[i] == ' ' || rest[i] == '\t')) blank = i;
    }
    if (blank == 0) break;
    written += rest.substr(0, blank);
    rest.erase(0, blank + 1);
    if (rest.find_first_not_of(" \t") != std::string::npos) written += "\r\n\t";
  }
  return written + rest;
}

TEST(MimeticFaults, WritingAFieldKeepsItsResultsInLinearTime) {
  constexpr unsigned kFold = 6;
  const bool agreed = rc::check([] {
    const std::string name = *rc::gen::container<std::string>(rc::gen::just('n'));
    const std::string value =
        *rc::gen::container<std::string>(rc::gen::elementOf(std::string("  ab\"\\\t;")));
    std::ostringstream stream;
    mimetic::Field(name, value).write(stream, kFold);
    RC_ASSERT(stream.str() == SlowFold(name, value, kFold));
  });
  EXPECT_TRUE(agreed);
}

TEST(MimeticFaults, WritingAFieldKeepsItsResultsOnEveryShortText) {
  constexpr unsigned kFold = 3;
  std::size_t different = 0;
  ForEachText(" a\"\\", 8, [&](const std::string& value) {
    std::ostringstream stream;
    mimetic::Field("", value).write(stream, kFold);
    if (stream.str() != SlowFold("", value, kFold)) ++different;
  });
  EXPECT_EQ(different, 0U);
}

TEST(MimeticFaults, WritingAFieldByHand) {
  const auto written = [](const std::string& value) {
    std::ostringstream stream;
    mimetic::Field("N", value).write(stream, 8);
    return stream.str();
  };
  EXPECT_EQ(written("ab cd ef"), "N: ab cd\r\n\tef");
  EXPECT_EQ(written("\"a b c\" d"), "N: \"a b c\"\r\n\td");
  EXPECT_EQ(written("abcdefghij"), "N: abcdefghij");
  EXPECT_EQ(written("ab cd    "), "N: ab cd   ");
}

}  // namespace
