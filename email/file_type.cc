#include "email/file_type.h"

#include <cstddef>

namespace zqv::email {
namespace {

constexpr std::size_t kShortest = 6;
constexpr std::size_t kLastJfifOffset = 29;

struct Signature {
  std::size_t offset;
  std::string_view bytes;
  std::string_view extension;
};

// The first row that fits decides. QUIRK: the byte before "PNG" is not looked at, and "<html>" only
// counts in lower case. Test: FileType.PngIgnoresTheFirstByte, FileType.HtmlTagInCapitalsIsUnknown.
constexpr Signature kSignatures[] = {
    // clang-format off
    {0, "<html>", ".html"},
    {0, "GIF",    ".gif"},
    {0, "BM",     ".bmp"},
    {1, "PNG",    ".png"},
    {0, "MM",     ".tif"},
    {0, "II",     ".tif"},
    // clang-format on
};

}  // namespace

std::string_view FindExtension(std::string_view data) {
  if (data.size() < kShortest) return {};
  for (const Signature& row : kSignatures) {
    if (data.substr(row.offset, row.bytes.size()) == row.bytes) return row.extension;
  }
  constexpr std::string_view kJfif = "JFIF";
  const std::string_view head = data.substr(0, kLastJfifOffset + kJfif.size());
  return head.find(kJfif) != std::string_view::npos ? ".jpg" : std::string_view();
}

}  // namespace zqv::email
