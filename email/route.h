// Decides which part of a message is its plain text and which its HTML, and which parts are listed
// as attachments or as inline parts. Decodes the body of a part and finds its character encoding.
#pragma once

#include <optional>
#include <string_view>

#include "abi/encodings.h"
#include "email/transfer.h"
#include "mime/header.h"
#include "text/encoded_word.h"

namespace zqv::email {

// The property of a message that a part is stored in.
enum class Destination { kPlainText, kHtmlText, kAttachments, kInlines };

// The facts about a part that Route depends on. Words are compared ignoring case.
struct PartTraits {
  std::string_view type;  // of the Content-Type; empty when absent
  std::string_view subtype;
  std::string_view disposition;  // of the Content-Disposition; empty when absent
  bool has_content_id = false;   // a Content-ID field that is not empty
};

// Reads the traits of a part from `header`. [borrowed from `header`]
PartTraits TraitsOf(const mime::Header& header);

// The destination of a part, given whether the message has a plain text and an HTML text already.
// A part with the disposition "attachment" is listed as an attachment. Among the other parts, the
// first text/plain and the first text/html part become these texts. All others are listed: as an
// inline part if their disposition is "inline" or they have a Content-ID, else as an attachment.
Destination Route(const PartTraits& part, bool has_plain_text, bool has_html_text);

// Whether a part is multipart/alternative, multipart/related or multipart/mixed. These are never
// listed as attachments or inline parts. QUIRK: any other multipart (signed, report, digest) is
// listed like a leaf, in addition to the parts inside it. Part of the interface's contract;
// changing it is a major version. Test: Routing.SignedMultipartIsListedItself.
bool IsContainer(std::string_view type, std::string_view subtype);

// Whether a part is text/`wanted_subtype`, ignoring case.
bool IsText(std::string_view type, std::string_view subtype, std::string_view wanted_subtype);

// Returns the body of a part without its transfer encoding. Returns nullopt for a container
// (IsContainer) and for an unknown transfer encoding. [borrowed from `body` when nothing has to be
// decoded; otherwise owned]
std::optional<DecodedBody> DecodePart(const mime::Header& header, std::string_view body);

// Like DecodePart, but also decodes the body of a container. Used for a message of one part: the
// body becomes the text of the message, whatever the part's type is.
std::optional<DecodedBody> DecodeSinglePart(const mime::Header& header, std::string_view body);

// A view of a decoded body, with its character encoding.
struct BodyText {
  std::string_view bytes;
  abi::Encoding encoding;            // kUnknownEncoding for an unknown charset
  std::string_view unknown_charset;  // the charset parameter when it names no known charset
};
// Returns `decoded` with its character encoding: that of the charset parameter of Content-Type or,
// if this is absent or empty, the one that base::DetectEncoding guesses. [borrowed from both
// arguments]
BodyText LabelBody(const mime::Header& header, std::string_view decoded);

}  // namespace zqv::email
