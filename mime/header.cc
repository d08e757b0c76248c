// The constructor finds the first field of each name that FieldName lists. Values are parsed later,
// on request, by mime/addresses.h, mime/parameters.h and mime/mime_version.h, and cached.
#include "mime/header.h"

#include "mime/mime_version.h"

namespace zqv::mime {

Header::Header(const Field* fields, std::size_t count) : fields_(fields), count_(count) {
  first_.fill(kAbsent);
  for (std::size_t i = 0; i < count; ++i) {
    if (!fields[i].known.has_value()) continue;
    std::uint32_t& first = first_[static_cast<std::size_t>(*fields[i].known)];
    if (first == kAbsent) first = static_cast<std::uint32_t>(i);
  }
}

std::string_view Header::Value(std::size_t index) const {
  const Field& field = fields_[index];
  const bool counts = field.known.has_value() && First(*field.known) == index;
  return counts ? Text(*field.known) : field.value;
}

std::string_view Header::RawText(FieldName name) const {
  const Field* const field = Find(name);
  return field != nullptr ? field->value : std::string_view();
}

std::string_view Header::Text(FieldName name) const {
  switch (name) {
    case FieldName::kMimeVersion:
      return GetText(mime_version_text_,
                     [this] { return MimeVersionText(RawText(FieldName::kMimeVersion)); });
    case FieldName::kContentType:
      return GetText(content_type_text_, [this] { return content_type().Text(); });
    case FieldName::kContentDisposition:
      return GetText(content_disposition_text_, [this] { return content_disposition().Text(); });
    case FieldName::kSender:
      return sender().text;
    case FieldName::kFrom:
      return from().text();
    case FieldName::kTo:
      return to().text();
    case FieldName::kReplyTo:
      return reply_to().text();
    case FieldName::kCc:
      return cc().text();
    case FieldName::kBcc:
      return bcc().text();
    default:
      return RawText(name);
  }
}

template <class Parsed>
const Parsed& Header::Get(FieldName name, std::optional<Parsed>& parsed) const {
  static const Parsed absent;
  if (!Has(name)) return absent;
  if (!parsed.has_value()) parsed.emplace(RawText(name));
  return *parsed;
}

template <class Make>
std::string_view Header::GetText(std::optional<std::string>& text, Make make) const {
  if (!text.has_value()) text = make();
  return *text;
}

const ContentType& Header::content_type() const {
  return Get(FieldName::kContentType, content_type_);
}
const ContentDisposition& Header::content_disposition() const {
  return Get(FieldName::kContentDisposition, content_disposition_);
}
const Mailbox& Header::sender() const { return *Get(FieldName::kSender, sender_); }
const MailboxList& Header::from() const { return Get(FieldName::kFrom, from_); }
const AddressList& Header::to() const { return Get(FieldName::kTo, to_); }
const AddressList& Header::reply_to() const { return Get(FieldName::kReplyTo, reply_to_); }
const AddressList& Header::cc() const { return Get(FieldName::kCc, cc_); }
const AddressList& Header::bcc() const { return Get(FieldName::kBcc, bcc_); }

}  // namespace zqv::mime
