#include "mime/header.h"

#include "host/arrays.h"
#include "host/errors.h"
#include "host/record.h"
#include "host/strings.h"
#include "mime/address_list.h"
#include "mime/field.h"
#include "mime/header_view.h"
#include "mime/mailbox.h"
#include "mime/mailbox_list.h"
#include "text/encoded_word.h"

namespace zqv::mime {
namespace {

using host::CString2RB_detect_encoding;

void FillTexts(MimeHeaderClassData& record, const HeaderView& header) {
  const mimetic::ContentTransferEncoding& encoding = header.content_transfer_encoding();
  const std::string subject = header.subject();
  record.MimeVersion.Put(CString2RB_detect_encoding(header.mime_version().str()));
  record.ContentType.Put(CString2RB_detect_encoding(header.content_type().str()));
  record.ContentTransferEncoding.Put(CString2RB_detect_encoding(encoding.str()));
  record.ContentTransferEncodingMechanism.Put(CString2RB_detect_encoding(encoding.mechanism()));
  record.ContentDisposition.Put(CString2RB_detect_encoding(header.content_disposition().str()));
  record.ContentDescription.Put(CString2RB_detect_encoding(header.content_description().str()));
  record.contentId.Put(CString2RB_detect_encoding(header.content_id()));
  record.subject.Put(CString2RB_detect_encoding(subject));
  record.messageid.Put(CString2RB_detect_encoding(header.message_id()));
  record.subjectDecoded.Put(text::DecodeInlineEncodings(subject, false));
}

// An address field that the header lacks, or that holds nobody, gives nil and no empty object.
void FillAddresses(MimeHeaderClassData& record, const HeaderView& header) {
  const mimetic::Mailbox& sender = header.sender();
  if (!sender.mailbox(1).empty()) record.sender.Put(NewFilled<MimeMailboxClassData>(sender));
  const mimetic::MailboxList& from = header.from();
  if (!from.empty()) record.from.Put(NewFilled<MimeMailboxListClassData>(from));
  const auto put = [](host::ObjectSlot& slot, const mimetic::AddressList& list) {
    if (!list.empty()) slot.Put(NewFilled<MimeAddressListClassData>(list));
  };
  put(record.too, header.to());
  put(record.replyto, header.reply_to());
  put(record.cc, header.cc());
  put(record.bcc, header.bcc());
}

void FillFields(MimeHeaderClassData& record, const HeaderView& header) {
  record.fields.Put(host::NewObjectArray());
  if (!record.fields) return;
  std::string storage;
  for (std::size_t i = 0; i < header.size(); ++i) {
    const std::string_view value = header.Value(i, storage);
    const host::ObjectRef object =
        NewFilled<MimeFieldClassData>(std::string_view(header.Name(i)), value);
    if (object) host::AppendObject(record.fields.get(), object.get());
  }
}

// The first field whose name the host finds equal to `name`; nil when there is none.
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

host::ObjectRef NewMimeHeaderZQV(const HeaderView& header) {
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

void Clear(MimeHeaderClassData& record) {
  record.MimeVersion.Clear();
  record.ContentType.Clear();
  record.ContentTransferEncoding.Clear();
  record.ContentTransferEncodingMechanism.Clear();
  record.ContentDisposition.Clear();
  record.ContentDescription.Clear();
  record.contentId.Clear();
  record.sender.Clear();
  record.from.Clear();
  record.too.Clear();
  record.subject.Clear();
  record.subjectDecoded.Clear();
  record.replyto.Clear();
  record.cc.Clear();
  record.bcc.Clear();
  record.messageid.Clear();
  record.fields.Clear();
}

abi::RBBoolean hasField(abi::REALobject self, abi::REALstring name) {
  return host::Guard([=] { return static_cast<abi::RBBoolean>(FindField(self, name) ? 1 : 0); });
}

abi::REALobject FieldByName(abi::REALobject self, abi::REALstring name) {
  return host::Guard([=] { return FindField(self, name); });
}

}  // namespace zqv::mime
