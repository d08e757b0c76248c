// MimeEntityZQV: one part of a message, with its header and body objects.
#pragma once

#include <optional>

#include "email/transfer.h"
#include "mime/message.h"
#include "objects/lifecycle.h"
#include "objects/records.h"

namespace zqv::objects {

class LocalOffset;

// A part whose objects are being made, and what is the same for all parts: the message's own
// record, which for the message itself is that of the part, and the machine's time.
struct PartContext {
  const mime::Part& part;
  const mime::Header& header;
  MimeEntityClassData& record;
  MimeEntityClassData& email_record;
  LocalOffset& local_offset;
};

// Makes the header object of a part whose body object is there, decodes and routes the part, and
// stores its dates. Gives the decoded body, or nothing for a container and for an unknown transfer
// encoding, which are not routed. May throw.
std::optional<email::DecodedBody> FillEntity(const PartContext& context);

// A decoded body as a host string in its encoding [new lock]; nil for an empty one. Reports an
// unknown charset.
host::StringRef BuildBodyText(const mime::Header& header, std::string_view decoded);

// Stores `text` as the message's plain text or HTML, shared, and writes a log line about it.
void StorePlainText(MimeEntityClassData& email_record, const StringSlot& text);
void StoreHtmlText(MimeEntityClassData& email_record, const StringSlot& text);

// Gives back everything that the record holds; nil afterwards.
void Clear(MimeEntityClassData& record);

// Registered with the host, for MimeEmailZQV too.
inline constexpr auto MimeEntityConstructor = &ConstructEmpty;
inline constexpr auto MimeEntityDestructor = &DestroyRecord<MimeEntityClassData>;

}  // namespace zqv::objects
