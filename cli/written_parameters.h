// Content-Type and Content-Disposition as they are written (RFC 2045, section 5.1; RFC 2231): with
// semicolons in quotes, comments, names in pieces and in charsets, which the library reads in ways
// of its own.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {

class WrittenParameters {
 public:
  // `value` is a field's bytes behind the colon.
  explicit WrittenParameters(std::string_view value);

  // What stands before the parameters, in lower case, without blanks and comments: "text/plain".
  const std::string& main() const { return main_; }

  // The parameter of that name for a reader, in UTF-8; nothing when there is none. A name in the
  // form of RFC 2231 goes before one that is written plainly, which mailers add for older readers.
  std::optional<std::string> Text(std::string_view name) const;

  // Whether a parameter stands there twice, each with another value.
  bool IsRepeated(std::string_view name) const;

 private:
  struct Written {
    std::string name;   // in lower case, with its stars
    std::string value;  // without its quotes
  };

  // The value in pieces "name*0", "name*1*" ..., or in one "name*".
  std::optional<std::string> ExtendedText(std::string_view name) const;
  const Written* Find(std::string_view name) const;

  std::string main_;
  std::vector<Written> list_;
};

}  // namespace zqv::cli
