// Files in TNEF, the format of "winmail.dat" (application/ms-tnef): a list of attributes, of which
// those of attachments are read.
//
// Read by hand: the one library for it that Debian has is under the GPL, which the program is not,
// takes memory by the sizes that a message claims, and writes to standard output.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {

struct TnefFile {
  std::string name;        // in UTF-8; empty when there is none
  std::string mime_type;   // empty when there is none
  std::string content_id;  // the same
  std::string_view bytes;  // [borrowed from what was read]
};

struct TnefContent {
  std::vector<TnefFile> files;
  bool is_whole = true;  // false when the bytes end within an attribute
};

// Whether bytes begin as TNEF does.
bool IsTnef(std::string_view bytes);

// What is in bytes for which IsTnef holds.
TnefContent ReadTnef(std::string_view bytes);

}  // namespace zqv::cli
