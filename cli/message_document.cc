#include "cli/message_document.h"

#include <optional>

#include "cli/document.h"
#include "cli/message.h"
#include "cli/message_source.h"
#include "cli/summary.h"

namespace zqv::cli {
namespace {

TextForm FormOf(FileForm files, const TextForm& text) {
  switch (files) {
    case FileForm::kText:
      return text;
    case FileForm::kBase64:
      return RawText;
    case FileForm::kNone:
      break;
  }
  return NoText;
}

}  // namespace

JsonValue MessageDocument(const standin::Object& email, const Request& request, FileForm files) {
  const TextForm text = request.raw ? RawText : ReadableText;
  JsonValue message = DescribeMessage(email, text, FormOf(files, text));
  const standin::String bytes = TextMember(email, "Source");
  const MessageSource header(HeaderOf(bytes.bytes()));
  const std::optional<WrittenDate> date = DateOf(header);
  message["date_utc"] = date ? JsonValue(Rfc3339Utc(*date)) : JsonValue();
  return message;
}

}  // namespace zqv::cli
