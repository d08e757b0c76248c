// An index from a length to the field names of that length, computed at compile time from
// kFieldNameRows, which is sorted by length. A name is compared only with the few field names of
// the same length:
//
//   "Reply-To"   is compared with "received" and "reply-to", the names of length 8
#include "mime/field_name.h"

#include <cstddef>
#include <iterator>

#include "base/ascii.h"

namespace zqv::mime {
namespace {

constexpr std::size_t kLongest = std::end(kFieldNameRows)[-1].text.size();

// Maps each length to the index of the first row whose text is at least that long, or to
// kFieldNames when no text is.
struct Starts {
  std::uint8_t row[kLongest + 2];
};
constexpr Starts MakeStarts() {
  Starts starts{};
  std::uint8_t row = 0;
  for (std::size_t length = 0; length <= kLongest + 1; ++length) {
    while (row < kFieldNames && kFieldNameRows[row].text.size() < length) ++row;
    starts.row[length] = row;
  }
  return starts;
}
constexpr Starts kStarts = MakeStarts();
static_assert(kStarts.row[kLongest + 1] == kFieldNames, "a longer name stands before");

}  // namespace

std::optional<FieldName> RecogniseFieldName(std::string_view name) {
  if (name.empty() || name.size() > kLongest) return std::nullopt;
  const char first = base::LowerAscii(name.front());
  for (std::size_t i = kStarts.row[name.size()]; i < kStarts.row[name.size() + 1]; ++i) {
    const FieldNameRow& row = kFieldNameRows[i];
    if (row.text.front() == first && base::EqualsIgnoringCase(name, row.text)) return row.name;
  }
  return std::nullopt;
}

}  // namespace zqv::mime
