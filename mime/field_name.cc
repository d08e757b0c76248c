// A table of names sorted by length, and an index from a length to the rows with it, computed at
// compile time. So looking up a name compares it with the few names of the same length:
//
//   "Reply-To"   length 8, which "received" and "reply-to" have
#include "mime/field_name.h"

#include <cstddef>
#include <iterator>

#include "base/ascii.h"

namespace zqv::mime {
namespace {

struct Row {
  std::string_view name;
  FieldName field;
};

// Sorted by length.
constexpr Row kNames[] = {
    // clang-format off
    {"cc",                        FieldName::kCc},
    {"to",                        FieldName::kTo},
    {"bcc",                       FieldName::kBcc},
    {"date",                      FieldName::kDate},
    {"from",                      FieldName::kFrom},
    {"sender",                    FieldName::kSender},
    {"subject",                   FieldName::kSubject},
    {"received",                  FieldName::kReceived},
    {"reply-to",                  FieldName::kReplyTo},
    {"content-id",                FieldName::kContentId},
    {"message-id",                FieldName::kMessageId},
    {"content-type",              FieldName::kContentType},
    {"mime-version",              FieldName::kMimeVersion},
    {"content-description",       FieldName::kContentDescription},
    {"content-disposition",       FieldName::kContentDisposition},
    {"content-transfer-encoding", FieldName::kContentTransferEncoding},
    // clang-format on
};

constexpr std::size_t kLongest = std::end(kNames)[-1].name.size();

// Maps each length to the first row whose name is at least that long.
struct Starts {
  std::uint8_t row[kLongest + 2];
};
constexpr Starts MakeStarts() {
  Starts starts{};
  std::uint8_t row = 0;
  for (std::size_t length = 0; length <= kLongest + 1; ++length) {
    while (row < std::size(kNames) && kNames[row].name.size() < length) ++row;
    starts.row[length] = row;
  }
  return starts;
}
constexpr Starts kStarts = MakeStarts();
static_assert(kStarts.row[kLongest + 1] == std::size(kNames), "a longer name stands before");

}  // namespace

std::optional<FieldName> RecogniseFieldName(std::string_view name) {
  if (name.empty() || name.size() > kLongest) return std::nullopt;
  const char first = base::LowerAscii(name.front());
  for (std::size_t i = kStarts.row[name.size()]; i < kStarts.row[name.size() + 1]; ++i) {
    const Row& row = kNames[i];
    if (row.name.front() == first && base::EqualsIgnoringCase(name, row.name)) return row.field;
  }
  return std::nullopt;
}

}  // namespace zqv::mime
