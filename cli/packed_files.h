// Files that are written into a text: by uuencode, by its form in base64, and by yEnc.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {

// What a file is packed in, if it is no part of its own.
enum class Packing : std::uint8_t { kNone, kUuencode, kYenc, kTnef };

// "uuencode", "yenc", "tnef"; empty for kNone.
std::string_view PackingName(Packing packing);

struct PackedFile {
  Packing packing;
  std::string name;  // as written
  std::string bytes;
  bool is_whole;      // its last line is there, and its size is what it says
  std::size_t begin;  // where its first line stands in the text
  std::size_t end;    // what follows its last line
};

// In the order of the text:
//   begin 644 name ... end             uuencode (POSIX)
//   begin-base64 644 name ... ====     the same in base64
//   =ybegin line=128 size=9 name=a ... =yend     yEnc; a part of a file counts as one
// A line "begin" without lines of such a code behind it is text.
std::vector<PackedFile> FindPackedFiles(std::string_view text);

}  // namespace zqv::cli
