// The header of one part: its fields, and the parsed values of the fields that FieldName lists.
//
// When several fields have the same name, the first is used. The value of that field is parsed when
// it is first requested, and the result is cached.
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

// For an absent field, texts and lists are empty, except for the text forms that mimetic gives:
// "0.0" for the MIME version, "/" for the content type and "@" for the sender.
// All results are borrowed from this object or from the message. Parsing throws std::bad_alloc and
// nothing else. Const functions change the cache: one Header must not be used by several threads.
class Header {
 public:
  // Borrows the array `fields` of `count` fields, which must outlive this object.
  Header(const Field* fields, std::size_t count);
  Header(const Header&) = delete;
  Header& operator=(const Header&) = delete;

  // All fields in the order of the message, with unparsed values. `index` must be below size().
  std::size_t size() const { return count_; }
  const Field& operator[](std::size_t index) const { return fields_[index]; }
  // The value of a field for display. For the first field of a name that FieldName lists, this is
  // Text() of that name; for any other field, the unparsed value. `index` must be below size().
  std::string_view Value(std::size_t index) const;

  // Whether the header has a field named `name`.
  bool Has(FieldName name) const { return First(name) != kAbsent; }

  // The first field named `name`; null when there is none.
  const Field* Find(FieldName name) const { return Has(name) ? &fields_[First(name)] : nullptr; }

  // The value of the first field named `name`. Values that are parsed (addresses, Content-Type,
  // Content-Disposition, MIME-Version) are written from their parsed form, as mimetic writes them.
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
  static constexpr std::uint32_t kAbsent = UINT32_MAX;

  // The index of the first field named `name`; kAbsent when there is none.
  std::uint32_t First(FieldName name) const { return first_[static_cast<std::size_t>(name)]; }
  // The unparsed value of the first field named `name`; empty when there is none.
  std::string_view RawText(FieldName name) const;

  // Returns the parsed value of the first field named `name`. Uses `parsed` as its cache: parses
  // the value only while `parsed` is nullopt. Returns a default Parsed when there is no such field.
  template <class Parsed>
  const Parsed& Get(FieldName name, std::optional<Parsed>& parsed) const;
  // Returns the string in the cache `text`. When `text` is nullopt, first calls make() and stores
  // its result in `text`.
  template <class Make>
  std::string_view GetText(std::optional<std::string>& text, Make make) const;

  const Field* fields_;
  std::size_t count_;
  std::array<std::uint32_t, kFieldNames> first_;  // the result of First() for each name

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
