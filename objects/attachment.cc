#include "objects/attachment.h"

#include <optional>

#include "email/file_name.h"
#include "host/arrays.h"
#include "host/record.h"
#include "host/strings.h"
#include "objects/words.h"

namespace zqv::objects {
namespace {

using host::ObjectRef;
using host::StringRef;
using mime::FieldName;

// The first candidate (email/file_name.h) that is not empty, as a host string; nil if all are.
StringRef FileName(const ListedPart& part) {
  email::FileNames names(part.header, part.decoded);
  while (const std::optional<text::HeaderText> name = names.Next()) {
    if (StringRef string = BuildHeaderText(*name)) return string;
  }
  return {};
}

void Fill(MimeAttachmentClassData& record, const ListedPart& part) {
  const auto put = [](StringSlot& slot, std::string_view text) {
    slot.Put(host::BuildDetectedString(email::TrimStart(text)));
  };
  const mime::Header& header = part.header;
  put(record.MimeType, email::MimeTypeText(header.content_type()));
  put(record.MimeVersion, header.Text(FieldName::kMimeVersion));
  put(record.ContentType, header.Text(FieldName::kContentType));
  put(record.ContentTransferEncoding, header.Text(FieldName::kContentTransferEncoding));
  put(record.ContentDisposition, header.Text(FieldName::kContentDisposition));
  put(record.ContentDescription, header.Text(FieldName::kContentDescription));
  put(record.contentId, header.Text(FieldName::kContentId));
  record.Filename.Put(FileName(part));
}

}  // namespace

void AddAttachment(ArraySlot& list, const ListedPart& part) {
  const ObjectRef object = host::NewInstance<MimeAttachmentClassData>();
  if (!object) return;
  auto& record = *host::RecordOf<MimeAttachmentClassData>(object.get());
  record.Body.Put(part.entity.Body.Share());
  record.Header.Put(part.entity.Header.Share());
  record.Data.Put(part.entity.BodyDecoded.Share());
  Fill(record, part);
  if (!list) list.Put(host::NewObjectArray());
  if (list) host::AppendObject(list.get(), object.get());
}

}  // namespace zqv::objects
