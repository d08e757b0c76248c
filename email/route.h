// Which part of a message is its plain text, which its HTML, which an attachment and which an
// inline part; and each part's decoded body as a host string in the right encoding.
#pragma once

#include <mimetic/mimeentity.h>

#include <optional>
#include <string>
#include <string_view>

#include "email/transfer.h"
#include "host/ref.h"
#include "mime/entity.h"
#include "mime/header_view.h"
#include "mime/message_texts.h"

namespace zqv::email {

// Where a part goes.
enum class Destination { kPlainText, kHtmlText, kAttachments, kInlines };

// What decides where a part goes; words are compared ignoring case.
struct PartTraits {
  std::string_view type;  // of the Content-Type
  std::string_view subtype;
  std::string_view disposition;  // of the Content-Disposition; empty when absent
  bool has_content_id = false;   // a Content-ID field that is not empty
};

// The destination of a part, given which texts the message already has: the first plain text and
// the first HTML that are no attachments become the message's own, everything else is listed.
Destination Route(const PartTraits& part, bool has_plain_text, bool has_html_text);

// True for a multipart of subtype alternative, related or mixed: it has no content of its own.
// QUIRK: every other multipart (signed, report, digest ...) is listed like a leaf besides its
// parts. Applications find a signature's container so. Test: Routing.SignedMultipartIsListedItself.
bool IsContainer(std::string_view type, std::string_view subtype);

// True for a text of that subtype; words are compared ignoring case.
bool IsText(std::string_view type, std::string_view subtype, std::string_view wanted_subtype);

// A decoded body as a host string [new lock]: in the named charset, or, when `charset` is empty, in
// the encoding that the bytes show. Nil for an empty body.
host::StringRef BuildBodyText(std::string_view decoded, const std::string& charset);

// Decodes one entity: stores its text in `entity_record` and routes it into `email_record`, which
// is the same record for the message itself. Gives the decoded body, or nothing for a container and
// for an unknown transfer encoding, which are skipped. `text` is the entity's body; `body` and
// `header` [borrowed] are its objects or nil.
std::optional<DecodedBody> DecodeEntity(mime::MimeEntityClassData& entity_record,
                                        const mime::HeaderView& fields, std::string_view text,
                                        mime::MimeEntityClassData& email_record,
                                        abi::REALobject body, abi::REALobject header);

// Stores `text` as the message's plain text or HTML, shared, and says so in the log.
void StorePlainText(mime::MimeEntityClassData& email_record, const host::StringSlot& text);
void StoreHtmlText(mime::MimeEntityClassData& email_record, const host::StringSlot& text);

// Decodes, routes and dates every entity below the message.
class EntityRouter final : public mime::EntitySink {
 public:
  // Routes into `email_record`, which must outlive this, as must `texts`.
  EntityRouter(mime::MimeEntityClassData& email_record, const mime::MessageTexts& texts)
      : email_record_(email_record), texts_(texts) {}

  void OnEntity(const mimetic::MimeEntity& entity, const mime::HeaderView& fields,
                mime::MimeEntityClassData& record, abi::REALobject body,
                abi::REALobject header) override;
  const mime::MessageTexts& texts() const override { return texts_; }

 private:
  mime::MimeEntityClassData& email_record_;
  const mime::MessageTexts& texts_;
};

}  // namespace zqv::email
