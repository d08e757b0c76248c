// Relations that hold for every object of the library in a complete host.
#pragma once

#include <string>
#include <string_view>

#include "standin/application.h"

namespace zqv::fuzz {

// Fails when one of these does not hold for the object:
// - A list is the same array in every form. Its count and its elements are the array's. Only an
//   index out of bounds raises.
// - A text without a charset of its own is labelled ASCII, UTF-8 or Mac Roman, by its bytes.
// - The e-mail address of a mailbox is local part, "@" and domain. A mailbox in a list or group has
//   a local part.
// - An address is a mailbox or a group, never both.
// - A header finds the first field of each of its names.
// - An attachment has a file name.
// - The subject of a message is its header's. A message with HTML text has plain text, unless the
//   HTML gives none. Its source without files has no line feeds.
void ExpectRelations(const standin::Object& object);

// The text as the library labels bytes without a charset, in the form of Show.
std::string ShownDetected(std::string_view bytes);

}  // namespace zqv::fuzz
