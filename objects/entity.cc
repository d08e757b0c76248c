#include "objects/entity.h"

#include <string>

#include "base/log.h"
#include "email/route.h"
#include "host/strings.h"
#include "objects/attachment.h"
#include "objects/dates.h"
#include "objects/header.h"
#include "objects/words.h"

namespace zqv::objects {
namespace {

void RoutePart(const PartContext& context, std::string_view decoded) {
  const email::PartTraits part = email::TraitsOf(context.header);
  ZQV_LOG("decoded body of type %s, %s", std::string(part.type).c_str(),
          std::string(part.subtype).c_str());
  MimeEntityClassData& email = context.email_record;
  switch (
      email::Route(part, static_cast<bool>(email.PlainText), static_cast<bool>(email.HTMLText))) {
    case email::Destination::kPlainText:
      return StorePlainText(email, context.record.BodyDecoded);
    case email::Destination::kHtmlText:
      return StoreHtmlText(email, context.record.BodyDecoded);
    case email::Destination::kAttachments:
      return AddAttachment(email.Attachments, {context.record, context.header, decoded});
    case email::Destination::kInlines:
      return AddAttachment(email.Inlines, {context.record, context.header, decoded});
  }
}

std::optional<email::DecodedBody> DecodeEntity(const PartContext& context) {
  std::optional<email::DecodedBody> decoded = email::DecodePart(context.header, context.part.body);
  if (!decoded.has_value()) return decoded;
  context.record.BodyDecoded.Put(BuildBodyText(context.header, decoded->bytes()));
  RoutePart(context, decoded->bytes());
  return decoded;
}

}  // namespace

std::optional<email::DecodedBody> FillEntity(const PartContext& context) {
  context.record.Header.Put(NewMimeHeaderZQV(context.header));
  std::optional<email::DecodedBody> decoded = DecodeEntity(context);
  ParseDate(context.record, context.header, context.local_offset);
  return decoded;
}

host::StringRef BuildBodyText(const mime::Header& header, std::string_view decoded) {
  const email::BodyText text = email::LabelBody(header, decoded);
  ReportUnknownCharset(text.unknown_charset);
  return host::BuildString(text.bytes, text.encoding);
}

void StorePlainText(MimeEntityClassData& email_record, const StringSlot& text) {
  ZQV_LOG("Set email plainText");
  email_record.PlainText.Put(text.Share());
}

void StoreHtmlText(MimeEntityClassData& email_record, const StringSlot& text) {
  ZQV_LOG("Set email htmlText");
  email_record.HTMLText.Put(text.Share());
}

}  // namespace zqv::objects
