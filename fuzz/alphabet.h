// Converts random bytes to words of a small alphabet: each byte becomes a header name, a boundary
// line, a tag or similar. Short inputs thus reach states that random bytes rarely reach.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqv::fuzz {

// The words for a target's inputs. Their memory must outlive this object.
class Alphabet {
 public:
  template <std::size_t kSize>
  constexpr explicit Alphabet(const std::string_view (&pieces)[kSize])
      : pieces_(pieces), size_(kSize) {
    static_assert(kSize <= 256, "a byte must be able to name every piece");
  }

  // Returns one word for each byte, as many words as fit into `longest` bytes.
  std::string Spell(std::string_view input, std::size_t longest) const;

 private:
  const std::string_view* pieces_;
  std::size_t size_;
};

}  // namespace zqv::fuzz
