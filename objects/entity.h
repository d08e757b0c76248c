// MimeEntityZQV: one part of a message, with its header and body objects.
#pragma once

#include <optional>

#include "email/transfer.h"
#include "mime/message.h"
#include "objects/lifecycle.h"
#include "objects/records.h"

namespace zqv::objects {

class LocalOffset;

// What FillEntity needs to fill one part's record. [all borrowed]
struct PartContext {
  const mime::Part& part;
  const mime::Header& header;
  MimeEntityClassData& record;        // of the part
  MimeEntityClassData& email_record;  // of the whole message; the same for its top part
  LocalOffset& local_offset;
};

// Creates a part's header object, decodes its body, stores it in the property of the message that
// email::Route selects, and stores its dates. The body object must be in the record already.
// Returns the decoded body; nullopt for a container and for an unknown transfer encoding, which are
// stored in no property of the message. Throws std::bad_alloc.
std::optional<email::DecodedBody> FillEntity(const PartContext& context);

// Creates a host string of a decoded body in the body's encoding; nil for an empty body. Raises an
// exception for an unknown charset if applications have asked for that (words.h). [new lock]
host::StringRef BuildBodyText(const mime::Header& header, std::string_view decoded);

// Store `text` as the message's plain text or HTML, adding a lock, and log that.
void StorePlainText(MimeEntityClassData& email_record, const StringSlot& text);
void StoreHtmlText(MimeEntityClassData& email_record, const StringSlot& text);

// Constructor and destructor, registered with the host. MimeEmailZQV uses this destructor, too.
inline constexpr auto MimeEntityConstructor = &ConstructEmpty;
inline constexpr auto MimeEntityDestructor = &DestroyRecord<MimeEntityClassData>;

}  // namespace zqv::objects
