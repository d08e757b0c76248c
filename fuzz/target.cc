#include "fuzz/target.h"

#include <cstdio>
#include <cstdlib>

namespace zqv::fuzz {

void RunBoth(std::string_view input) {
  target.run(input);
  target.run(target.spell(input));
}

void Fail(const std::string& what) {
  static_cast<void>(std::fprintf(stderr, "fuzz target: %s\n", what.c_str()));
  static_cast<void>(std::fflush(stderr));
  std::abort();
}

void ExpectSame(std::string_view what, std::string_view left, std::string_view right) {
  if (left == right) return;
  Fail(std::string(what) + ":\n  " + Escaped(left) + "\n  " + Escaped(right));
}

void Expect(bool holds, std::string_view what) {
  if (!holds) Fail(std::string(what));
}

std::string Escaped(std::string_view bytes) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte < 0x7F && c != '\\') {
      text += c;
    } else {
      text += {'\\', 'x', kDigits[byte / 16], kDigits[byte % 16]};
    }
  }
  return text;
}

}  // namespace zqv::fuzz
