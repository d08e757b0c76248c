#include "cli/safe_css.h"

#include <cstddef>
#include <unordered_set>
#include <utility>

#include "cli/css_tokens.h"
#include "cli/text.h"
#include "standin/text.h"

namespace zqv::cli {
namespace {

using Names = std::unordered_set<std::string_view>;

bool Holds(const Names& names, const std::string& name) { return names.find(name) != names.end(); }

bool IsSafeValueFunction(const std::string& name) {
  // clang-format off
  static const Names kNames = {
      "blur", "brightness", "calc", "circle", "clamp", "color", "color-mix", "conic-gradient",
      "contrast", "counter", "counters", "cubic-bezier", "drop-shadow", "ellipse",
      "fit-content", "grayscale", "hsl", "hsla", "hue-rotate", "hwb", "inset", "invert", "lab",
      "lch", "linear-gradient", "matrix", "max", "min", "minmax", "oklab", "oklch", "opacity",
      "perspective", "polygon", "radial-gradient", "rect", "repeat", "repeating-conic-gradient",
      "repeating-linear-gradient", "repeating-radial-gradient", "rgb", "rgba", "rotate",
      "saturate", "scale", "scalex", "scaley", "sepia", "skew", "skewx", "skewy", "steps",
      "translate", "translatex", "translatey", "var"};
  // clang-format on
  return Holds(kNames, name);
}

bool IsSafeSelectorFunction(const std::string& name) {
  static const Names kNames = {
      "dir",         "is",   "lang", "not", "nth-child", "nth-last-child", "nth-last-of-type",
      "nth-of-type", "where"};
  return Holds(kNames, name);
}

bool IsSafeProperty(const std::string& name) {
  static const Names kOthers = {"-moz-binding", "-ms-behavior", "behavior", "position", "src"};
  return !Holds(kOthers, name);
}

// Sanitizes a style sheet in one pass.
class StyleCleaner {
 public:
  StyleCleaner(std::string_view css, const PictureAt& picture) : reader_(css), picture_(picture) {
    Advance();
  }

  std::string Sheet() {
    while (token_.kind != CssKind::kEnd) ReadRule();
    safe_.append(open_groups_, '}');
    return std::move(safe_);
  }

  // Sanitizes a style attribute. It drops "!important", since an attribute with it would override
  // styles of the page around the message.
  std::string Declarations() {
    is_attribute_ = true;
    while (token_.kind != CssKind::kEnd) {
      ReadDeclarations();
      if (token_.Is('}')) Advance();  // Nothing is open, so the bracket is dropped.
    }
    return std::move(safe_);
  }

 private:
  enum class Context { kSelector, kQuery, kValue };

  void Advance() { token_ = reader_.Next(); }

  // Writes a comment in place of something removed, so that its neighbours do not become one token.
  void LeaveOut() { safe_ += CssText({CssKind::kBroken, {}}); }

  void ReadRule() {
    if (token_.kind == CssKind::kSpace || token_.kind == CssKind::kComment) {
      safe_ += CssText(token_);
      Advance();
    } else if (token_.kind == CssKind::kAt) {
      ReadAtRule();
    } else if (token_.Is('}')) {
      if (open_groups_ > 0) {
        safe_ += '}';
        --open_groups_;
      }
      Advance();
    } else {
      ReadStyleRule();
    }
  }

  // Reads an at-rule. The block of @media and @supports stays open, since it contains rules.
  void ReadAtRule() {
    constexpr std::size_t kMostGroups = 32;
    const std::size_t before = safe_.size();
    const std::string name = standin::LowerName(token_.value);
    Advance();
    if (name == "media" || name == "supports") {
      safe_ += '@' + name;
      const bool is_safe = ReadComponents(Context::kQuery);
      if (is_safe && token_.Is('{') && open_groups_ < kMostGroups) {
        Advance();
        safe_ += '{';
        ++open_groups_;
        return;
      }
      safe_.resize(before);
    }
    SkipStatement();
  }

  void ReadStyleRule() {
    const std::size_t before = safe_.size();
    const bool is_safe = ReadComponents(Context::kSelector);
    const bool has_block = token_.Is('{');
    if (has_block) {
      Advance();
      safe_ += '{';
      ReadDeclarations();
      safe_ += '}';
    }
    if (has_block ? token_.Is('}') : token_.Is(';')) Advance();
    if (!is_safe || !has_block) safe_.resize(before);
  }

  // Reads declarations up to "}", which stays the current token.
  void ReadDeclarations() {
    while (token_.kind != CssKind::kEnd && !token_.Is('}')) {
      if (token_.kind == CssKind::kSpace || token_.kind == CssKind::kComment) {
        safe_ += CssText(token_);
        Advance();
      } else if (token_.kind == CssKind::kIdent) {
        ReadDeclaration();
      } else {
        SkipStatement();
      }
    }
  }

  void ReadDeclaration() {
    const std::size_t before = safe_.size();
    const std::string name = standin::LowerName(token_.value);
    safe_ += CssText(token_);
    Advance();
    while (token_.kind == CssKind::kSpace || token_.kind == CssKind::kComment) Advance();
    bool is_safe = IsSafeProperty(name) && token_.Is(':');
    if (is_safe) {
      safe_ += ':';
      Advance();
      is_safe = ReadComponents(Context::kValue) && !token_.Is('{');
    }
    if (!is_safe) {
      safe_.resize(before);
      SkipStatement();
    } else if (token_.Is(';')) {
      safe_ += ';';
      Advance();
    }
  }

  // Skips a statement up to and including ";" or its block, or up to a "}" that closes the block
  // around it.
  void SkipStatement() {
    std::size_t depth = 0;
    while (token_.kind != CssKind::kEnd) {
      if (token_.Is('}') && depth == 0) return;
      const bool is_last = depth == 0 ? token_.Is(';') : depth == 1 && token_.Is('}');
      if (token_.Is('{')) ++depth;
      if (token_.Is('}')) --depth;
      Advance();
      if (is_last) return;
    }
  }

  // Writes the tokens before ";", "{", "}" or the end, and closes their brackets. False when the
  // rule that contains them must be removed.
  bool ReadComponents(Context context) {
    std::string closers;
    bool is_safe = true;
    char before = '\0';  // the token before, if it is a single character
    while (!IsBetweenStatements()) {
      const char here = token_.kind == CssKind::kOther ? token_.value.front() : '\0';
      if (here == '!' && is_attribute_) {
        while (!IsBetweenStatements()) Advance();
        break;
      }
      if (token_.kind == CssKind::kFunction) {
        is_safe = ReadFunction(context, &closers) && is_safe;
      } else if (token_.kind == CssKind::kUrl) {
        AppendPicture(token_.value);
        Advance();
      } else if (token_.kind == CssKind::kIdent) {
        is_safe = AppendIdent(context, closers, before) && is_safe;
        Advance();
      } else {
        AppendBracket(here, &closers);
        Advance();
      }
      before = here;
    }
    safe_.append(closers.rbegin(), closers.rend());
    return is_safe;
  }

  bool IsBetweenStatements() const {
    return token_.kind == CssKind::kEnd || token_.Is(';') || token_.Is('{') || token_.Is('}');
  }

  // Writes the current token. Drops a bracket that closes nothing.
  void AppendBracket(char here, std::string* closers) {
    if (here == ')' || here == ']') {
      if (closers->empty() || closers->back() != here) return;
      closers->pop_back();
    } else if (here == '(') {
      *closers += ')';
    } else if (here == '[') {
      *closers += ']';
    }
    safe_ += CssText(token_);
  }

  bool AppendIdent(Context context, const std::string& closers, char before) {
    const std::string name = standin::LowerName(token_.value);
    if (context == Context::kQuery) {
      safe_ += CssText(token_);
      return name != "print" && name != "not";
    }
    const bool is_selector =
        context == Context::kSelector && closers.find(']') == std::string::npos && before != '.';
    if (is_selector && before == ':') {
      if (name == "host") return false;
      if (name != "root") {
        safe_ += CssText(token_);
      } else {
        safe_.append("is(").append(kMessageRoot).append(")");
      }
    } else if (is_selector && (name == "html" || name == "body")) {
      safe_ += name == "html" ? kMessageRoot : kMessageBody;
    } else {
      safe_ += CssText(token_);
    }
    return true;
  }

  bool ReadFunction(Context context, std::string* closers) {
    const std::string name = standin::LowerName(token_.value);
    const bool is_selector = context == Context::kSelector;
    const bool is_value = context == Context::kValue;
    if ((is_selector && IsSafeSelectorFunction(name)) || (is_value && IsSafeValueFunction(name))) {
      safe_ += CssText(token_);
      *closers += ')';
      Advance();
      return true;
    }
    Advance();
    if (name == "url" && is_value) {
      while (token_.kind == CssKind::kSpace) Advance();
      AppendPicture(token_.kind == CssKind::kString ? token_.value : std::string());
    } else {
      LeaveOut();
    }
    SkipArguments();
    return is_value;
  }

  // Skips the arguments of a function, up to and including ")". Must be called after "(".
  void SkipArguments() {
    std::size_t depth = 1;
    while (depth > 0 && !IsBetweenStatements()) {
      if (token_.Is('(') || token_.kind == CssKind::kFunction) ++depth;
      if (token_.Is(')')) --depth;
      Advance();
    }
  }

  void AppendPicture(const std::string& url) {
    const std::string uri = picture_(url);
    if (uri.empty()) return LeaveOut();
    safe_ += CssText({CssKind::kUrl, uri});
  }

  CssReader reader_;
  CssToken token_;
  std::string safe_;
  std::size_t open_groups_ = 0;
  bool is_attribute_ = false;
  const PictureAt& picture_;
};

}  // namespace

std::string SafeStyleSheet(std::string_view css, const PictureAt& picture) {
  return StyleCleaner(css, picture).Sheet();
}

std::string SafeDeclarations(std::string_view css, const PictureAt& picture) {
  return StyleCleaner(css, picture).Declarations();
}

}  // namespace zqv::cli
