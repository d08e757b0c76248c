#include "email/strip.h"

#include <memory>
#include <sstream>

#include "host/errors.h"
#include "host/log.h"
#include "host/record.h"
#include "host/strings.h"
#include "host/text_reader.h"
#include "mime/parser.h"
#include "mime/records.h"
#include "text/ascii.h"

namespace zqv::email {
namespace {

bool IsFile(const mimetic::MimeEntity& entity) {
  const std::string& disposition = entity.header().contentDisposition().type();
  ZQV_LOG("%s%s %s", "IsAttachment", disposition.c_str());
  return text::EqualsIgnoringCase(disposition, "inline") ||
         text::EqualsIgnoringCase(disposition, "attachment");
}

void RemoveFiles(mimetic::MimeEntityList& parts) {
  auto at = parts.begin();
  while (at != parts.end()) {
    if (!IsFile(**at)) {
      ++at;
      continue;
    }
    ZQV_LOG("%s%s", "Removed an attachment.");
    const std::unique_ptr<mimetic::MimeEntity> removed(*at);
    at = parts.erase(at);
    // What stands before has been asked and stays. Only the log tells of a scan from the start.
    if (host::DebuggingEnabled) at = parts.begin();
  }
}

host::StringRef WriteWithoutFiles(const std::string& source) {
  mimetic::MimeEntity entity;
  mime::ParseMessage(source, entity);
  RemoveAttachments(entity.body().parts());
  std::ostringstream out;
  out << entity;
  ZQV_LOG("%s%s", "FixLineEndings");
  std::size_t removed = 0;
  const std::string text = RewriteLineBreaks(out.str(), removed);
  ZQV_LOG("%s%s %lu", "removed characters", static_cast<unsigned long>(removed));
  return host::CString2RB_detect_encoding(text);
}

}  // namespace

void RemoveAttachments(mimetic::MimeEntityList& parts) {
  RemoveFiles(parts);
  for (mimetic::MimeEntity* part : parts) RemoveAttachments(part->body().parts());
}

std::string RewriteLineBreaks(std::string_view text, std::size_t& removed) {
  std::string rewritten;
  rewritten.reserve(text.size() + 1);
  std::size_t last_cr = 0;
  std::size_t last_break_from_lf = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c != '\r' && c != '\n') {
      rewritten += c;
      continue;
    }
    // The other half of a pair that has been written already?
    if (i == (c == '\r' ? last_break_from_lf : last_cr) + 1) {
      ++removed;
      continue;
    }
    (c == '\r' ? last_cr : last_break_from_lf) = i;
    rewritten += '\r';
  }
  return rewritten;
}

abi::REALstring SourceWithoutAttachments(abi::REALobject self) {
  return host::Guard([self] {
    const auto* record = host::RecordOf<mime::MimeEntityClassData>(self);
    if (record == nullptr || !record->Source) return host::StringRef();
    return WriteWithoutFiles(host::ReadUtf8(record->Source.get()));
  });
}

}  // namespace zqv::email
