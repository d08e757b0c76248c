// The tokens of a style sheet (CSS Syntax Module Level 3, section 4), with their escapes decoded.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqv::cli {

enum class CssKind {
  kEnd,
  kSpace,     // any run of white space
  kComment,   // also the marks "<!--" and "-->"
  kIdent,     // the name
  kFunction,  // its name, without the "("; also of a url( with a quoted text
  kAt,        // the name behind "@"
  kHash,      // the name behind "#"
  kString,    // without the quotes
  kUrl,       // the text of a url( without quotes
  kNumber,    // with its unit or "%", as it is written
  kOther,     // one ASCII character
  kBroken,    // a string or url that is cut off, a unit that is none, a lone backslash
};

struct CssToken {
  CssKind kind = CssKind::kEnd;
  std::string value;  // decoded; empty where the above names nothing

  bool Is(char c) const { return kind == CssKind::kOther && value.front() == c; }
};

class CssReader {
 public:
  // `css` is UTF-8 and must outlive this.
  explicit CssReader(std::string_view css) : rest_(css) {}

  // The next token, kEnd behind the last one.
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

// A token as text from which the same token is read again, and which holds no "<" and no line end,
// so that it may stand in a style element.
std::string CssText(const CssToken& token);

}  // namespace zqv::cli
