// Parser for TNEF, the format of "winmail.dat" (application/ms-tnef). A TNEF file is a list of
// attributes, of which the attributes of attachments are read.
//
// This is code of our own because the one TNEF library in Debian is under the GPL, which the
// program is not, allocates sizes that the message states, and writes to standard output.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {

struct TnefFile {
  std::string name;        // in UTF-8; empty: none
  std::string mime_type;   // empty: none
  std::string content_id;  // empty: none
  std::string_view bytes;  // [borrowed from the parsed bytes]
};

struct TnefContent {
  std::vector<TnefFile> files;
  bool is_whole = true;  // false: the file ends within an attribute
};

// Whether `bytes` begins with the signature of TNEF.
bool IsTnef(std::string_view bytes);

// Parses TNEF. IsTnef(bytes) must be true.
TnefContent ReadTnef(std::string_view bytes);

}  // namespace zqv::cli
