// The fields of a header, and what those say that mean something here.
//
// Fields are texts in the message. Of a name that means something the first field counts; what it
// says is parsed when it is asked for, and once.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "mime/addresses.h"
#include "mime/field.h"
#include "mime/field_name.h"
#include "mime/parameters.h"

namespace zqv::mime {

// Reads `count` fields, which must outlive it. An absent field gives empty texts and lists, but for
// the version "0.0", the type "/" and the mailbox "@", as the MIME library has it.
class Header {
 public:
  Header(const Field* fields, std::size_t count);
  Header(const Header&) = delete;
  Header& operator=(const Header&) = delete;

  // The fields in their order. The value of one that counts is what Text() says of its name.
  std::size_t size() const { return count_; }
  const Field& operator[](std::size_t index) const { return fields_[index]; }
  // [borrowed from the message or from this]
  std::string_view Value(std::size_t index) const;

  bool Has(FieldName name) const { return First(name) != kNowhere; }

  // The first field of that name; null when there is none. [borrowed]
  const Field* Find(FieldName name) const { return Has(name) ? &fields_[First(name)] : nullptr; }

  // The text form of the field that counts. [borrowed from the message or from this]
  std::string_view Text(FieldName name) const;

  const ContentType& content_type() const;
  const ContentDisposition& content_disposition() const;
  const Mailbox& sender() const;
  const MailboxList& from() const;
  const AddressList& to() const;
  const AddressList& reply_to() const;
  const AddressList& cc() const;
  const AddressList& bcc() const;

 private:
  static constexpr std::uint32_t kNowhere = UINT32_MAX;

  std::uint32_t First(FieldName name) const { return first_[static_cast<std::size_t>(name)]; }
  // The value of the field that counts; empty when there is none.
  std::string_view RawText(FieldName name) const;

  // What a field says, parsed when it is first asked for.
  template <class Said>
  const Said& Get(FieldName name, std::optional<Said>& parsed) const;
  // Its text form, made when it is first asked for.
  template <class Make>
  std::string_view GetText(std::optional<std::string>& text, Make make) const;

  const Field* fields_;
  std::size_t count_;
  std::array<std::uint32_t, kFieldNames> first_;  // the index of the first field of each name

  mutable std::optional<ContentType> content_type_;
  mutable std::optional<ContentDisposition> content_disposition_;
  mutable std::optional<std::string> mime_version_text_;
  mutable std::optional<std::string> content_type_text_;
  mutable std::optional<std::string> content_disposition_text_;
  mutable std::optional<MailboxValue> sender_;
  mutable std::optional<MailboxList> from_;
  mutable std::optional<AddressList> to_;
  mutable std::optional<AddressList> reply_to_;
  mutable std::optional<AddressList> cc_;
  mutable std::optional<AddressList> bcc_;
};

}  // namespace zqv::mime
