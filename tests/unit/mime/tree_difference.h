// Compares the tree that our parser makes of a message with mimetic's.
#pragma once

#include <mimetic/mimeentity.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "mime/message.h"

namespace zqv::test {

// Describes the first difference between a tree and the reference; empty when both are equal.
// Compared byte for byte are names and values of fields, bodies, preambles and epilogues, and also
// kinds and numbers of parts.
std::string FirstDifference(const mimetic::MimeEntity& reference, const mime::Message& message);

// Parses `message` with both parsers, mimetic's from a stream, and compares the trees.
std::string DifferenceFromTheReference(std::string_view message);

// The depth to which the parts of a message are nested: 1 for a message without parts.
std::size_t Levels(const mime::Message& message);

}  // namespace zqv::test
