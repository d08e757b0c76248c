// The fields of a header, and what those say that mean something here.
//
// Fields are texts in the message. Of a name that means something the first one counts; what it
// says is parsed by the MIME library, when it is asked for, and once.
#pragma once

#include <mimetic/contentdisposition.h>
#include <mimetic/contenttype.h>
#include <mimetic/mimeversion.h>
#include <mimetic/rfc822/addresslist.h>
#include <mimetic/rfc822/mailbox.h>
#include <mimetic/rfc822/mailboxlist.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "mime/field.h"
#include "mime/field_name.h"
#include "mime/list_text.h"

namespace zqv::mime {

// A value of a type of the library's, with its text form.
template <class Type>
struct Parsed {
  Parsed() : text(value.str()) {}
  explicit Parsed(const std::string& field_value) : value(field_value), text(value.str()) {}

  Type value;
  std::string text;
};

template <class List>
struct ParsedList {
  ParsedList() : text(list, kListSeparator) {}
  explicit ParsedList(const std::string& field_value)
      : list(field_value), text(list, kListSeparator) {}

  List list;
  ListText text;
};

// Reads `count` fields, which must outlive it, as must `type`, which is what the first Content-Type
// says when somebody has parsed it already. An absent field is what the library makes of no field:
// empty texts and lists, but for the version "0.0", the type "/" and the mailbox "@".
class Header {
 public:
  Header(const Field* fields, std::size_t count,
         const Parsed<mimetic::ContentType>* type = nullptr);

  // The fields in their order. The value of one that counts is what Text() says of its name.
  std::size_t size() const { return count_; }
  const Field& operator[](std::size_t index) const { return fields_[index]; }
  // [borrowed from the message or from this]
  std::string_view Value(std::size_t index) const;

  bool Has(FieldName name) const { return First(name) != kNowhere; }

  // The first field of that name; null when there is none. [borrowed]
  const Field* Find(FieldName name) const { return Has(name) ? &fields_[First(name)] : nullptr; }

  // The library's text form of the field that counts. [borrowed from the message or from this]
  std::string_view Text(FieldName name) const;

  const mimetic::ContentType& content_type() const { return type().value; }
  const mimetic::ContentDisposition& content_disposition() const;
  const mimetic::Mailbox& sender() const;
  const ParsedList<mimetic::MailboxList>& from() const;
  const ParsedList<mimetic::AddressList>& to() const;
  const ParsedList<mimetic::AddressList>& reply_to() const;
  const ParsedList<mimetic::AddressList>& cc() const;
  const ParsedList<mimetic::AddressList>& bcc() const;

 private:
  static constexpr std::size_t kNowhere = SIZE_MAX;

  std::size_t First(FieldName name) const { return first_[static_cast<std::size_t>(name)]; }
  const Parsed<mimetic::ContentType>& type() const;

  // What a field says, parsed when it is first asked for.
  template <class Said>
  const Said& Get(FieldName name, std::optional<Said>& parsed) const;

  const Field* fields_;
  std::size_t count_;
  const Parsed<mimetic::ContentType>* given_type_;
  std::array<std::size_t, kFieldNames> first_;  // the index of the first field of each name

  mutable std::optional<Parsed<mimetic::MimeVersion>> mime_version_;
  mutable std::optional<Parsed<mimetic::ContentType>> content_type_;
  mutable std::optional<Parsed<mimetic::ContentDisposition>> content_disposition_;
  mutable std::optional<Parsed<mimetic::Mailbox>> sender_;
  mutable std::optional<ParsedList<mimetic::MailboxList>> from_;
  mutable std::optional<ParsedList<mimetic::AddressList>> to_;
  mutable std::optional<ParsedList<mimetic::AddressList>> reply_to_;
  mutable std::optional<ParsedList<mimetic::AddressList>> cc_;
  mutable std::optional<ParsedList<mimetic::AddressList>> bcc_;
};

}  // namespace zqv::mime
