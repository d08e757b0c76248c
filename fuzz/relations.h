// What holds of every object of the library's classes in a complete host.
#pragma once

#include <string>
#include <string_view>

#include "standin/application.h"

namespace zqv::fuzz {

// Fails when one of these does not hold of the object:
// - A list is one array in every form; its count and its elements are the array's; an index out of
//   bounds raises, and nothing else does.
// - A text without a charset of its own is ASCII, UTF-8 or Mac Roman, as its bytes are.
// - A mailbox's address is local part, "@" and domain; in a list or group each has a local part.
// - An address is a mailbox or a group, never both.
// - A header finds the first of each of its fields by its name.
// - An attachment has a file name.
// - A message's subject is that of its header; when there is a HTML text, there is a plain one,
//   unless nothing is left of the HTML; its source without files has no line feeds.
void ExpectRelations(const standin::Object& object);

// A text without charset as a host string of the library, shown as Show does.
std::string ShownDetected(std::string_view bytes);

}  // namespace zqv::fuzz
