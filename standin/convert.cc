// Conversions go through UTF-32. The table below maps the host's encoding numbers to the names of
// charsets (standin/charset.h). A row without a name is an encoding that the host numbers but
// cannot convert.
#include "standin/convert.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "base/ascii.h"
#include "base/unicode.h"
#include "standin/charset.h"

namespace zqv::standin {
namespace {

struct Row {
  abi::Encoding encoding;
  const char* name;  // null: cannot be converted
  bool has_ascii;    // bytes below 0x80 mean the same as in ASCII
};

// Sorted by number. 0x0822 is decoded by the converter of 0x0821, a superset of it. clang-format
// off
constexpr std::array kRows = {
    Row{0x0000, "MACINTOSH", true},
    Row{0x0007, "MAC-CYRILLIC", true},
    Row{0x0100, kUtf16Here, false},
    Row{0x0201, "ISO-8859-1", true},
    Row{0x0202, "ISO-8859-2", true},
    Row{0x0203, "ISO-8859-3", true},
    Row{0x0204, "ISO-8859-4", true},
    Row{0x0205, "ISO-8859-5", true},
    Row{0x0206, "ISO-8859-6", true},
    Row{0x0207, "ISO-8859-7", true},
    Row{0x0208, "ISO-8859-8", true},
    Row{0x0209, "ISO-8859-9", true},
    Row{0x020A, "ISO-8859-10", true},
    Row{0x020B, "ISO-8859-11", true},
    Row{0x020C, nullptr, false},
    Row{0x020D, "ISO-8859-13", true},
    Row{0x020E, "ISO-8859-14", true},
    Row{0x020F, "ISO-8859-15", true},
    Row{0x0210, "ISO-8859-16", true},
    Row{0x0400, "CP437", true},
    Row{0x0405, "CP737", true},
    Row{0x0406, "CP775", true},
    Row{0x0410, "CP850", true},
    Row{0x0411, "CP851", true},
    Row{0x0412, "CP852", true},
    Row{0x0413, "CP855", true},
    Row{0x0414, "CP857", true},
    Row{0x0415, "CP860", true},
    Row{0x0416, "CP861", true},
    Row{0x0417, "CP862", true},
    Row{0x0418, "CP863", true},
    Row{0x0419, "CP864", false},
    Row{0x041A, "CP865", true},
    Row{0x041B, "CP866", true},
    Row{0x041C, "CP869", true},
    Row{0x041D, "CP874", true},
    Row{0x0420, "CP932", false},
    Row{0x0421, "CP936", true},
    Row{0x0422, "CP949", true},
    Row{0x0423, "CP950", true},
    Row{0x0500, "CP1252", true},
    Row{0x0501, "CP1250", true},
    Row{0x0502, "CP1251", true},
    Row{0x0503, "CP1253", true},
    Row{0x0504, "CP1254", true},
    Row{0x0505, "CP1255", true},
    Row{0x0506, "CP1256", true},
    Row{0x0507, "CP1257", true},
    Row{0x0508, "CP1258", true},
    Row{0x0510, "JOHAB", false},
    Row{0x0600, "US-ASCII", true},
    Row{0x0630, "EUC-CN", true},
    Row{0x0631, "GBK", true},
    Row{0x0632, "GB18030", true},
    Row{0x0820, "ISO-2022-JP", false},
    Row{0x0821, "ISO-2022-JP-2", false},
    Row{0x0822, "ISO-2022-JP-2", false},
    Row{0x0823, "ISO-2022-JP-3", false},
    Row{0x0830, "ISO-2022-CN", false},
    Row{0x0831, "ISO-2022-CN-EXT", false},
    Row{0x0840, "ISO-2022-KR", false},
    Row{0x0920, "EUC-JP", true},
    Row{0x0930, "EUC-CN", true},
    Row{0x0931, "EUC-TW", true},
    Row{0x0940, "EUC-KR", true},
    Row{0x0A01, "SHIFT_JIS", false},
    Row{0x0A02, "KOI8-R", true},
    Row{0x0A03, "BIG5", true},
    Row{0x0A04, nullptr, false},
    Row{0x0A05, nullptr, false},
    Row{0x0A06, "BIG5-HKSCS", true},
    Row{0x0A07, "VISCII", false},
    Row{0x0A08, "KOI8-U", true},
    Row{0x0A09, nullptr, false},
    Row{0x04000100, "UTF-7", false},
    Row{0x08000100, "UTF-8", true},
    Row{0x0C000100, kUtf32Here, false},
    Row{0x10000100, "UTF-16BE", false},
    Row{0x14000100, "UTF-16LE", false},
    Row{0x18000100, "UTF-32BE", false},
    Row{0x1C000100, "UTF-32LE", false},
};
// clang-format on

constexpr bool IsSorted() {
  for (std::size_t i = 1; i < kRows.size(); ++i) {
    if (kRows[i - 1].encoding >= kRows[i].encoding) return false;
  }
  return true;
}
static_assert(IsSorted());

const Row* FindRow(abi::Encoding encoding) {
  const auto row = std::lower_bound(
      kRows.begin(), kRows.end(), encoding,
      [](const Row& left, abi::Encoding number) { return left.encoding < number; });
  return row != kRows.end() && row->encoding == encoding ? &*row : nullptr;
}

// Converts UTF-32 to UTF-8 with the same results as iconv, but in one pass. Hosts convert between
// their own encodings fast, and every text made from HTML comes this way.
std::optional<std::string> Utf32ToUtf8(std::string_view bytes) {
  if (bytes.size() % sizeof(char32_t) != 0) return std::nullopt;
  std::string text(bytes.size(), '\0');
  char* out = text.data();
  const auto put = [&out](char32_t bits) { *out++ = static_cast<char>(bits); };
  for (std::size_t i = 0; i < bytes.size(); i += sizeof(char32_t)) {
    char32_t c;
    std::memcpy(&c, bytes.data() + i, sizeof c);
    if (c < 0x80) {
      put(c);
      continue;
    }
    if (c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) return std::nullopt;
    if (c < 0x800) {
      put(0xC0 | c >> 6);
    } else {
      if (c < 0x10000) {
        put(0xE0 | c >> 12);
      } else {
        put(0xF0 | c >> 18);
        put(0x80 | (c >> 12 & 0x3F));
      }
      put(0x80 | (c >> 6 & 0x3F));
    }
    put(0x80 | (c & 0x3F));
  }
  text.resize(static_cast<std::size_t>(out - text.data()));
  return text;
}

std::optional<std::u32string> CodePointsByRow(std::string_view bytes, const Row& row) {
  if (row.has_ascii && base::IsAscii(bytes)) return std::u32string(bytes.begin(), bytes.end());
  return DecodeCharset(bytes, row.name);
}

template <typename Text, typename Fold>
int CompareFolded(const Text& left, const Text& right, Fold fold) {
  const std::size_t common = std::min(left.size(), right.size());
  for (std::size_t i = 0; i < common; ++i) {
    const auto a = fold(left[i]);
    const auto b = fold(right[i]);
    if (a != b) return a < b ? -1 : 1;
  }
  if (left.size() == right.size()) return 0;
  return left.size() < right.size() ? -1 : 1;
}

int CompareBytes(std::string_view left, std::string_view right) {
  return CompareFolded(left, right,
                       [](char c) { return static_cast<unsigned char>(base::LowerAscii(c)); });
}

}  // namespace

bool IsKnownEncoding(abi::Encoding encoding) {
  const Row* const row = FindRow(encoding);
  return row != nullptr && row->name != nullptr;
}

std::optional<std::u32string> CodePoints(std::string_view bytes, abi::Encoding from) {
  const Row* const row = FindRow(from);
  if (row == nullptr || row->name == nullptr) return std::nullopt;
  return CodePointsByRow(bytes, *row);
}

std::optional<std::string> Convert(std::string_view bytes, abi::Encoding from, abi::Encoding to) {
  if (from == abi::kUnknownEncoding && to == from) return std::string(bytes);
  const Row* const source = FindRow(from);
  const Row* const target = FindRow(to);
  if (source == nullptr || target == nullptr) return std::nullopt;
  if (source->name == nullptr || target->name == nullptr) return std::nullopt;
  if (source->has_ascii && target->has_ascii && base::IsAscii(bytes)) return std::string(bytes);
  if (from == abi::kUtf32 && to == abi::kUtf8) return Utf32ToUtf8(bytes);
  const std::optional<std::u32string> text = CodePointsByRow(bytes, *source);
  if (!text) return std::nullopt;
  if (from == to) return std::string(bytes);
  return EncodeCharset(*text, target->name);
}

std::string EncodingName(abi::Encoding encoding) {
  if (encoding == abi::kUnknownEncoding) return "unknown";
  if (IsKnownEncoding(encoding)) return FindRow(encoding)->name;
  std::array<char, 16> number{};
  static_cast<void>(std::snprintf(number.data(), number.size(), "0x%08X", encoding));
  return number.data();
}

int CompareText(std::string_view left, abi::Encoding left_encoding, std::string_view right,
                abi::Encoding right_encoding) {
  const Row* const left_row = FindRow(left_encoding);
  const Row* const right_row = FindRow(right_encoding);
  if (left_row != nullptr && right_row != nullptr && left_row->has_ascii && right_row->has_ascii &&
      base::IsAscii(left) && base::IsAscii(right)) {
    return CompareBytes(left, right);
  }
  const auto left_text = CodePoints(left, left_encoding);
  const auto right_text = CodePoints(right, right_encoding);
  if (!left_text || !right_text) return CompareBytes(left, right);
  return CompareFolded(*left_text, *right_text, FoldCase);
}

}  // namespace zqv::standin
