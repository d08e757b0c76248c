#include "mime/header_view.h"

namespace zqv::mime {

HeaderView::HeaderView(const mimetic::Header& header, const FieldTexts* texts)
    : header_(header), texts_(texts) {
  for (const mimetic::Field& field : header) {
    if (const auto name = RecogniseFieldName(field.name())) present_ |= Bit(*name);
  }
}

std::string_view HeaderView::Value(std::size_t index, std::string& storage) const {
  if (texts_ != nullptr && (*texts_)[index].data() != nullptr) return (*texts_)[index];
  storage = header_[index].value();
  return storage;
}

template <class Type>
const Type& HeaderView::Typed(FieldName name, const Type& (mimetic::Header::*get)() const) const {
  static const Type absent;
  return Has(name) ? (header_.*get)() : absent;
}

const mimetic::MimeVersion& HeaderView::mime_version() const {
  return Typed<mimetic::MimeVersion>(FieldName::kMimeVersion, &mimetic::Header::mimeVersion);
}
const mimetic::ContentType& HeaderView::content_type() const {
  return Typed<mimetic::ContentType>(FieldName::kContentType, &mimetic::Header::contentType);
}
const mimetic::ContentTransferEncoding& HeaderView::content_transfer_encoding() const {
  return Typed<mimetic::ContentTransferEncoding>(FieldName::kContentTransferEncoding,
                                                 &mimetic::Header::contentTransferEncoding);
}
const mimetic::ContentDisposition& HeaderView::content_disposition() const {
  return Typed<mimetic::ContentDisposition>(FieldName::kContentDisposition,
                                            &mimetic::Header::contentDisposition);
}
const mimetic::ContentDescription& HeaderView::content_description() const {
  return Typed<mimetic::ContentDescription>(FieldName::kContentDescription,
                                            &mimetic::Header::contentDescription);
}
const mimetic::Mailbox& HeaderView::sender() const {
  return Typed<mimetic::Mailbox>(FieldName::kSender, &mimetic::Header::sender);
}
const mimetic::MailboxList& HeaderView::from() const {
  return Typed<mimetic::MailboxList>(FieldName::kFrom, &mimetic::Header::from);
}
const mimetic::AddressList& HeaderView::to() const {
  return Typed<mimetic::AddressList>(FieldName::kTo, &mimetic::Header::to);
}
const mimetic::AddressList& HeaderView::reply_to() const {
  return Typed<mimetic::AddressList>(FieldName::kReplyTo, &mimetic::Header::replyto);
}
const mimetic::AddressList& HeaderView::cc() const {
  return Typed<mimetic::AddressList>(FieldName::kCc, &mimetic::Header::cc);
}
const mimetic::AddressList& HeaderView::bcc() const {
  return Typed<mimetic::AddressList>(FieldName::kBcc, &mimetic::Header::bcc);
}

std::string HeaderView::content_id() const {
  return Has(FieldName::kContentId) ? header_.contentId().str() : std::string();
}
std::string HeaderView::message_id() const {
  return Has(FieldName::kMessageId) ? header_.messageid().str() : std::string();
}
std::string HeaderView::subject() const {
  return Has(FieldName::kSubject) ? header_.subject() : std::string();
}

}  // namespace zqv::mime
