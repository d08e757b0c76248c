// The objects are created in one walk over the parts, without recursion. Entity and body objects of
// a part are created before those of the parts inside it. Its header and text are filled, and it is
// added to a list, after them. So parts are listed before the multiparts around them.
#include "objects/build.h"

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "base/log.h"
#include "base/unicode.h"
#include "email/route.h"
#include "host/arrays.h"
#include "host/errors.h"
#include "host/record.h"
#include "host/strings.h"
#include "mime/message.h"
#include "objects/body.h"
#include "objects/dates.h"
#include "objects/entity.h"
#include "objects/words.h"

namespace zqv::objects {
namespace {

// Stores the empty lists and the source. They stay when the message is then refused.
void Begin(MimeEntityClassData& record, std::string_view message, abi::REALstring source) {
  Clear(record);
  record.Inlines.Put(host::NewObjectArray());
  record.Attachments.Put(host::NewObjectArray());
  record.Source.Put(source != nullptr ? host::StringRef::Share(source)
                                      : host::BuildString(message, abi::kUnknownEncoding));
}

// Whether the message is accepted; raises an exception if not.
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

// Creates the objects of one message while walking over its parts.
class TreeBuilder {
 public:
  TreeBuilder(const mime::Message& message, MimeEntityClassData& record)
      : message_(message), email_record_(record) {}

  // Creates all objects. Returns the decoded body of the top part; nullopt if it was not decoded.
  std::optional<email::DecodedBody> Run() {
    mime::Walk(
        message_.parts(), 0, [this](mime::PartIndex part) { return Enter(part); },
        [this](mime::PartIndex part) { Leave(part); });
    return std::move(decoded_);
  }

 private:
  // An entity whose parts are being built. Its body is stored in the record only when they are
  // complete, so that an exception in between leaves no incomplete body there.
  struct OpenEntity {
    host::ObjectRef object;  // nil for the message itself, whose object the host has made
    host::ObjectRef body;
    MimeEntityClassData* record;
  };

  // Skips a part, and the parts inside it, when the host cannot make its object.
  mime::Visit Enter(mime::PartIndex index) {
    OpenEntity entity{{}, {}, &email_record_};
    if (index > 0) {
      entity.object = host::NewInstance<MimeEntityClassData>();
      if (!entity.object) return mime::Visit::kSkip;
      entity.record = host::RecordOf<MimeEntityClassData>(entity.object.get());
    }
    entity.body = NewMimeBodyZQV(message_.parts()[index]);
    const bool has_body = static_cast<bool>(entity.body);
    open_.push_back(std::move(entity));
    return has_body ? mime::Visit::kInside : mime::Visit::kLeave;
  }

  void Leave(mime::PartIndex index) {
    OpenEntity entity = std::move(open_.back());
    open_.pop_back();
    entity.record->Body.Put(std::move(entity.body));
    const mime::Part& part = message_.parts()[index];
    const mime::Header header = message_.HeaderOf(part);
    decoded_ = FillEntity({part, header, *entity.record, email_record_, local_offset_});
    if (!entity.object) return;
    const auto* around = host::RecordOf<MimeBodyClassData>(open_.back().body.get());
    if (around->parts) host::AppendObject(around->parts.get(), entity.object.get());
  }

  const mime::Message& message_;
  MimeEntityClassData& email_record_;
  LocalOffset local_offset_;
  std::vector<OpenEntity> open_;
  std::optional<email::DecodedBody> decoded_;  // the body of the part that Leave handled last
};

// Completes a message of a single part: stores its body as the message's plain text, or as HTML for
// text/html. `decoded` is the body as FillEntity decoded it, or nullopt when it did not.
// QUIRK: a part of any other type, such as an image, becomes the plain text as well, in addition to
// being listed. Part of the interface's contract; changing it is a major version.
// Test: SinglePart.ImageIsListedAndOfferedAsText.
void CompleteSinglePart(MimeEntityClassData& record, const mime::Message& message,
                        std::optional<email::DecodedBody>&& decoded) {
  const mime::Header header = message.HeaderOf(message.top());
  if (!decoded.has_value()) decoded = email::DecodeSinglePart(header, message.top().body);
  if (!decoded.has_value()) return;

  record.BodyDecoded.Put(BuildBodyText(header, decoded->bytes()));
  const mime::ContentType& type = header.content_type();
  if (email::IsText(type.type(), type.subtype(), "plain")) {
    if (!record.PlainText) StorePlainText(record, record.BodyDecoded);
  } else if (email::IsText(type.type(), type.subtype(), "html")) {
    if (!record.HTMLText) StoreHtmlText(record, record.BodyDecoded);
  } else {
    ZQV_LOG("no mime type, make it text");
    record.PlainText.Put(record.BodyDecoded.Share());
  }
}

// Everything that uses the parsed message, whose memory is freed at the end.
void ParseAndBuild(MimeEntityClassData& record, std::string_view bytes) {
  const mime::Message message(bytes);
  std::optional<email::DecodedBody> decoded = TreeBuilder(message, record).Run();
  const std::size_t parts = message.top().child_count;
  ZQV_LOG("parts count %zu", parts);
  if (parts == 0) CompleteSinglePart(record, message, std::move(decoded));
  const mime::Field* const subject =
      message.HeaderOf(message.top()).Find(mime::FieldName::kSubject);
  if (subject != nullptr) record.Subject.Put(DecodeInlineEncodings(subject->value, false));
}

}  // namespace

void MimeEmailConstructor(abi::REALobject self, MessageBytes message, abi::REALstring source) {
  std::string_view bytes = message.bytes();
  ZQV_LOG("MimeEmailConstructor %zu", bytes.size());
  auto* record = host::RecordOf<MimeEntityClassData>(self);
  if (record == nullptr) return;
  Begin(*record, bytes, source);
  bytes = base::WithoutByteOrderMark(bytes);
  if (!Check(bytes)) return;

  ParseAndBuild(*record, bytes);
  message.Free();
  if (!record->PlainText) record->PlainText.Put(NewPlainText(record->HTMLText.get()));
}

}  // namespace zqv::objects
