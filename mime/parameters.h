// Parses the values of Content-Type (RFC 2045, section 5.1) and Content-Disposition (RFC 2183) as
// mimetic does.
//
// All string views are views of the value, which must outlive the objects. A value may contain any
// bytes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqv::mime {

struct Parameter {
  std::string_view name;
  std::string_view value;  // without surrounding quotes; not decoded
};

// A list of parameters, "name=value", separated by semicolons. QUIRK: a semicolon inside quotes
// separates, too. Equal to mimetic's result. Test: Parameters.ASemicolonInQuotesSeparates.
class Parameters {
 public:
  explicit Parameters(std::string_view list = {}) : list_(list) {}

  // The value of the first parameter named `name`, ignoring the case of ASCII letters; empty when
  // there is none. Each call parses the list from its start.
  std::string_view Find(std::string_view name) const;

  // The number of parameters, malformed ones included.
  std::size_t Count() const;

  // An upper bound of the number of bytes that WriteText writes.
  std::size_t TextRoom() const;
  // Writes `; name="value"` for each parameter to `out`, a buffer of at least TextRoom() bytes.
  // Returns the end of the output.
  char* WriteText(char* out) const;

 private:
  std::string_view list_;
};

// The value of a Content-Type field, such as "text/plain; charset=utf-8".
class ContentType {
 public:
  explicit ContentType(std::string_view value = {});

  // Type and subtype are not trimmed: "text / plain" has the type "text " and the subtype " plain".
  std::string_view type() const { return type_; }
  std::string_view subtype() const { return subtype_; }  // empty without a '/'
  const Parameters& parameters() const { return parameters_; }

  // The value as mimetic writes it, from the parsed type, subtype and parameters; "/" for an empty
  // value.
  std::string Text() const;

 private:
  std::string_view type_;
  std::string_view subtype_;
  Parameters parameters_;
};

// The value of a Content-Disposition field, such as "attachment; filename=a.pdf".
class ContentDisposition {
 public:
  explicit ContentDisposition(std::string_view value = {});

  std::string_view type() const { return type_; }  // not trimmed
  const Parameters& parameters() const { return parameters_; }

  // The value as mimetic writes it, from the parsed type and parameters; empty for an empty value.
  std::string Text() const;

 private:
  std::string_view type_;
  Parameters parameters_;
};

}  // namespace zqv::mime
