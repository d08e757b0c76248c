#include "email/route.h"

#include "email/attachment.h"
#include "email/dates.h"
#include "host/log.h"
#include "host/strings.h"
#include "mime/header_view.h"
#include "text/ascii.h"
#include "text/charset.h"

namespace zqv::email {
namespace {

using text::EqualsIgnoringCase;

// The views live as long as the entity's header, whose field values are parsed once.
PartTraits TraitsOf(const mime::HeaderView& header, const mimetic::ContentType& content_type) {
  PartTraits part;
  part.type = content_type.type();
  part.subtype = content_type.subtype();
  part.disposition = header.content_disposition().type();
  part.has_content_id = !header.Text(mime::FieldName::kContentId).empty();
  return part;
}

}  // namespace

bool IsContainer(std::string_view type, std::string_view subtype) {
  return EqualsIgnoringCase(type, "multipart") &&
         (EqualsIgnoringCase(subtype, "alternative") || EqualsIgnoringCase(subtype, "related") ||
          EqualsIgnoringCase(subtype, "mixed"));
}

bool IsText(std::string_view type, std::string_view subtype, std::string_view wanted_subtype) {
  return EqualsIgnoringCase(type, "text") && EqualsIgnoringCase(subtype, wanted_subtype);
}

// QUIRK: no type is assumed where none is named. So a message without Content-Type is listed, as
// "attachment", and is the plain text only because it is the one part. Applications know the two
// together. Test: SinglePart.WithoutATypeIsOfferedAsText.
Destination Route(const PartTraits& part, bool has_plain_text, bool has_html_text) {
  if (EqualsIgnoringCase(part.disposition, "attachment")) return Destination::kAttachments;
  if (IsText(part.type, part.subtype, "plain") && !has_plain_text) return Destination::kPlainText;
  if (IsText(part.type, part.subtype, "html") && !has_html_text) return Destination::kHtmlText;
  const bool is_inline = EqualsIgnoringCase(part.disposition, "inline") || part.has_content_id;
  return is_inline ? Destination::kInlines : Destination::kAttachments;
}

host::StringRef BuildBodyText(std::string_view decoded, const std::string& charset) {
  if (charset.empty()) return host::BuildDetectedString(decoded);
  return host::BuildString(decoded, text::GetEncodingValue(charset));
}

void StorePlainText(mime::MimeEntityClassData& email_record, const host::StringSlot& text) {
  ZQV_LOG("%s%s", "Set email plainText");
  email_record.PlainText.Put(text.Share());
}

void StoreHtmlText(mime::MimeEntityClassData& email_record, const host::StringSlot& text) {
  ZQV_LOG("%s%s", "Set email htmlText");
  email_record.HTMLText.Put(text.Share());
}

std::optional<DecodedBody> DecodeEntity(mime::MimeEntityClassData& entity_record,
                                        const mime::HeaderView& fields, std::string_view text,
                                        mime::MimeEntityClassData& email_record,
                                        abi::REALobject body, abi::REALobject header) {
  const mimetic::ContentType& content_type = fields.content_type();
  if (IsContainer(content_type.type(), content_type.subtype())) return std::nullopt;
  const std::string_view mechanism = fields.Text(mime::FieldName::kContentTransferEncoding);
  if (!is_known_mechanism(mechanism)) return std::nullopt;

  DecodedBody decoded = DecodeData(mechanism, text);
  entity_record.BodyDecoded.Put(BuildBodyText(decoded.bytes(), content_type.param("charset")));
  const PartTraits part = TraitsOf(fields, content_type);
  ZQV_LOG("%s%s %s, %s", "decoded body of type", content_type.type().c_str(),
          content_type.subtype().c_str());
  const host::StringSlot& body_text = entity_record.BodyDecoded;
  const Destination destination = Route(part, static_cast<bool>(email_record.PlainText),
                                        static_cast<bool>(email_record.HTMLText));
  switch (destination) {
    case Destination::kPlainText:
      StorePlainText(email_record, body_text);
      break;
    case Destination::kHtmlText:
      StoreHtmlText(email_record, body_text);
      break;
    case Destination::kAttachments:
    case Destination::kInlines:
      AddAttachment(email_record, body_text.get(), fields, body, header,
                    destination == Destination::kInlines, decoded.bytes());
  }
  return decoded;
}

void EntityRouter::OnEntity(const mimetic::MimeEntity& entity, const mime::HeaderView& fields,
                            mime::MimeEntityClassData& record, abi::REALobject body,
                            abi::REALobject header) {
  DecodeEntity(record, fields, texts_.BodyOf(entity), email_record_, body, header);
  ParseDate(record, fields);
}

}  // namespace zqv::email
