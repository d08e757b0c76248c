// The parser compared with mimetic's stream constructor: both must give the same tree, byte for
// byte.
#include <stdexcept>
#include <string>
#include <string_view>

#include "fuzz/alphabet.h"
#include "fuzz/target.h"
#include "mime/message.h"
#include "tests/unit/mime/tree_difference.h"

namespace zqv::fuzz {
namespace {

// clang-format off
constexpr std::string_view kPieces[] = {
    "\n", "\n", "\n", "\r", "\r\n", "\r\r\n", "\n\r", "\n\n", " ", "\t", "\n ", "\n\t", "\n \n",
    ":", "A:", "A: b\n", "a b: c\n", "B :\n e\n", ":x\n", "x", "xyz", "-", "--", "\n--", "\n--\n",
    "--b", "--b\n", "--b\n", "--b \n", "--bc\n", "--b--", "--b--\n", "--b--\n", "--c\n", "--c--\n",
    "\n--b\n\n", "\n--c\n\n", "--b\r\n", "--b--\r\n",
    "Content-Type: multipart/mixed; boundary=b\n\n",
    "Content-Type: multipart/mixed; boundary=b\n",
    "Content-Type: multipart/mixed; boundary=c\n\n",
    "Content-Type: multipart/mixed; boundary=\"b\"\r\n\r\n",
    "Content-Type: multipart/mixed; boundary=bc\n\n",
    "Content-Type: multipart/mixed\n\n",
    "Content-Type: Multipart/Digest; Boundary=b\n\n",
    "Content-Type: message/rfc822\n\n",
    "Content-Type: message/rfc822\n",
    "Content-Type: text/plain\n\n",
    "Content-Type:", "multipart/", "message/rfc822", ";", "boundary=", "\"", "=",
    "\xC3\xA9", "\xFF", "\x7F", "\x01", std::string_view("\0", 1),
    // mimetic reads headers in blocks of 128 bytes, and bodies in blocks of 4,096.
    "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx"
    "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx",
    "------------------------------------------------------------------------------------------\n",
};
// clang-format on

void Start() {}

void Run(std::string_view input) {
  try {
    // mimetic's parser is recursive and has no limit of nesting, so deep messages would exhaust its
    // stack.
    if (test::Levels(mime::Message(input)) > 1'000) return;
  } catch (const std::runtime_error& error) {
    return ExpectSame("what is not parsed", std::string(error.what()).substr(0, 20),
                      "the message has too ");
  }
  ExpectSame("the trees differ", test::DifferenceFromTheReference(input), "");
}

// Repeating one byte repeats one piece, which is how inputs reach the ends of mimetic's large
// blocks.
std::string Spell(std::string_view input) {
  std::string text = Alphabet(kPieces).Spell(input, 4'000);
  if (input.size() > 1 && input[0] == 'L') {
    const std::size_t length = 3'950 + static_cast<unsigned char>(input[1]);
    text.insert(text.size() / 2, length, 'x');
  }
  return text;
}

}  // namespace

const Target target = {Start, Run, Spell};

}  // namespace zqv::fuzz
