// Content transfer encodings, recognised more tolerantly than by the library: with any case,
// blanks, comments, semicolons and common misspellings.
#pragma once

#include <cstdint>
#include <string_view>

#include "email/transfer.h"

namespace zqv::cli {

enum class Transfer : std::uint8_t { kIdentity, kBase64, kQuotedPrintable, kUuencode, kUnknown };

// Recognises the value of a Content-Transfer-Encoding field. An empty value is kIdentity.
Transfer ReadTransfer(std::string_view value);

// Decodes a body. Base64 ends at padding that is followed by other text, such as a footer. Line
// ends of quoted-printable stay unchanged (RFC 2045, section 6.7). The body is returned unchanged
// for kIdentity, kUnknown and kUuencode; for the last one, FindPackedFiles (cli/packed_files.h)
// finds the files in it. [result may borrow `body`]
email::DecodedBody DecodeBody(Transfer transfer, std::string_view body);

}  // namespace zqv::cli
