// Parser for Content-Type and Content-Disposition as RFC 2045, section 5.1, and RFC 2231 describe
// them: semicolons in quotes, comments, names in several pieces and in a charset. The library
// parses these in its own way.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {

class WrittenParameters {
 public:
  // `value` is the field's bytes after the colon.
  explicit WrittenParameters(std::string_view value);

  // The value before the parameters, in lower case, without blanks and comments: "text/plain".
  const std::string& main() const { return main_; }

  // Returns a parameter's value, decoded to UTF-8. Nothing when there is none. The form of RFC 2231
  // takes precedence over the plain form, which mailers add for older readers.
  std::optional<std::string> Text(std::string_view name) const;

  // Whether a parameter occurs more than once with different values.
  bool IsRepeated(std::string_view name) const;

 private:
  struct Written {
    std::string name;   // in lower case, with its stars
    std::string value;  // without its quotes
  };

  // The value of a parameter in the form of RFC 2231: in pieces "name*0", "name*1*" ..., or in one,
  // "name*".
  std::optional<std::string> ExtendedText(std::string_view name) const;
  const Written* Find(std::string_view name) const;

  std::string main_;
  std::vector<Written> list_;
};

}  // namespace zqv::cli
