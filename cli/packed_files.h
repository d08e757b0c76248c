// Files that are encoded in a text: by uuencode, by its base64 variant, and by yEnc.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {

// The format that a file is packed in; kNone for a part that is the file.
enum class Packing : std::uint8_t { kNone, kUuencode, kYenc, kTnef };

// Returns "uuencode", "yenc" or "tnef"; empty for kNone.
std::string_view PackingName(Packing packing);

struct PackedFile {
  Packing packing;
  std::string name;  // as it stands in the text
  std::string bytes;
  bool is_whole;      // the last line exists, and the size is the stated one
  std::size_t begin;  // offset of the first line in the text
  std::size_t end;    // offset after the last line
};

// Finds all encoded files, in the order of the text:
//   begin 644 name ... end             uuencode (POSIX)
//   begin-base64 644 name ... ====     its base64 variant
//   =ybegin line=128 size=9 name=a ... =yend     yEnc; each part of a split file is one file
// A line "begin" that is not followed by encoded lines is ordinary text.
std::vector<PackedFile> FindPackedFiles(std::string_view text);

}  // namespace zqv::cli
