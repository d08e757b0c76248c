// Messages that several tests parse, with invented people.
#pragma once

#include <cstddef>
#include <string>

namespace zqv::interface_test {

// Entities that one message may have, itself included.
inline constexpr std::size_t kMostEntities = 10'000;

// One text/plain part, six header fields, no dates.
std::string PlainMessage();

// Nested four levels deep: plain text and HTML, an inline image with a Content-ID, a file with an
// encoded name, an attached message, a text in an unknown charset; all address fields, groups and
// encoded words in the header; both dates. Makes the library use all that it can do.
std::string RichMessage();

// A multipart/mixed whose only part is again one, `levels` times, around a text/plain part.
std::string NestedMultiparts(std::size_t levels);
// The same, with a file beside each of these parts: "File of level 3".
std::string NestedMultipartsWithFiles(std::size_t levels);
// A message/rfc822 in another, `levels` times, around a text/plain message.
std::string NestedMessages(std::size_t levels);
// Both in turn.
std::string NestedMixture(std::size_t levels);

}  // namespace zqv::interface_test
