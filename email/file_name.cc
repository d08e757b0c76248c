// A part's file name comes from one of four header parameters, or else from the Content-ID and the
// first bytes of the body:
//
//   Content-Disposition: attachment; filename="=?utf-8?Q?Caf=C3=A9.pdf?="     "Café.pdf"
//   Content-Disposition: attachment; filename*=utf-8''a.txt                  "a.txt"
//   Content-ID: <logo>, with a body that begins like a PNG file              "logo.png"
#include "email/file_name.h"

#include <algorithm>
#include <utility>

#include "base/ascii.h"
#include "base/log.h"
#include "email/file_type.h"
#include "text/charset.h"

namespace zqv::email {
namespace {

// Parses the value of a parameter "filename*" (RFC 2231, section 4). QUIRK: only charset''value
// with a known charset is recognised, and the value keeps its percent escapes. Any other text, such
// as one with a language between the apostrophes, is the name as a whole. Part of the interface's
// contract; changing it is a major version. Test: FileNames.ExtendedParameterKeepsPercentEscapes.
text::HeaderText ExtendedFileName(std::string_view value) {
  constexpr std::size_t kShortest = 5;
  constexpr std::string_view kSeparator = "''";
  const std::size_t separator =
      value.size() >= kShortest ? value.find(kSeparator) : std::string_view::npos;
  if (separator == std::string_view::npos) return text::DetectText(value);
  const std::string_view charset = value.substr(0, separator);
  const std::optional<abi::Encoding> encoding = text::FindCharset(charset);
  if (encoding.value_or(abi::kUnknownEncoding) != abi::kUnknownEncoding) {
    return text::LabelText(value.substr(separator + kSeparator.size()), *encoding);
  }
  text::HeaderText whole = text::DetectText(value);
  if (!encoding.has_value()) whole.unknown_charset = charset;
  return whole;
}

bool EndsWithIgnoringCase(std::string_view text, std::string_view tail) {
  return text.size() > tail.size() &&
         base::EqualsIgnoringCase(text.substr(text.size() - tail.size()), tail);
}

}  // namespace

std::optional<text::HeaderText> FileNames::Next() {
  const mime::Parameters& disposition = header_.content_disposition().parameters();
  const mime::Parameters& content_type = header_.content_type().parameters();
  switch (next_++) {
    case 0:
      return text::DecodeEncodedWords(disposition.Find("filename"), false);
    case 1:
      return text::DecodeEncodedWords(content_type.Find("filename"), false);
    case 2:
      return text::DecodeEncodedWords(content_type.Find("name"), false);
    case 3:
      return ExtendedFileName(disposition.Find("filename*"));
    case 4:
      return MadeUp();
    default:
      return std::nullopt;
  }
}

text::HeaderText FileNames::MadeUp() {
  made_up_ = MakeUpFileName(std::string(header_.Text(mime::FieldName::kContentId)), decoded_);
  return text::DetectText(made_up_);
}

std::string MakeUpFileName(std::string content_id, std::string_view decoded) {
  constexpr std::size_t kShortestBracketed = 3;
  std::string name = std::move(content_id);
  if (name.size() >= kShortestBracketed) {
    if (base::IsBlank(name.front())) name.erase(0, 1);
    if (name.front() == '<') name.erase(0, 1);
    if (name.back() == '>') name.pop_back();
  }
  if (name.empty()) name = "attachment";
  const std::string_view extension = FindExtension(decoded);
  if (!EndsWithIgnoringCase(name, extension)) name += extension;
  return name;
}

std::string MimeTypeText(const mime::ContentType& content_type) {
  const std::string_view type = content_type.type();
  const std::string_view subtype = content_type.subtype();
  const bool has_both = !type.empty() && !subtype.empty();
  return std::string(type).append(has_both ? "/" : "").append(subtype);
}

std::string_view TrimStart(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
}

}  // namespace zqv::email
