#include "objects/header.h"

#include "host/arrays.h"
#include "host/errors.h"
#include "host/record.h"
#include "host/strings.h"
#include "mime/header.h"
#include "objects/address_list.h"
#include "objects/field.h"
#include "objects/mailbox.h"
#include "objects/mailbox_list.h"
#include "objects/words.h"

namespace zqv::objects {
namespace {

using host::BuildDetectedString;
using mime::FieldName;

void FillTexts(MimeHeaderClassData& record, const mime::Header& header) {
  // These two are stored even when the header lacks the fields: "0.0" and "/" (mime/header.h).
  record.MimeVersion.Put(BuildDetectedString(header.Text(FieldName::kMimeVersion)));
  record.ContentType.Put(BuildDetectedString(header.Text(FieldName::kContentType)));
  const auto put = [&](host::StringSlot& slot, FieldName name) {
    if (header.Has(name)) slot.Put(BuildDetectedString(header.Text(name)));
  };
  put(record.ContentTransferEncoding, FieldName::kContentTransferEncoding);
  put(record.ContentTransferEncodingMechanism, FieldName::kContentTransferEncoding);
  put(record.ContentDisposition, FieldName::kContentDisposition);
  put(record.ContentDescription, FieldName::kContentDescription);
  put(record.contentId, FieldName::kContentId);
  put(record.subject, FieldName::kSubject);
  put(record.messageid, FieldName::kMessageId);
  record.subjectDecoded.Put(DecodeInlineEncodings(header.Text(FieldName::kSubject), false));
}

// An address field that is missing or contains no address leaves its slot nil.
void FillAddresses(MimeHeaderClassData& record, const mime::Header& header) {
  const mime::Mailbox& sender = header.sender();
  if (!sender.local_part.empty()) record.sender.Put(NewFilled<MimeMailboxClassData>(sender));
  const mime::MailboxList& from = header.from();
  if (!from.empty()) record.from.Put(NewFilled<MimeMailboxListClassData>(from));
  const auto put = [](host::ObjectSlot& slot, const mime::AddressList& list) {
    if (!list.empty()) slot.Put(NewFilled<MimeAddressListClassData>(list));
  };
  put(record.too, header.to());
  put(record.replyto, header.reply_to());
  put(record.cc, header.cc());
  put(record.bcc, header.bcc());
}

void FillFields(MimeHeaderClassData& record, const mime::Header& header) {
  record.fields.Put(host::NewObjectArray());
  if (!record.fields) return;
  host::NewListFiller list(record.fields.get());
  for (std::size_t i = 0; i < header.size(); ++i) {
    const host::ObjectRef object = NewFilled<MimeFieldClassData>(header[i].name, header.Value(i));
    if (object) list.Append(object.get());
  }
}

// The first field whose name is equal to `name` as the host compares strings; nil when there is
// none or the host has no function for that. [new lock]
host::ObjectRef FindField(abi::REALobject self, abi::REALstring name) {
  const auto* record = host::RecordOf<MimeHeaderClassData>(self);
  if (record == nullptr || !record->fields) return {};
  if (host::entry::RuntimeStringCompare.Find() == nullptr) return {};
  const std::int64_t count = host::ArrayCount(record->fields.get());
  for (std::int64_t i = 0; i < count; ++i) {
    host::ObjectRef field = host::REALGetArrayObject(record->fields.get(), i);
    const auto* field_record = host::RecordOf<MimeFieldClassData>(field.get());
    if (field_record == nullptr) continue;
    const host::StringRef field_name = field_record->Name.Share();
    if (host::entry::RuntimeStringCompare(field_name.get(), name) == 0) return field;
  }
  return {};
}

}  // namespace

host::ObjectRef NewMimeHeaderZQV(const mime::Header& header) {
  auto object = host::NewInstance<MimeHeaderClassData>();
  if (!object) return {};
  host::Guard([&] {
    MimeHeaderClassData& record = *host::RecordOf<MimeHeaderClassData>(object.get());
    FillTexts(record, header);
    FillAddresses(record, header);
    FillFields(record, header);
  });
  return object;
}

abi::RBBoolean hasField(abi::REALobject self, abi::REALstring name) {
  return host::Guard([=] { return static_cast<abi::RBBoolean>(FindField(self, name) ? 1 : 0); });
}

abi::REALobject FieldByName(abi::REALobject self, abi::REALstring name) {
  return host::Guard([=] { return FindField(self, name); });
}

}  // namespace zqv::objects
