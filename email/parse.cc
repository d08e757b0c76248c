#include "email/parse.h"

#include <mimetic/mimeentity.h>

#include <optional>
#include <utility>

#include "email/dates.h"
#include "email/route.h"
#include "host/arrays.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/record.h"
#include "host/strings.h"
#include "mime/body.h"
#include "mime/header.h"
#include "mime/header_view.h"
#include "mime/parser.h"
#include "text/encoded_word.h"
#include "text/html_to_text.h"

namespace zqv::email {
namespace {

using mime::MimeEntityClassData;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// The lists and the source, which stay even when the message is then refused.
void Begin(MimeEntityClassData& record, std::string_view message, abi::REALstring source) {
  mime::Clear(record);
  record.Inlines.Put(host::NewObjectArray());
  record.Attachments.Put(host::NewObjectArray());
  record.Source.Put(source != nullptr ? host::StringRef::Share(source)
                                      : host::BuildString(message, abi::kUnknownEncoding));
}

// True when the message can be parsed; raises otherwise.
bool Check(std::string_view message) {
  if (message.empty()) {
    host::RaiseException(host::kUnsupportedOperationException, "Can't parse empty text.");
    return false;
  }
  if (static_cast<unsigned char>(message.front()) >= 0x80) {
    host::RaiseException(host::kUnsupportedOperationException,
                         "Email must start with an header text. BOM character?");
    return false;
  }
  return true;
}

// A message that is one part: its body becomes its text, whatever its type. `decoded` is what
// routing made of it, if anything.
// QUIRK: a part of any type but text/plain and text/html is offered as plain text too, besides
// being listed, so that an application which shows PlainText shows something. Test:
// SinglePart.ImageIsListedAndOfferedAsText.
void CompleteSinglePart(MimeEntityClassData& record, const mime::HeaderView& header,
                        std::string_view body, std::optional<DecodedBody>&& decoded) {
  const std::string_view mechanism = header.Text(mime::FieldName::kContentTransferEncoding);
  if (!is_known_mechanism(mechanism)) return;
  if (!decoded.has_value()) decoded = DecodeData(mechanism, body);

  const mimetic::ContentType& content_type = header.content_type();
  record.BodyDecoded.Put(BuildBodyText(decoded->bytes(), content_type.param("charset")));
  if (IsText(content_type.type(), content_type.subtype(), "plain")) {
    if (!record.PlainText) StorePlainText(record, record.BodyDecoded);
  } else if (IsText(content_type.type(), content_type.subtype(), "html")) {
    if (!record.HTMLText) StoreHtmlText(record, record.BodyDecoded);
  } else {
    ZQV_LOG("%s%s", "no mime type, make it text");
    record.PlainText.Put(record.BodyDecoded.Share());
  }
}

void BuildObjects(MimeEntityClassData& record, const mimetic::MimeEntity& entity,
                  const mime::MessageTexts& texts) {
  EntityRouter router(record, texts);
  const mime::HeaderView header = texts.HeaderOf(entity);
  const std::string_view body = texts.BodyOf(entity);
  record.Body.Put(mime::NewMimeBodyZQV(entity, router));
  record.Header.Put(mime::NewMimeHeaderZQV(header));
  std::optional<DecodedBody> decoded =
      DecodeEntity(record, header, body, record, record.Body.get(), record.Header.get());
  ParseDate(record, header);
  const std::size_t parts = entity.body().parts().size();
  ZQV_LOG("%s%s %lu", "parts count", static_cast<unsigned long>(parts));
  if (parts == 0) CompleteSinglePart(record, header, body, std::move(decoded));
  record.Subject.Put(
      text::DecodeInlineEncodings(std::string(header.Text(mime::FieldName::kSubject)), false));
}

// All that needs the parsed tree, which is gone when this returns.
void ParseAndBuild(MimeEntityClassData& record, std::string_view bytes) {
  mime::MessageTexts texts;
  mimetic::MimeEntity entity;
  mime::ParseMessage(bytes, entity, texts);
  BuildObjects(record, entity, texts);
}

}  // namespace

void MimeEmailConstructor(abi::REALobject self, MessageBytes message, abi::REALstring source) {
  std::string_view bytes = message.bytes();
  ZQV_LOG("%s%s %lu", "MimeEmailConstructor", static_cast<unsigned long>(bytes.size()));
  auto* record = host::RecordOf<MimeEntityClassData>(self);
  if (record == nullptr) return;
  Begin(*record, bytes, source);
  if (bytes.substr(0, kByteOrderMark.size()) == kByteOrderMark)
    bytes.remove_prefix(kByteOrderMark.size());
  if (!Check(bytes)) return;

  ParseAndBuild(*record, bytes);
  message.Free();
  if (!record->PlainText) record->PlainText.Put(text::HTMLToPlainText(record->HTMLText.get()));
}

}  // namespace zqv::email
