#include "fuzz/alphabet.h"

namespace zqv::fuzz {

std::string Alphabet::Spell(std::string_view input, std::size_t longest) const {
  std::string text;
  for (const char c : input) {
    const std::string_view piece = pieces_[static_cast<unsigned char>(c) % size_];
    if (text.size() + piece.size() > longest) break;
    text += piece;
  }
  return text;
}

}  // namespace zqv::fuzz
