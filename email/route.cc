// Routing depends on a part's type, its disposition and whether it has a Content-ID:
//
//   Content-Disposition: attachment              in Attachments, whatever the type
//   Content-Type: text/plain; charset=utf-8      the message's plain text, if it is the first
//   Content-Type: text/html                      the message's HTML text, if it is the first
//   Content-Disposition: inline                  in Inlines
//   Content-ID: <logo@example.org>               in Inlines
//   anything else                                in Attachments
//
// The first row that applies to a part is used.
#include "email/route.h"

#include "base/ascii.h"
#include "base/log.h"
#include "base/unicode.h"
#include "text/charset.h"

namespace zqv::email {

using base::EqualsIgnoringCase;
using mime::FieldName;

PartTraits TraitsOf(const mime::Header& header) {
  PartTraits part;
  part.type = header.content_type().type();
  part.subtype = header.content_type().subtype();
  part.disposition = header.content_disposition().type();
  part.has_content_id = !header.Text(FieldName::kContentId).empty();
  return part;
}

bool IsContainer(std::string_view type, std::string_view subtype) {
  return EqualsIgnoringCase(type, "multipart") &&
         (EqualsIgnoringCase(subtype, "alternative") || EqualsIgnoringCase(subtype, "related") ||
          EqualsIgnoringCase(subtype, "mixed"));
}

bool IsText(std::string_view type, std::string_view subtype, std::string_view wanted_subtype) {
  return EqualsIgnoringCase(type, "text") && EqualsIgnoringCase(subtype, wanted_subtype);
}

// Chooses the destination of a part as route.h describes it. QUIRK: a part without Content-Type
// does not count as text/plain, although RFC 2045, section 5.2, makes that the default: it is
// listed like a file. Part of the interface's contract; changing it is a major version. Test:
// SinglePart.WithoutATypeIsOfferedAsText.
Destination Route(const PartTraits& part, bool has_plain_text, bool has_html_text) {
  if (EqualsIgnoringCase(part.disposition, "attachment")) return Destination::kAttachments;
  if (IsText(part.type, part.subtype, "plain") && !has_plain_text) return Destination::kPlainText;
  if (IsText(part.type, part.subtype, "html") && !has_html_text) return Destination::kHtmlText;
  const bool is_inline = EqualsIgnoringCase(part.disposition, "inline") || part.has_content_id;
  return is_inline ? Destination::kInlines : Destination::kAttachments;
}

std::optional<DecodedBody> DecodePart(const mime::Header& header, std::string_view body) {
  const mime::ContentType& type = header.content_type();
  if (IsContainer(type.type(), type.subtype())) return std::nullopt;
  return DecodeSinglePart(header, body);
}

std::optional<DecodedBody> DecodeSinglePart(const mime::Header& header, std::string_view body) {
  const std::string_view mechanism = header.Text(FieldName::kContentTransferEncoding);
  if (!is_known_mechanism(mechanism)) return std::nullopt;
  return DecodeData(mechanism, body);
}

BodyText LabelBody(const mime::Header& header, std::string_view decoded) {
  const std::string_view charset = header.content_type().parameters().Find("charset");
  if (charset.empty()) return {decoded, base::DetectEncoding(decoded), {}};
  const std::optional<abi::Encoding> encoding = text::FindCharset(charset);
  if (!encoding.has_value()) return {decoded, abi::kUnknownEncoding, charset};
  return {decoded, *encoding, {}};
}

}  // namespace zqv::email
