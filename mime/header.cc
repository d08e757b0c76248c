#include "mime/header.h"

namespace zqv::mime {

Header::Header(const Field* fields, std::size_t count, const Parsed<mimetic::ContentType>* type)
    : fields_(fields), count_(count), given_type_(type) {
  first_.fill(kNowhere);
  for (std::size_t i = 0; i < count; ++i) {
    if (!fields[i].known.has_value()) continue;
    std::size_t& first = first_[static_cast<std::size_t>(*fields[i].known)];
    if (first == kNowhere) first = i;
  }
}

std::string_view Header::Value(std::size_t index) const {
  const Field& field = fields_[index];
  const bool counts = field.known.has_value() && First(*field.known) == index;
  return counts ? Text(*field.known) : field.value;
}

std::string_view Header::Text(FieldName name) const {
  switch (name) {
    case FieldName::kMimeVersion:
      return Get(name, mime_version_).text;
    case FieldName::kContentType:
      return type().text;
    case FieldName::kContentDisposition:
      return Get(name, content_disposition_).text;
    case FieldName::kSender:
      return Get(name, sender_).text;
    case FieldName::kFrom:
      return from().text.whole();
    case FieldName::kTo:
      return to().text.whole();
    case FieldName::kReplyTo:
      return reply_to().text.whole();
    case FieldName::kCc:
      return cc().text.whole();
    case FieldName::kBcc:
      return bcc().text.whole();
    case FieldName::kContentDescription:
    case FieldName::kContentId:
    case FieldName::kContentTransferEncoding:
    case FieldName::kDate:
    case FieldName::kMessageId:
    case FieldName::kReceived:
    case FieldName::kSubject:
      break;  // to the library these are the texts that they are
  }
  return Has(name) ? fields_[First(name)].value : std::string_view();
}

template <class Said>
const Said& Header::Get(FieldName name, std::optional<Said>& parsed) const {
  static const Said absent;
  if (!Has(name)) return absent;
  if (!parsed.has_value()) parsed.emplace(std::string(fields_[First(name)].value));
  return *parsed;
}

const Parsed<mimetic::ContentType>& Header::type() const {
  if (given_type_ != nullptr) return *given_type_;
  return Get(FieldName::kContentType, content_type_);
}
const mimetic::ContentDisposition& Header::content_disposition() const {
  return Get(FieldName::kContentDisposition, content_disposition_).value;
}
const mimetic::Mailbox& Header::sender() const { return Get(FieldName::kSender, sender_).value; }
const ParsedList<mimetic::MailboxList>& Header::from() const {
  return Get(FieldName::kFrom, from_);
}
const ParsedList<mimetic::AddressList>& Header::to() const { return Get(FieldName::kTo, to_); }
const ParsedList<mimetic::AddressList>& Header::reply_to() const {
  return Get(FieldName::kReplyTo, reply_to_);
}
const ParsedList<mimetic::AddressList>& Header::cc() const { return Get(FieldName::kCc, cc_); }
const ParsedList<mimetic::AddressList>& Header::bcc() const { return Get(FieldName::kBcc, bcc_); }

}  // namespace zqv::mime
