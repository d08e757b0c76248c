// MimeAttachmentZQV: a flat summary of a part that is neither the message's plain text nor its
// HTML.
#pragma once

#include <string>
#include <string_view>

#include "abi/records.h"
#include "mime/header_view.h"
#include "mime/lifecycle.h"
#include "mime/records.h"

namespace zqv::email {

// QUIRK: the record stores MimeType before MimeVersion, the class lists them the other way round.
// Test: Registration.AttachmentKeepsBothOrders.
struct MimeAttachmentClassData {
  host::ObjectSlot Body;    // MimeBodyZQV, shared with the part's entity
  host::ObjectSlot Header;  // MimeHeaderZQV, shared likewise
  host::StringSlot Data;    // the part's decoded body, shared likewise
  host::StringSlot Filename;
  host::StringSlot MimeType;  // type/subtype
  host::StringSlot MimeVersion;
  host::StringSlot ContentType;  // this and the rest: the field's whole text
  host::StringSlot ContentTransferEncoding;
  host::StringSlot ContentDisposition;
  host::StringSlot ContentDescription;
  host::StringSlot contentId;
};
static_assert(sizeof(MimeAttachmentClassData) == 11 * sizeof(void*));

// Makes the record of one part and appends it to the message's Inlines or Attachments. `text`,
// `body` and `header_object` [borrowed] may be nil. A part that the host cannot make an object or a
// list for is not listed.
void AddAttachment(mime::MimeEntityClassData& email_record, abi::REALstring text,
                   const mime::HeaderView& header, abi::REALobject body,
                   abi::REALobject header_object, bool is_inline, std::string_view decoded);

// The file name for a part whose header names none: the Content-ID without its angle brackets, or
// "attachment", with the extension that the data shows.
std::string MakeUpFileName(std::string content_id, std::string_view decoded);

// Gives back everything that the record holds; nil afterwards.
void Clear(MimeAttachmentClassData& record);

// Registered with the host.
inline constexpr auto MimeAttachmentConstructor = &mime::ConstructEmpty;
inline constexpr auto Destructor = &mime::DestroyRecord<MimeAttachmentClassData>;

}  // namespace zqv::email
