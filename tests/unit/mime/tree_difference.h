// Whether two parses of a message gave the same tree.
#pragma once

#include <mimetic/mimeentity.h>

#include <string>

#include "mime/message_texts.h"

namespace zqv::test {

// The first thing in which the trees differ, in words that name the place; empty when they are the
// same: field names and values, bodies, preambles, epilogues and numbers of parts, all byte for
// byte.
std::string FirstDifference(const mimetic::MimeEntity& left, const mimetic::MimeEntity& right);

// Gives the entities of a tree without texts those that lie elsewhere, so that it can be compared.
void PutBack(const mime::MessageTexts& texts, mimetic::MimeEntity& entity);

}  // namespace zqv::test
