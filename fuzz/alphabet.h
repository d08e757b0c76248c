// Random bytes as words of a small alphabet: a byte that would be noise becomes a header name, a
// boundary line, a tag. So short inputs reach states that random bytes hardly ever spell.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqv::fuzz {

// The pieces that a target's inputs are spelt in; the memory must outlive this.
class Alphabet {
 public:
  template <std::size_t kSize>
  constexpr explicit Alphabet(const std::string_view (&pieces)[kSize])
      : pieces_(pieces), size_(kSize) {
    static_assert(kSize <= 256, "a byte must be able to name every piece");
  }

  // One piece for each byte, as long as they fit into `longest` bytes.
  std::string Spell(std::string_view input, std::size_t longest) const;

 private:
  const std::string_view* pieces_;
  std::size_t size_;
};

}  // namespace zqv::fuzz
