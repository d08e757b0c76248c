#include "text/html_to_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <limits>
#include <type_traits>

#include "base/ascii.h"
#include "base/bytes16.h"
#include "base/log.h"
#include "text/html_entities.h"

namespace zqv::text {
namespace {

constexpr char32_t kTab = 9;
constexpr char32_t kLineFeed = 10;
constexpr char32_t kReturn = 13;

// How many spaces the bullets of one text may be indented by, all together. No real list comes
// near; without a limit 100 KB of nested lists make a gigabyte of spaces.
constexpr std::size_t kIndent = std::size_t{1} << 22;

constexpr std::size_t kLongestReferenceName = 8;
constexpr std::size_t kMostHexDigits = 8;

enum class Tag {
  kOther,
  kBr,
  kDiv,
  kLi,
  kList,
  kNoscript,
  kP,
  kPre,
  kScript,
  kStyle,
  kTable,
  kTd,
  kTr
};

struct TagRow {
  std::string_view name;
  Tag tag;
};

// QUIRK: "h1" to "h6" are not here. A name ends before the first digit, so headings are all the
// tag "h", which gives no line break. Test: HtmlTags.HeadingsGiveNoLineBreak.
constexpr TagRow kTags[] = {
    // clang-format off
    {"br",       Tag::kBr},
    {"div",      Tag::kDiv},
    {"li",       Tag::kLi},
    {"noscript", Tag::kNoscript},
    {"ol",       Tag::kList},
    {"p",        Tag::kP},
    {"pre",      Tag::kPre},
    {"script",   Tag::kScript},
    {"style",    Tag::kStyle},
    {"table",    Tag::kTable},
    {"td",       Tag::kTd},
    {"tr",       Tag::kTr},
    {"ul",       Tag::kList},
    // clang-format on
};
static_assert(std::size(kTags) == 13);

// The Unicode property White_Space: the process's locale has no say in what a message reads like.
struct Range {
  char32_t first, last;
};
constexpr Range kWhiteSpace[] = {
    {0x0009, 0x000D}, {0x0020, 0x0020}, {0x0085, 0x0085}, {0x00A0, 0x00A0}, {0x1680, 0x1680},
    {0x2000, 0x200A}, {0x2028, 0x2029}, {0x202F, 0x202F}, {0x205F, 0x205F}, {0x3000, 0x3000},
};
static_assert(std::size(kWhiteSpace) == 10);

bool IsWhiteSpace(char32_t c) {
  if (c > U' ' && c < U'\x85') return false;  // nearly all there is
  return std::any_of(std::begin(kWhiteSpace), std::end(kWhiteSpace),
                     [c](const Range& range) { return c >= range.first && c <= range.last; });
}

bool IsLetter(char32_t c) { return (c >= U'A' && c <= U'Z') || (c >= U'a' && c <= U'z'); }

// Those that are more than text: they begin or end a tag, begin a reference or end a line.
constexpr std::array<bool, 64> MakeMarkup() {
  std::array<bool, 64> table{};
  for (const char c : {'<', '>', '&', '\n', '\r'}) table[static_cast<unsigned char>(c)] = true;
  return table;
}
constexpr std::array<bool, 64> kMarkup = MakeMarkup();

bool IsMarkup(char32_t c) { return c < kMarkup.size() && kMarkup[c]; }

// "<" and ">" differ in one bit.
bool IsAngle(char32_t c) { return (c | 2U) == U'>'; }

// The same of the units in sixteen bytes: each byte of those that are is set.
base::Bytes16 AreAngles(const char* units) { return (base::LoadBytes16(units) | 2) == '>'; }
base::Bytes16 AreAngles(const char32_t* units) { return base::AreEqual(units, 2, '>'); }

// `name` holds ASCII letters only.
template <class Unit>
Tag FindTag(std::basic_string_view<Unit> name) {
  const auto is = [name](const TagRow& row) {
    return std::equal(
        name.begin(), name.end(), row.name.begin(), row.name.end(),
        [](Unit c, char letter) { return base::LowerAscii(static_cast<char>(c)) == letter; });
  };
  const auto* row = std::find_if(std::begin(kTags), std::end(kTags), is);
  return row != std::end(kTags) ? row->tag : Tag::kOther;
}

// The value of a digit, or one that is in no base.
std::uint32_t DigitValue(char32_t c) {
  if (c >= U'0' && c <= U'9') return c - U'0';
  if (c >= U'a' && c <= U'f') return c - U'a' + 10;
  return c >= U'A' && c <= U'F' ? c - U'A' + 10 : 16;
}

// The number at the start of `text`, the largest 32-bit one when it does not fit; 0 when there is
// none or it is negative. A "-" counts wherever it stands. Of each code point only the bits in
// `mask` are looked at.
template <class Unit>
std::uint32_t ReadNumber(std::basic_string_view<Unit> text, std::uint32_t base, char32_t mask) {
  constexpr std::uint64_t kLargest = std::numeric_limits<std::uint32_t>::max();
  std::uint64_t value = 0;
  bool negative = false;
  for (const Unit unit : text) {
    const char32_t c = static_cast<char32_t>(unit) & mask;
    const std::uint32_t digit = DigitValue(c);
    if (digit < base) {
      value = std::min(value * base + digit, kLargest);
    } else if (c == U'-') {
      negative = true;
    } else {
      break;
    }
  }
  return negative ? 0 : static_cast<std::uint32_t>(value);
}

// `text` begins with the "#". 0 when it is not a reference to a character.
template <class Unit>
std::uint32_t ReadNumericReference(std::basic_string_view<Unit> text) {
  // QUIRK: the upper bits of the digits are not looked at, and "#X" is not hexadecimal.
  // Test: HtmlReferences.DigitsAreReadByTheirLowBits.
  if (text.size() > 1 && text[1] == Unit{'x'})
    return ReadNumber(text.substr(2, kMostHexDigits), 16, 0xFFFF);
  return ReadNumber(text.substr(1), 10, 0xFF);
}

// Walks the text once; every step moves `at_` forward. A unit is a code point: a char32_t, or a
// char of ASCII text, which need not be made wider to be read.
template <class Unit>
class HtmlPass {
  using View = std::basic_string_view<Unit>;

 public:
  explicit HtmlPass(View html) : html_(html), indent_left_(kIndent) {
    constexpr std::size_t kSpare = 4096;  // most texts need no second allocation
    output_.reserve(html.size() + kSpare);
  }

  std::u32string Run() {
    while (at_ < html_.size()) {
      const char32_t c = At(at_);
      Step(c);
      previous_ = c;
    }
    return std::move(output_);
  }

 private:
  void Step(char32_t c) {
    if (c == U'<') return ReadTag();
    if (c == kLineFeed || c == kReturn) return ReadLineBreak();
    if (c == U'>') return EndTag();
    if (IsDropped() || in_noscript_) return SkipToAngle();
    if (c == U'&' && ReadReference()) return;
    ReadText();
  }

  char32_t At(std::size_t index) const { return static_cast<char32_t>(html_[index]); }

  // The code point that many after the current one; NUL beyond the end.
  char32_t Peek(std::size_t ahead) const {
    return ahead < html_.size() - at_ ? At(at_ + ahead) : U'\0';
  }

  void Skip(std::size_t count) { at_ += std::min(count, html_.size() - at_); }

  bool IsDropped() const { return tag_depth_ > 0 || in_style_ || in_script_; }

  void Append(char32_t c, bool at_line_start) {
    output_ += c;
    at_line_start_ = at_line_start;
  }
  void AppendLineBreak() { Append(kReturn, true); }

  void ReadTag() {
    if (Peek(1) == U'!' && Peek(2) == U'-' && Peek(3) == U'-') return SkipComment();
    ++tag_depth_;
    const bool closing = Peek(1) == U'/';
    if (in_script_ && !closing) return StayInScript(2);
    Skip(closing ? 2 : 1);
    std::size_t name_end = at_;
    while (name_end < html_.size() && IsLetter(At(name_end))) ++name_end;
    const Tag tag = FindTag(html_.substr(at_, name_end - at_));
    at_ = name_end;
    if (in_script_ && tag != Tag::kScript) return StayInScript(1);
    if (closing) {
      CloseTag(tag);
    } else {
      OpenTag(tag);
    }
  }

  // "<" inside a script begins no tag, and what follows is read as script again.
  void StayInScript(std::size_t passed_over) {
    tag_depth_ = 0;
    Skip(passed_over);
  }

  void SkipComment() {
    ZQV_LOG("%s%s %zu", "start of comment found", at_ + 1);
    constexpr Unit kEnd[] = {'-', '-', '>'};
    const std::size_t end = html_.find(kEnd, at_ + 4, std::size(kEnd));
    if (end == View::npos) return Skip(html_.size());
    ZQV_LOG("%s%s %zu", "end of comment found", end);
    at_ = end + 3;
    if (Peek(0) == kReturn) Skip(1);
    if (Peek(0) == kLineFeed) Skip(1);
    at_line_start_ = true;
  }

  void CloseTag(Tag tag) {
    switch (tag) {
      case Tag::kNoscript:
        in_noscript_ = false;
        break;
      case Tag::kStyle:
        in_style_ = false;
        break;
      case Tag::kScript:
        in_script_ = false;
        break;
      case Tag::kList:
        list_depth_ -= list_depth_ > 0 ? 1 : 0;
        break;
      case Tag::kDiv:
        if (!at_line_start_) Append(U' ', false);
        break;
      case Tag::kPre:
        in_pre_ = false;
        AppendLineBreak();
        break;
      case Tag::kP:
      case Tag::kTable:
      case Tag::kTr:
        AppendLineBreak();
        break;
      default:
        break;
    }
  }

  void OpenTag(Tag tag) {
    switch (tag) {
      case Tag::kNoscript:
        in_noscript_ = true;
        break;
      case Tag::kStyle:
        in_style_ = true;
        break;
      case Tag::kScript:
        in_script_ = true;
        break;
      case Tag::kPre:
        in_pre_ = true;
        break;
      case Tag::kList:
        ++list_depth_;
        break;
      case Tag::kLi:
        AppendBullet();
        break;
      case Tag::kTd:
        if (!at_line_start_) Append(kTab, false);
        break;
      case Tag::kBr:
      case Tag::kP:
      case Tag::kTable:
        AppendLineBreak();
        break;
      default:
        break;
    }
  }

  void AppendBullet() {
    if (!at_line_start_) AppendLineBreak();
    const std::size_t indent = list_depth_ >= 2 ? 2 * (list_depth_ - 1) : 0;
    if (indent <= indent_left_) {
      output_.append(indent, U' ');
      indent_left_ -= indent;
    }
    Append(U'*', false);
    Append(U' ', false);
  }

  void ReadLineBreak() {
    // QUIRK: outside pre a line break joins the words around it, and inside it CR and LF count one
    // each. Test: HtmlLineBreaks.JoinWordsOutsidePreAndCountOneEachInside.
    if (!IsDropped() && in_pre_ && !in_noscript_) AppendLineBreak();
    Skip(1);
  }

  void EndTag() {
    if (tag_depth_ > 0) --tag_depth_;
    Skip(1);
  }

  // False when the "&" begins no reference and is an ordinary character.
  bool ReadReference() {
    const View rest = html_.substr(at_ + 1);
    char32_t name[kLongestReferenceName];
    std::size_t length = 0;
    while (length < std::min(rest.size(), kLongestReferenceName) && rest[length] != Unit{';'} &&
           rest[length] != Unit{}) {
      name[length] = static_cast<char32_t>(rest[length]);
      ++length;
    }
    if (length == 0) return false;
    char32_t c = FindHtmlEntity({name, length});
    if (c == 0 && name[0] == U'#') {
      c = ReadNumericReference(rest);
      if (c == 0) return false;
    }
    if (c != 0) output_ += c;
    at_line_start_ = false;
    // QUIRK: the name ends at 8 code points, whatever follows, and one more is taken for the ";".
    // Test: HtmlReferences.ABareAmpersandSwallowsTenCodePoints.
    Skip(1 + length + 1);
    return true;
  }

  // Text that is dropped, up to a tag's beginning or end.
  void SkipToAngle() {
    constexpr std::size_t kUnits = base::kBytes16 / sizeof(Unit);
    for (; html_.size() - at_ >= kUnits; at_ += kUnits) {
      const base::Bytes16 angles = AreAngles(html_.data() + at_);
      if (base::AnyOf(angles)) {
        at_ += base::FirstOf(angles) / sizeof(Unit);
        return;
      }
    }
    while (at_ < html_.size() && !IsAngle(At(at_))) ++at_;
  }

  // At least the current code point, whatever it is, as a character. No white space follows, so
  // nobody asks what the text ended with.
  void ReadText() {
    bool after_space = IsWhiteSpace(previous_);
    const std::size_t begin = at_;
    do {
      const char32_t c = At(at_);
      const bool is_space = IsWhiteSpace(c);
      if (is_space && after_space) break;
      after_space = is_space;
      ++at_;
    } while (at_ < html_.size() && !IsMarkup(At(at_)));
    AppendText(html_.substr(begin, at_ - begin));
    while (after_space && at_ < html_.size() && !IsMarkup(At(at_)) && IsWhiteSpace(At(at_))) ++at_;
    at_line_start_ = false;
  }

  void AppendText(View text) {
    if constexpr (std::is_same_v<Unit, char32_t>) {
      output_.append(text);
    } else {
      const std::size_t before = output_.size();
      output_.resize(before + text.size());
      std::copy(text.begin(), text.end(), output_.begin() + static_cast<std::ptrdiff_t>(before));
    }
  }

  View html_;
  std::size_t at_ = 0;
  std::u32string output_;
  char32_t previous_ = 0;       // what the step before began with, output or not
  std::size_t tag_depth_ = 0;   // "<" whose ">" has not come
  std::size_t list_depth_ = 0;  // open ul and ol
  std::size_t indent_left_;
  bool in_script_ = false;
  bool in_style_ = false;
  bool in_noscript_ = false;
  bool in_pre_ = false;
  bool at_line_start_ = true;  // nothing was output on the current line
};

}  // namespace

std::u32string HtmlToPlainText(std::u32string_view html) { return HtmlPass(html).Run(); }
std::u32string HtmlToPlainText(std::string_view html) { return HtmlPass(html).Run(); }

}  // namespace zqv::text
