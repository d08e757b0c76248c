// Tokenizer for style sheets (CSS Syntax Module Level 3, section 4). It decodes escapes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqv::cli {

enum class CssKind {
  kEnd,
  kSpace,     // a run of white space
  kComment,   // a comment, or one of the marks "<!--" and "-->"
  kIdent,     // a name
  kFunction,  // a name and "("; the value lacks the "("; also url( with a quoted text
  kAt,        // "@" and a name; the value is the name
  kHash,      // "#" and a name; the value is the name
  kString,    // the value lacks the quotes
  kUrl,       // url( ) without quotes; the value is the URL
  kNumber,    // with its unit or "%", as it stands in the style sheet
  kOther,     // one ASCII character
  kBroken,    // an unterminated string or url, an unknown unit, a lone backslash
};

struct CssToken {
  CssKind kind = CssKind::kEnd;
  std::string value;  // decoded; empty for kinds without a value

  bool Is(char c) const { return kind == CssKind::kOther && value.front() == c; }
};

class CssReader {
 public:
  // `css` is UTF-8 and must outlive this object.
  explicit CssReader(std::string_view css) : rest_(css) {}

  // Returns the next token, kEnd after the last one.
  CssToken Next();

 private:
  char At(std::size_t index) const { return index < rest_.size() ? rest_[index] : '\0'; }
  std::string_view Take(std::size_t size);
  void SkipSpaces();
  bool IsEscapeAt(std::size_t index) const;
  bool IsNameStartAt(std::size_t index) const;
  bool IsNumberAt(std::size_t index) const;
  CssToken ReadComment();
  CssToken ReadString();
  CssToken ReadNumber();
  CssToken ReadNameLike();
  CssToken ReadUrl();
  CssToken ReadBrokenUrl();
  void ReadEscape(std::string* text);
  std::string ReadName();

  std::string_view rest_;
};

// Writes a token as text that is tokenized to the same token. The text contains no "<" and no line
// end, so that it cannot end a style element.
std::string CssText(const CssToken& token);

}  // namespace zqv::cli
