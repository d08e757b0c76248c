// Compares the start of a file with known signatures:
//
//   "\x89PNG\r\n\x1A\n..."            ".png"
//   "\xFF\xD8\xFF\xE0..JFIF\0..."     ".jpg": "JFIF" at any offset up to 29
#include "email/file_type.h"

#include <cstddef>

namespace zqv::email {
namespace {

constexpr std::size_t kShortest = 6;  // bytes; shorter files have no extension
constexpr std::size_t kLastJfifOffset = 29;

struct Signature {
  std::size_t offset;
  std::string_view bytes;
  std::string_view extension;
};

// The first matching row is used. QUIRK: the byte before "PNG" may be any, and "<html>" must be in
// lower case. Part of the interface's contract; changing it is a major version.
// Test: FileType.PngIgnoresTheFirstByte, FileType.HtmlTagInCapitalsIsUnknown.
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
