// Content transfer encodings as people would read them: known ones are known whatever their case,
// with blanks, comments, semicolons and frequent misspellings, which the library takes for unknown.
#pragma once

#include <cstdint>
#include <string_view>

#include "email/transfer.h"

namespace zqv::cli {

enum class Transfer : std::uint8_t { kIdentity, kBase64, kQuotedPrintable, kUuencode, kUnknown };

// Of the value of a Content-Transfer-Encoding; an empty one is kIdentity.
Transfer ReadTransfer(std::string_view value);

// `body` [borrowed] without its encoding. Base64 ends at padding that other text follows; the lines
// of quoted-printable end as they do in the message (RFC 2045, section 6.7). Unchanged for
// kIdentity, kUnknown and kUuencode, of which FindPackedFiles (cli/packed_files.h) makes files.
email::DecodedBody DecodeBody(Transfer transfer, std::string_view body);

}  // namespace zqv::cli
