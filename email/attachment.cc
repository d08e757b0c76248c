#include "email/attachment.h"

#include <algorithm>
#include <utility>

#include "email/file_type.h"
#include "host/arrays.h"
#include "host/log.h"
#include "host/record.h"
#include "host/strings.h"
#include "host/unicode.h"
#include "text/ascii.h"
#include "text/charset.h"
#include "text/encoded_word.h"

namespace zqv::email {
namespace {

using host::StringRef;
using mime::FieldName;

// A field's text without leading blanks; nil when nothing is left.
StringRef TrimmedText(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  return host::BuildDetectedString(text);
}

std::string MimeTypeText(const mimetic::ContentType& content_type) {
  const std::string& type = content_type.type();
  const std::string& subtype = content_type.subtype();
  return type.empty() || subtype.empty() ? type + subtype : type + "/" + subtype;
}

// The value of a `filename*` parameter. QUIRK: only charset''value is understood, percent escapes
// stay, and a value with a language between the apostrophes is taken whole. Applications decode it
// themselves. Test: FileNames.ExtendedParameterKeepsPercentEscapes.
StringRef ExtendedFileName(const std::string& value) {
  constexpr std::size_t kShortest = 5;
  constexpr std::string_view kSeparator = "''";
  const std::size_t separator =
      value.size() >= kShortest ? value.find(kSeparator) : std::string::npos;
  if (separator == std::string::npos) return host::CString2RB_detect_encoding(value);
  const abi::Encoding encoding = text::GetEncodingValue(value.substr(0, separator));
  if (encoding == abi::kUnknownEncoding) return host::CString2RB_detect_encoding(value);
  const std::string_view rest = value.c_str() + separator + kSeparator.size();
  if (encoding == abi::kAscii && !host::IsAscii(rest))
    ZQV_LOG("%s%s %s", "Error: text is not ascii", rest.data());
  return host::BuildString(rest, encoding);
}

StringRef FileName(const mime::HeaderView& header, std::string_view decoded) {
  const mimetic::ContentDisposition& disposition = header.content_disposition();
  const mimetic::ContentType& content_type = header.content_type();
  for (const std::string* name : {&disposition.param("filename"), &content_type.param("filename"),
                                  &content_type.param("name")}) {
    if (StringRef text = text::DecodeInlineEncodings(*name, false)) return text;
  }
  if (StringRef text = ExtendedFileName(disposition.param("filename*"))) return text;
  return host::CString2RB_detect_encoding(
      MakeUpFileName(std::string(header.Text(FieldName::kContentId)), decoded));
}

void Fill(MimeAttachmentClassData& record, const mime::HeaderView& header,
          std::string_view decoded) {
  const auto put = [&](host::StringSlot& slot, FieldName name) {
    slot.Put(TrimmedText(header.Text(name)));
  };
  record.MimeType.Put(TrimmedText(MimeTypeText(header.content_type())));
  put(record.MimeVersion, FieldName::kMimeVersion);
  put(record.ContentType, FieldName::kContentType);
  put(record.ContentTransferEncoding, FieldName::kContentTransferEncoding);
  put(record.ContentDisposition, FieldName::kContentDisposition);
  put(record.ContentDescription, FieldName::kContentDescription);
  put(record.contentId, FieldName::kContentId);
  record.Filename.Put(FileName(header, decoded));
}

bool EndsWithIgnoringCase(std::string_view text, std::string_view tail) {
  return text.size() > tail.size() &&
         text::EqualsIgnoringCase(text.substr(text.size() - tail.size()), tail);
}

}  // namespace

std::string MakeUpFileName(std::string content_id, std::string_view decoded) {
  constexpr std::size_t kShortestBracketed = 3;
  std::string name = std::move(content_id);
  if (name.size() >= kShortestBracketed) {
    if (name.front() == ' ' || name.front() == '\t') name.erase(0, 1);
    if (name.front() == '<') name.erase(0, 1);
    if (name.back() == '>') name.pop_back();
  }
  if (name.empty()) name = "attachment";
  const std::string_view extension = FindExtension(decoded);
  if (!EndsWithIgnoringCase(name, extension)) name += extension;
  return name;
}

void AddAttachment(mime::MimeEntityClassData& email_record, abi::REALstring text,
                   const mime::HeaderView& header, abi::REALobject body,
                   abi::REALobject header_object, bool is_inline, std::string_view decoded) {
  const auto object = host::NewInstance<MimeAttachmentClassData>();
  if (!object) return;
  auto& record = *host::RecordOf<MimeAttachmentClassData>(object.get());
  record.Body.Put(host::ObjectRef::Share(body));
  record.Header.Put(host::ObjectRef::Share(header_object));
  record.Data.Put(StringRef::Share(text));
  Fill(record, header, decoded);
  host::ArraySlot& list = is_inline ? email_record.Inlines : email_record.Attachments;
  if (!list) list.Put(host::NewObjectArray());
  if (list) host::AppendObject(list.get(), object.get());
}

void Clear(MimeAttachmentClassData& record) {
  record.Body.Clear();
  record.Header.Clear();
  record.Data.Clear();
  record.Filename.Clear();
  record.MimeType.Clear();
  record.MimeVersion.Clear();
  record.ContentType.Clear();
  record.ContentTransferEncoding.Clear();
  record.ContentDisposition.Clear();
  record.ContentDescription.Clear();
  record.contentId.Clear();
}

}  // namespace zqv::email
