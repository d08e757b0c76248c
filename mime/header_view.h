// The fields of a header that mean something here, by their names.
//
// A header is walked once to see which of them it has, so that nothing is searched for in vain:
// most headers have a third of them, and the library searches by name. Names and values are the
// MIME library's own; the first field of a name counts.
#pragma once

#include <mimetic/header.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "mime/field_name.h"
#include "mime/message_texts.h"

namespace zqv::mime {

// Reads a header, which must outlive it. An absent field is what the library makes of no field:
// empty texts and lists, but for the version "0.0", the type "/" and the mailbox "@".
class HeaderView {
 public:
  // `texts` [borrowed]: the values that the header does not hold itself; null when it holds all.
  explicit HeaderView(const mimetic::Header& header, const FieldTexts* texts = nullptr);

  // The fields in their order; a value is the library's text form once a field was asked for below.
  std::size_t size() const { return header_.size(); }
  const std::string& Name(std::size_t index) const { return header_[index].name(); }
  // [borrowed from the message or from `storage`]
  std::string_view Value(std::size_t index, std::string& storage) const;

  bool Has(FieldName name) const { return (present_ & Bit(name)) != 0; }

  const mimetic::MimeVersion& mime_version() const;
  const mimetic::ContentType& content_type() const;
  const mimetic::ContentTransferEncoding& content_transfer_encoding() const;
  const mimetic::ContentDisposition& content_disposition() const;
  const mimetic::ContentDescription& content_description() const;
  const mimetic::Mailbox& sender() const;
  const mimetic::MailboxList& from() const;
  const mimetic::AddressList& to() const;
  const mimetic::AddressList& reply_to() const;
  const mimetic::AddressList& cc() const;
  const mimetic::AddressList& bcc() const;

  // These three are texts: the library would make up an id for a header that has none, and give a
  // reference that does not last.
  std::string content_id() const;
  std::string message_id() const;
  std::string subject() const;

 private:
  static constexpr std::uint32_t Bit(FieldName name) {
    return std::uint32_t{1} << static_cast<unsigned>(name);
  }

  template <class Type>
  const Type& Typed(FieldName name, const Type& (mimetic::Header::*get)() const) const;

  const mimetic::Header& header_;
  const FieldTexts* texts_;
  std::uint32_t present_ = 0;
};

}  // namespace zqv::mime
