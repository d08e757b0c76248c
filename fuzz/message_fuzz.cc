// A whole message through the built library: constructed from a string, a block or a file, read
// completely, and released. Checked are the exception, which depends on the first bytes, the
// relations of all objects, that the source equals the input, and that nothing is left.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

#include "abi/encodings.h"
#include "fuzz/alphabet.h"
#include "fuzz/reading.h"
#include "fuzz/session.h"
#include "fuzz/target.h"
#include "standin/application.h"

namespace zqv::fuzz {
namespace {

using standin::Object;
using standin::Value;

// clang-format off
constexpr std::string_view kPieces[] = {
    "\n", "\n", "\n\n", "\r\n", "\r", " ", "\t", ":", "--", "--b\n", "--b\n", "--b--\n", "--c\n",
    "--c--\n", "--b\nContent-Type: text/plain\n\n", "--b\nContent-Type: text/html\n\n",
    "\n\n--b\n", "\n\n--c\n", "\n--b--\n", "\n--c--\n",
    "Content-Type: multipart/mixed; boundary=b\n",
    "Content-Type: multipart/mixed; boundary=c\n",
    "Content-Type: multipart/alternative; boundary=c\n",
    "Content-Type: multipart/related; boundary=\"b\"\n",
    "Content-Type: multipart/signed; boundary=c\n",
    "Content-Type: multipart/digest\n",
    "Content-Type: message/rfc822\n",
    "Content-Type: text/plain\n",
    "Content-Type: text/plain; charset=utf-8\n",
    "Content-Type: text/plain; charset=utf-16\n",
    "Content-Type: text/plain; charset=foo\n",
    "Content-Type: text/html\n",
    "Content-Type: text/html; charset=iso-8859-1\n",
    "Content-Type: image/png; name=x\n",
    "Content-Type: application/octet-stream\n",
    "Content-Transfer-Encoding: base64\n",
    "Content-Transfer-Encoding: Quoted-Printable\n",
    "Content-Transfer-Encoding: 8bit\n",
    "Content-Transfer-Encoding: x-uuencode\n",
    "Content-Disposition: attachment\n",
    "Content-Disposition: inline; filename=\"a\"\n",
    "Content-Disposition: attachment; filename*=utf-8''%41\n",
    "Content-Disposition: form-data; filename==?utf-8?Q?=C3=A9?=\n",
    "Content-ID: <i>\n", "Content-ID: ", "Content-Description: d\n", "MIME-Version: 1.0\n",
    "Message-ID: <m@example.org>\n",
    "Subject: ", "From: ", "To: ", "Cc: ", "Bcc: ", "Sender: ", "Reply-To: ", "X: ",
    "Date: ", "Received: x; ", "Tue, 1 Jan 2019 10:00:00 +0200\n", "-0130", "Feb",
    "Ada <a@example.org>", "a@b", "<", ">", "@", ",", ";", "G: ", "\"", "(", ")", "\\",
    "=?utf-8?Q?", "=?iso-8859-1?B?", "?=", "?= =?", "_", "=C3=A9", "=\n", "=", "QWxh", "QQ==",
    "<p>", "<li>", "</ul>", "<!--", "-->", "<script>", "</script>", "&amp;", "&#233;", "<html>",
    "GIF89a", "\x89PNG\r\n", "JFIF", "x", "abc", "\xC3\xA9", "\x8E", "\xEF\xBB\xBF",
    std::string_view("\0", 1),
};
// clang-format on

// A file that gets the bytes of each input in turn.
class InputFile {
 public:
  InputFile() : path_("/dev/shm/zqv-fuzz-" + std::to_string(getpid())) {}
  ~InputFile() { std::remove(path_.c_str()); }
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  Value Holding(std::string_view bytes) const {
    std::ofstream(path_, std::ios::binary | std::ios::trunc) << bytes;
    return standin::MakeFolderItem(path_);
  }

 private:
  const std::string path_;
};

Object Construct(std::string_view bytes, std::string* raised) {
  static const InputFile file;
  Object message = standin::NewInstance("MimeEmailZQV");
  *raised = RaisedBy([&] {
    switch (bytes.size() % 3) {
      case 0:
        return standin::Call(message, "Constructor(Content as string)",
                             standin::MakeString(bytes, abi::kUnknownEncoding));
      case 1:
        return standin::Call(message, "Constructor(Content as MemoryBlock)",
                             standin::MakeMemoryBlock(bytes));
      default:
        return standin::Call(message, "Constructor(File as FolderItem)", file.Holding(bytes));
    }
  });
  return message;
}

// The exception that the first bytes of a message cause; empty when they cause none.
std::string ExpectedException(std::string_view bytes) {
  if (bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
  if (bytes.empty()) return "UnsupportedOperationException: Can't parse empty text.";
  if (static_cast<unsigned char>(bytes[0]) >= 0x80)
    return "UnsupportedOperationException: Email must start with an header text. BOM character?";
  return {};
}

bool IsLimit(std::string_view raised) {
  return raised.find("C++ Exception: the message has too many") != std::string_view::npos;
}

void Start() { Session::Get(); }

void Run(std::string_view input) {
  {
    std::string raised;
    const Object message = Construct(input, &raised);
    if (!IsLimit(raised)) ExpectSame("exception", raised, ExpectedException(input));
    ExpectSame("source", standin::BytesOf(standin::Get(message, "Source")), input);
    ReadEverything(message);
  }
  Session::Get().ExpectNothingLeft();
  Session::Get().ExpectNoExceptionLost();
}

std::string Spell(std::string_view input) { return Alphabet(kPieces).Spell(input, 3'000); }

}  // namespace

const Target target = {Start, Run, Spell};

}  // namespace zqv::fuzz
