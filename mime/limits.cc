// Counts parts, fields and entries as the parser adds them. Counting entries means parsing values.
// So it begins only when the values that have entries are long enough to exceed the limit.
#include "mime/limits.h"

#include <stdexcept>

#include "mime/addresses.h"
#include "mime/parameters.h"

namespace zqv::mime {
namespace {

std::size_t CountTypeParameters(std::string_view value) {
  return ContentType(value).parameters().Count();
}
std::size_t CountDispositionParameters(std::string_view value) {
  return ContentDisposition(value).parameters().Count();
}

// The function that counts the entries of a field; null for a field that has none.
CountEntries CounterOf(std::optional<FieldName> name) {
  switch (name.value_or(FieldName::kDate)) {
    case FieldName::kBcc:
    case FieldName::kCc:
    case FieldName::kReplyTo:
    case FieldName::kTo:
      return &AddressList::CountMailboxes;
    case FieldName::kFrom:
      return &MailboxList::CountMailboxes;
    case FieldName::kSender:
      return &MailboxValue::CountMailboxes;
    case FieldName::kContentDisposition:
      return &CountDispositionParameters;
    case FieldName::kContentType:
      return &CountTypeParameters;
    default:
      return nullptr;
  }
}

}  // namespace

void MessageLimits::AdmitPart() {
  if (++parts_ > kMostParts) throw std::runtime_error("the message has too many parts");
}

void MessageLimits::AdmitField(const std::vector<Field>& fields) {
  if (fields.size() > kMostFields) throw std::runtime_error("the message has too many fields");
  const Field& field = fields.back();
  if (CounterOf(field.known) == nullptr) return;
  most_entries_ += field.value.size() + 1;
  if (most_entries_ <= kMostEntries) return;
  for (; counted_fields_ < fields.size(); ++counted_fields_) {
    const Field& counted = fields[counted_fields_];
    if (const CountEntries count = CounterOf(counted.known)) entries_ += count(counted.value);
  }
  if (entries_ > kMostEntries) {
    throw std::runtime_error("the message has too many addresses or parameters");
  }
}

void AdmitText(CountEntries count, std::string_view text) {
  if (count != nullptr && count(text) > kMostEntries) {
    throw std::runtime_error("the text has too many addresses");
  }
}

}  // namespace zqv::mime
