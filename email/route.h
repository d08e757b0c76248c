// Which part of a message is its plain text, which its HTML, which an attachment and which an
// inline part.
#pragma once

#include <optional>
#include <string_view>

#include "abi/encodings.h"
#include "email/transfer.h"
#include "mime/header.h"
#include "text/encoded_word.h"

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

// The views live as long as the header.
PartTraits TraitsOf(const mime::Header& header);

// The destination of a part, given which texts the message already has: the first plain text and
// the first HTML that are no attachments become the message's own, everything else is listed.
Destination Route(const PartTraits& part, bool has_plain_text, bool has_html_text);

// True for a multipart of subtype alternative, related or mixed: it has no content of its own.
// QUIRK: every other multipart (signed, report, digest ...) is listed like a leaf besides its
// parts. Part of the interface's contract; changing it is a major version. Test:
// Routing.SignedMultipartIsListedItself.
bool IsContainer(std::string_view type, std::string_view subtype);

// True for a text of that subtype; words are compared ignoring case.
bool IsText(std::string_view type, std::string_view subtype, std::string_view wanted_subtype);

// The body of a part without its transfer encoding; nothing for a container and for an unknown
// transfer encoding, which have no content. Borrows `body` when nothing has to be decoded.
std::optional<DecodedBody> DecodePart(const mime::Header& header, std::string_view body);

// What a message of one part offers as its text, whatever DecodePart says of it. Nothing for an
// unknown transfer encoding.
std::optional<DecodedBody> DecodeSinglePart(const mime::Header& header, std::string_view body);

// The text of a body: its bytes, all of them, and the encoding that the charset parameter names or,
// without one, that the bytes show.
struct BodyText {
  std::string_view bytes;
  abi::Encoding encoding;
  std::string_view unknown_charset;  // empty unless the parameter names one that nobody knows
};
// [borrowed from both]
BodyText LabelBody(const mime::Header& header, std::string_view decoded);

}  // namespace zqv::email
