#include "mime/limits.h"

#include <algorithm>
#include <stdexcept>

namespace zqv::mime {
namespace {

ListKind KindOf(std::optional<FieldName> name) {
  switch (name.value_or(FieldName::kDate)) {
    case FieldName::kBcc:
    case FieldName::kCc:
    case FieldName::kReplyTo:
    case FieldName::kTo:
      return ListKind::kAddresses;
    case FieldName::kFrom:
      return ListKind::kMailboxes;
    case FieldName::kSender:
      return ListKind::kMailbox;
    case FieldName::kContentDisposition:
    case FieldName::kContentType:
      return ListKind::kParameters;
    default:
      return ListKind::kNone;
  }
}

std::size_t CountUnquotedCommas(std::string_view value) {
  std::size_t count = 0;
  bool in_quotes = false;
  for (const char c : value) {
    if (c == '"') in_quotes = !in_quotes;
    if (c == ',' && !in_quotes) ++count;
  }
  return count;
}

}  // namespace

std::size_t CountEntries(ListKind kind, std::string_view value) {
  switch (kind) {
    case ListKind::kNone:
      return 0;
    case ListKind::kMailbox:
      return 1;
    case ListKind::kMailboxes:
    case ListKind::kAddresses:
      return 1 + CountUnquotedCommas(value);
    case ListKind::kParameters:
      return static_cast<std::size_t>(std::count(value.begin(), value.end(), ';'));
  }
  return 0;
}

void MessageLimits::AdmitPart() {
  if (++parts_ > kMostParts) throw std::runtime_error("the message has too many parts");
}

void MessageLimits::AdmitField(std::optional<FieldName> name, std::string_view value) {
  if (++fields_ > kMostFields) throw std::runtime_error("the message has too many fields");
  entries_ += CountEntries(KindOf(name), value);
  if (entries_ > kMostEntries) {
    throw std::runtime_error("the message has too many addresses or parameters");
  }
}

void AdmitText(ListKind kind, std::string_view text) {
  if (CountEntries(kind, text) > kMostEntries) {
    throw std::runtime_error("the text has too many addresses");
  }
}

}  // namespace zqv::mime
