// Whether our parse of a message and the MIME library's gave the same tree.
#pragma once

#include <mimetic/mimeentity.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "mime/message.h"

namespace zqv::test {

// The first thing in which a tree differs from the reference, in words that name the place; empty
// when they are the same: field names and values, bodies, preambles, epilogues, kinds and numbers
// of parts, all byte for byte.
std::string FirstDifference(const mimetic::MimeEntity& reference, const mime::Message& message);

// The same for our parse of `message` and the library's own stream constructor.
std::string DifferenceFromTheReference(std::string_view message);

// How deeply the parts of a message are nested: 1 for a message without parts.
std::size_t Levels(const mime::Message& message);

}  // namespace zqv::test
