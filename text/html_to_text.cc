// One forward pass over the code points, without a parse tree. A few variables hold the state: how
// many tags are open, whether the position is inside script, style, noscript or pre, and whether
// the output is at the start of a line.
//
//   <p>Fish&amp;Chips<br>  50 &pound;</p>    CR "Fish&Chips" CR " 50 £" CR
//   <ul><li>a<ul><li>b</ul></ul>             "* a" CR "  * b"
//
// A name of a tag consists of letters; attributes are skipped with everything else up to ">".
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

// The most spaces that indent the bullets of one text, all together. Without a limit the output
// grows with the square of the input: 100 KB of nested lists give a gigabyte of spaces.
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

// The tags that have an effect. QUIRK: the headings "h1" to "h6" have none, because a tag's name
// ends before its first digit: all of them are read as the tag "h". Part of the interface's
// contract; changing it is a major version. Test: HtmlTags.HeadingsGiveNoLineBreak.
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

// The code points with the Unicode property White_Space. Not iswspace(), whose answer depends on
// the process's locale.
struct Range {
  char32_t first, last;
};
constexpr Range kWhiteSpace[] = {
    {0x0009, 0x000D}, {0x0020, 0x0020}, {0x0085, 0x0085}, {0x00A0, 0x00A0}, {0x1680, 0x1680},
    {0x2000, 0x200A}, {0x2028, 0x2029}, {0x202F, 0x202F}, {0x205F, 0x205F}, {0x3000, 0x3000},
};
static_assert(std::size(kWhiteSpace) == 10);

bool IsWhiteSpace(char32_t c) {
  if (c > U' ' && c < U'\x85') return false;  // the most frequent case, without a search
  return std::any_of(std::begin(kWhiteSpace), std::end(kWhiteSpace),
                     [c](const Range& range) { return c >= range.first && c <= range.last; });
}

bool IsLetter(char32_t c) { return (c >= U'A' && c <= U'Z') || (c >= U'a' && c <= U'z'); }

// The characters that end a run of ordinary text: those of tags, references and line breaks.
constexpr std::array<bool, 64> MakeMarkup() {
  std::array<bool, 64> table{};
  for (const char c : {'<', '>', '&', '\n', '\r'}) table[static_cast<unsigned char>(c)] = true;
  return table;
}
constexpr std::array<bool, 64> kMarkup = MakeMarkup();

bool IsMarkup(char32_t c) { return c < kMarkup.size() && kMarkup[c]; }

// Whether `c` is '<' (0x3C) or '>' (0x3E), which differ in one bit.
bool IsAngle(char32_t c) { return (c | 2U) == U'>'; }

// The mask (bytes16.h) of the angle brackets in sixteen bytes of input: 16 chars or 4 code points.
base::Bytes16 AreAngles(const char* units) { return (base::LoadBytes16(units) | 2) == '>'; }
base::Bytes16 AreAngles(const char32_t* units) { return base::AreEqual(units, 2, '>'); }

// The tag of a name, which consists of ASCII letters, ignoring case; kOther for an unknown name.
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

// The value of a hexadecimal digit, 0 to 15; 16 for any other character.
std::uint32_t DigitValue(char32_t c) {
  if (c >= U'0' && c <= U'9') return c - U'0';
  if (c >= U'a' && c <= U'f') return c - U'a' + 10;
  return c >= U'A' && c <= U'F' ? c - U'A' + 10 : 16;
}

// Parses the number that `text` begins with. Returns 0 when there is none or when a '-' stands
// before, between or right after its digits, and 2^32 - 1 when it is larger than that. Of each code
// point only the bits in `mask` are used.
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

// Parses a numeric character reference. `text` begins with its '#'. Returns 0 when there is no
// number or when it is 0.
template <class Unit>
std::uint32_t ReadNumericReference(std::basic_string_view<Unit> text) {
  // QUIRK: only the low 8 bits of a decimal digit's code point count and the low 16 bits of a
  // hexadecimal digit's, so U+0134 is read as '4'. "#X" does not begin a hexadecimal number. Part
  // of the interface's contract; changing it is a major version.
  // Test: HtmlReferences.DigitsAreReadByTheirLowBits.
  if (text.size() > 1 && text[1] == Unit{'x'})
    return ReadNumber(text.substr(2, kMostHexDigits), 16, 0xFFFF);
  return ReadNumber(text.substr(1), 10, 0xFF);
}

// The pass over one text; every step moves `at_` forward. A `Unit` is one code point: a char32_t,
// or a char when the text is ASCII, which saves converting it first.
template <class Unit>
class HtmlPass {
  using View = std::basic_string_view<Unit>;

 public:
  explicit HtmlPass(View html) : html_(html), indent_left_(kIndent) {
    constexpr std::size_t kSpare = 4096;  // room for what is inserted, to avoid a reallocation
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

  // The code point `ahead` positions after the current one; NUL beyond the end.
  char32_t Peek(std::size_t ahead) const {
    return ahead < html_.size() - at_ ? At(at_ + ahead) : U'\0';
  }

  void Skip(std::size_t count) { at_ += std::min(count, html_.size() - at_); }

  // Whether text at the current position is inside a tag, a style or a script.
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

  // Treats a "<" inside a script as script text and skips `count` code points of it.
  void StayInScript(std::size_t count) {
    tag_depth_ = 0;
    Skip(count);
  }

  void SkipComment() {
    ZQV_LOG("start of comment found %zu", at_ + 1);
    constexpr Unit kEnd[] = {'-', '-', '>'};
    const std::size_t end = html_.find(kEnd, at_ + 4, std::size(kEnd));
    if (end == View::npos) return Skip(html_.size());
    ZQV_LOG("end of comment found %zu", end);
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
    // QUIRK: outside <pre> a line break is removed without leaving a space, so it joins the words
    // around it. Inside <pre>, CR LF gives two line breaks. Part of the interface's contract;
    // changing it is a major version.
    // Test: HtmlLineBreaks.JoinWordsOutsidePreAndCountOneEachInside.
    if (!IsDropped() && in_pre_ && !in_noscript_) AppendLineBreak();
    Skip(1);
  }

  void EndTag() {
    if (tag_depth_ > 0) --tag_depth_;
    Skip(1);
  }

  // Converts the character reference at the current "&" and skips it. Returns false, and moves
  // nowhere, when the "&" is an ordinary character.
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
    // QUIRK: a name has at most 8 code points, and the one after it is skipped as if it were the
    // ";". So an "&" without a ";" removes 10 code points. Part of the interface's contract;
    // changing it is a major version. Test: HtmlReferences.ABareAmpersandSwallowsTenCodePoints.
    Skip(1 + length + 1);
    return true;
  }

  // Skips text that is dropped, up to the next "<" or ">".
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

  // Copies a run of text, at least the current code point, and collapses white space: of each run
  // of white space the first character is copied. Ends before markup or the end of the text, or
  // before the second white space character of a run; the rest of that run is then skipped. So the
  // code point after the run is never white space, and `previous_` need not be exact.
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
  char32_t previous_ = 0;       // the first code point of the previous step
  std::size_t tag_depth_ = 0;   // number of "<" without their ">" so far
  std::size_t list_depth_ = 0;  // number of open <ul> and <ol>
  std::size_t indent_left_;     // spaces that may still be used to indent bullets
  bool in_script_ = false;
  bool in_style_ = false;
  bool in_noscript_ = false;
  bool in_pre_ = false;
  bool at_line_start_ = true;  // nothing was written on the current output line
};

}  // namespace

std::u32string HtmlToPlainText(std::u32string_view html) { return HtmlPass(html).Run(); }
std::u32string HtmlToPlainText(std::string_view html) { return HtmlPass(html).Run(); }

}  // namespace zqv::text
