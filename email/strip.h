// A message written out again without its attachments and inline parts.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqv::email {

// The message in `source` without every part whose Content-Disposition is inline or attachment, and
// with every line break turned into a CR; up to its first NUL. Throws std::runtime_error when the
// message is beyond the limits.
// QUIRK: the disposition alone decides, other than where parts are listed; a part without one stays
// even when it is an attachment. Part of the interface's contract; changing it is a major version.
// Test: Strip.OnlyTheDispositionDecides.
std::string WriteWithoutFiles(std::string_view source);

// `text` with every line break (CR LF, LF CR, a lone LF, a lone CR) turned into one CR; returns the
// number of bytes dropped. QUIRK: a CR or LF at position 1 is dropped as if it completed a pair.
// Part of the interface's contract; changing it is a major version. Test:
// LineBreaks.BreakAtPositionOneIsDropped.
std::size_t RewriteLineBreaks(std::string& text);

}  // namespace zqv::email
