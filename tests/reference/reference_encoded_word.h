// Reference implementation of the decoder of encoded words in header text: one position of the text
// after the other.
#pragma once

#include <string>

namespace zqv::reference {

struct DecodedWords {
  std::string bytes;    // of all words and of the text between them
  std::string charset;  // the last one named; empty when the text is used undecoded
};
DecodedWords DecodeWords(const std::string& text);

std::string StripQuotes(const std::string& text);

}  // namespace zqv::reference
