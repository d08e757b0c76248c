// Messages that several tests parse. All people in them are invented.
#pragma once

#include <cstddef>
#include <string>

namespace zqv::interface_test {

// The limit of entities in one message, the message itself included.
inline constexpr std::size_t kMostEntities = 10'000;

// A message of one text/plain part with six header fields and no dates.
std::string PlainMessage();

// A message nested four levels deep. It has plain text and HTML, an inline image with a Content-ID,
// a file with an encoded name, an attached message and a text in an unknown charset. Its header has
// all address fields, groups, encoded words and both dates.
std::string RichMessage();

// A multipart/mixed whose only part is another one, `levels` times, around a text/plain part.
std::string NestedMultiparts(std::size_t levels);
// The same with a file next to each inner part, such as "File of level 3".
std::string NestedMultipartsWithFiles(std::size_t levels);
// A message/rfc822 in another one, `levels` times, around a text/plain message.
std::string NestedMessages(std::size_t levels);
// Multiparts and messages alternate.
std::string NestedMixture(std::size_t levels);

}  // namespace zqv::interface_test
