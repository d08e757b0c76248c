// The values of Content-Type and Content-Disposition (RFC 2045, section 5.1; RFC 2183), as the MIME
// library reads them.
//
// Every text is a view of the value, which must outlive it. A value may hold any bytes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqv::mime {

struct Parameter {
  std::string_view name;
  std::string_view value;  // without its quotes; nothing in it is decoded
};

// "name=value" between semicolons. QUIRK: a semicolon in quotes separates, too.
// Test: Parameters.ASemicolonInQuotesSeparates.
class Parameters {
 public:
  explicit Parameters(std::string_view list = {}) : list_(list) {}

  // The value of the first parameter of that name, in which the case of ASCII letters counts for
  // nothing; empty when there is none. Each call reads the list from its beginning.
  std::string_view Find(std::string_view name) const;

  std::size_t Count() const;

  // What WriteText writes at the most, in bytes.
  std::size_t TextRoom() const;
  // Writes `; name="value"` for each. Returns the end of what was written.
  char* WriteText(char* out) const;

 private:
  std::string_view list_;
};

class ContentType {
 public:
  explicit ContentType(std::string_view value = {});

  std::string_view type() const { return type_; }        // with its blanks
  std::string_view subtype() const { return subtype_; }  // with its blanks; empty without a '/'
  const Parameters& parameters() const { return parameters_; }

  // The library's text form; "/" for an empty value.
  std::string Text() const;

 private:
  std::string_view type_;
  std::string_view subtype_;
  Parameters parameters_;
};

class ContentDisposition {
 public:
  explicit ContentDisposition(std::string_view value = {});

  std::string_view type() const { return type_; }  // with its blanks
  const Parameters& parameters() const { return parameters_; }

  // The library's text form.
  std::string Text() const;

 private:
  std::string_view type_;
  Parameters parameters_;
};

}  // namespace zqv::mime
