#include "fuzz/message_grammar.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace zqv::fuzz {
namespace {

constexpr std::size_t kLongest = 64'000;
constexpr std::size_t kDeepest = 40;

// clang-format off
constexpr std::string_view kLineEnds[] = {"\n", "\r\n", "\r", "\n\r"};
constexpr std::string_view kBoundaries[] = {"b", "c", "bc", "b--", "", "-", "=_x y", "\"b\""};
constexpr std::string_view kMultiparts[] = {
    "multipart/mixed", "multipart/alternative", "multipart/related", "Multipart/Signed",
    "multipart/digest", "MULTIPART/x"};
constexpr std::string_view kTypes[] = {
    "text/plain", "text/html", "image/png", "text/plain; charset=utf-8", "text/html; charset=foo",
    "application/octet-stream; name=a.bin", "text/plain; charset=\"iso-8859-1\"; name=\"=?utf-8?Q?=C3=A9?=\"",
    "message/rfc822 ", "message /rfc822", "text/calendar", "", "/", ";;;"};
constexpr std::string_view kEncodings[] = {
    "7bit", "base64", "quoted-printable", "BASE64", "x-uuencode", "8bit", "base64 "};
constexpr std::string_view kDispositions[] = {
    "attachment", "inline", "attachment; filename=a.txt", "Inline; filename*=utf-8''b%20",
    "attachment; filename=\"=?foo?Q?x?=\"", "form-data", ""};
constexpr std::string_view kOtherFields[] = {
    "Subject: =?utf-8?Q?Caf=C3=A9?=", "Subject: x", "To: a@b, \"c, d\" <e@f>", "From: g@h",
    "Sender: i <j@k>", "Cc: Team: l@m, n@o;", "Date: Tue, 1 Jan 2019 10:00:00 +0200",
    "Date: nonsense", "Received: from p; Wed, 2 Jan 2019 00:00:00 -0130", "Received: q",
    "Content-ID: <r@s>", "Message-ID: <t>", "MIME-Version: 1.0 (u)", ": skipped",
    "no field", " fold", "\tfold", "A :b", "X: \xC3\xA9\x01\x7F", "Content-Type: image/gif",
    "Subject: a very long line of words that has to be folded when it is written out again, twice"};
constexpr std::string_view kBodyPieces[] = {
    "a line of text", "", "-", "--", "---", "--b", "--c", "--b--", "--c--", "--bc", "x--b", " --b",
    "QUJDREVGR0g=", "caf=C3=A9 =", "=", "<p>html</p>", "\xC3\xA9", "\xE9", "\x7F", "\x01", "."};
// clang-format on

class Maker {
 public:
  explicit Maker(std::string_view choices) : choices_(choices) {}

  std::string Run() {
    AddPart(0);
    return std::move(message_);
  }

 private:
  std::size_t Choose(std::size_t count) {
    if (choices_.empty()) return 0;
    const std::size_t choice = static_cast<unsigned char>(choices_.front()) % count;
    choices_.remove_prefix(1);
    return choice;
  }
  template <std::size_t kCount>
  std::string_view Pick(const std::string_view (&pieces)[kCount]) {
    return pieces[Choose(kCount)];
  }
  bool IsFull() const { return choices_.empty() || message_.size() >= kLongest; }

  // Ends a line like the lines before, unless the next choice selects another line end.
  void EndLine() {
    if (Choose(8) == 1) line_end_ = Pick(kLineEnds);
    message_ += line_end_;
  }
  void Add(std::string_view line) {
    message_ += line;
    EndLine();
  }

  void AddFields() {
    for (std::size_t left = Choose(6); left > 0; --left) Add(Pick(kOtherFields));
    if (Choose(2) == 1) Add(std::string("Content-Transfer-Encoding: ").append(Pick(kEncodings)));
    if (Choose(3) == 1) Add(std::string("Content-Disposition: ").append(Pick(kDispositions)));
  }

  void AddPart(std::size_t depth) {
    AddFields();
    switch (IsFull() || depth >= kDeepest ? 0 : Choose(4)) {
      case 1:
      case 2:
        return AddMultipart(depth);
      case 3:
        Add("Content-Type: message/rfc822");
        EndLine();
        return AddPart(depth + 1);
      default:
        Add(std::string("Content-Type: ").append(Pick(kTypes)));
        EndLine();
        AddText();
    }
  }

  void AddMultipart(std::size_t depth) {
    const std::string boundary(Pick(kBoundaries));
    Add(std::string("Content-Type: ").append(Pick(kMultiparts)) + "; boundary=\"" + boundary +
        "\"");
    EndLine();
    if (Choose(3) == 1) AddText();
    for (std::size_t left = 1 + Choose(5); left > 0; --left) {
      EndLine();
      Add("--" + boundary);
      AddPart(depth + 1);
    }
    if (Choose(4) == 1) return;  // leaves the multipart unclosed
    EndLine();
    Add("--" + boundary + "--");
    if (Choose(3) == 1) AddText();
  }

  // Adds short pieces, long runs, and texts that end just before or after an edge of mimetic's
  // buffer.
  void AddText() {
    constexpr std::size_t kBuffer = 4093;
    const std::size_t start = message_.size();
    for (std::size_t left = Choose(12); left > 0 && !IsFull(); --left) {
      switch (Choose(4)) {
        case 1:
          message_.append(Choose(256), 'x');
          break;
        case 2: {
          const std::size_t edge = ((message_.size() - start) / kBuffer + 1) * kBuffer;
          const std::size_t end = start + edge - 8 + Choose(16);
          if (end > message_.size()) message_.append(end - message_.size(), 'x');
          break;
        }
        default:
          message_ += Pick(kBodyPieces);
      }
      EndLine();
    }
  }

  std::string_view choices_;
  std::string message_;
  std::string_view line_end_ = "\n";
};

}  // namespace

std::string MakeMessage(std::string_view choices) { return Maker(choices).Run(); }

}  // namespace zqv::fuzz
