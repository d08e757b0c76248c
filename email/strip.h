// Writes a message again without its attachments and inline parts.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqv::email {

// Parses the message in `source` and returns it without the parts whose Content-Disposition is
// inline or attachment. The message itself always stays. Line breaks of the result are CR
// (RewriteLineBreaks). The result ends before its first NUL. Throws std::runtime_error when a limit
// is exceeded (mime/limits.h), and std::bad_alloc. QUIRK: only the disposition decides, unlike in
// Route (route.h): a part that is listed as an attachment without having a disposition is kept.
// Part of the interface's contract; changing it is a major version. Test:
// Strip.OnlyTheDispositionDecides.
std::string WriteWithoutFiles(std::string_view source);

// Replaces every line break (CR LF, LF CR, LF or CR) by one CR, in place. Returns the number of
// bytes that `text` became shorter. QUIRK: a CR or LF at index 1 is removed as if it were the
// second half of a pair. Part of the interface's contract; changing it is a major version. Test:
// LineBreaks.BreakAtPositionOneIsDropped.
std::size_t RewriteLineBreaks(std::string& text);

}  // namespace zqv::email
