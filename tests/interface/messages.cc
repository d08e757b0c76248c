#include "tests/interface/messages.h"

namespace zqv::interface_test {
namespace {

constexpr const char* kTextPart = "Content-Type: text/plain\n\nThe innermost text.\n";

// The header of a multipart and the boundary line of its first part.
std::string OpenMultipart(std::size_t number) {
  const std::string boundary = "b" + std::to_string(number) + "x";
  return "Content-Type: multipart/mixed; boundary=\"" + boundary + "\"\n\n--" + boundary + "\n";
}

std::string CloseMultipart(std::size_t number) { return "--b" + std::to_string(number) + "x--\n"; }

constexpr const char* kOpenMessage = "Content-Type: message/rfc822\n\n";

}  // namespace

std::string PlainMessage() {
  return "From: Ada Example <ada@example.org>\n"
         "To: bob@example.net\n"
         "Subject: =?utf-8?Q?Caf=C3=A9?= at noon\n"
         "MIME-Version: 1.0\n"
         "Message-ID: <1@example.org>\n"
         "Content-Type: text/plain; charset=utf-8\n"
         "\n"
         "See you at the caf\xC3\xA9.\n";
}

std::string RichMessage() {
  return "Received: from a.example.org by b.example.org; Tue, 1 Jan 2019 10:00:00 +0000\n"
         "Date: Tue, 1 Jan 2019 11:00:00 +0200\n"
         "From: \"Ada Example\" <ada@example.org>, bob@example.net\n"
         "Sender: =?iso-8859-1?Q?Ren=E9?= <rene@example.org>\n"
         "To: The Team: ada@example.org, carol@example.net;, Dan <@r.example:dan@example.com>\n"
         "Cc: =?utf-8?B?w4lsYW4=?= <elan@example.org>\n"
         "Bcc: eve@example.org\n"
         "Reply-To: list@example.org\n"
         "Subject: =?utf-8?Q?Caf=C3=A9?= at noon\n"
         "Message-ID: <rich@example.org>\n"
         "MIME-Version: 1.0\n"
         "X-Note: caf\xC3\xA9\n"
         "Content-Type: multipart/mixed; boundary=\"outer\"\n"
         "\n"
         "What stands before the parts.\n"
         "--outer\n"
         "Content-Type: multipart/related; boundary=\"middle\"\n"
         "\n"
         "--middle\n"
         "Content-Type: multipart/alternative; boundary=\"inner\"\n"
         "\n"
         "--inner\n"
         "Content-Type: text/plain; charset=iso-8859-1\n"
         "Content-Transfer-Encoding: quoted-printable\n"
         "\n"
         "Caf=E9 at noon\n"
         "--inner\n"
         "Content-Type: text/html; charset=utf-8\n"
         "\n"
         "<p>Caf\xC3\xA9 &amp; cake</p>\n"
         "--inner--\n"
         "--middle\n"
         "Content-Type: image/png\n"
         "Content-ID: <logo@example.org>\n"
         "Content-Transfer-Encoding: base64\n"
         "\n"
         "iVBORw0KGgo=\n"
         "--middle--\n"
         "--outer\n"
         "Content-Type: application/pdf; name=\"plan.pdf\"\n"
         "Content-Disposition: attachment; filename=\"=?utf-8?B?w4lsYW4=?=.pdf\"\n"
         "Content-Description: The plan\n"
         "Content-Transfer-Encoding: base64\n"
         "\n"
         "JVBERi0xLjQK\n"
         "--outer\n"
         "Content-Type: message/rfc822\n"
         "\n"
         "Subject: The attached one\n"
         "Content-Type: text/plain; charset=foo\n"
         "\n"
         "Caf\xE9 again\n"
         "--outer--\n"
         "What stands after them.\n";
}

std::string NestedMultiparts(std::size_t levels) {
  std::string text = "Subject: Nested\nMIME-Version: 1.0\n";
  for (std::size_t i = 0; i < levels; ++i) text += OpenMultipart(i);
  text += kTextPart;
  for (std::size_t i = levels; i-- > 0;) text += CloseMultipart(i);
  return text;
}

std::string NestedMultipartsWithFiles(std::size_t levels) {
  std::string text = "Subject: Nested\nMIME-Version: 1.0\n";
  for (std::size_t i = 0; i < levels; ++i) text += OpenMultipart(i);
  text += kTextPart;
  for (std::size_t i = levels; i-- > 0;) {
    text += "--b" + std::to_string(i) + "x\nContent-Type: application/pdf\n" +
            "Content-Disposition: attachment\n\nFile of level " + std::to_string(i) + "\n" +
            CloseMultipart(i);
  }
  return text;
}

std::string NestedMessages(std::size_t levels) {
  std::string text = "Subject: Nested\n";
  for (std::size_t i = 0; i < levels; ++i) text += kOpenMessage;
  return text + kTextPart;
}

std::string NestedMixture(std::size_t levels) {
  std::string text = "Subject: Nested\nMIME-Version: 1.0\n";
  for (std::size_t i = 0; i < levels; ++i) text += i % 2 == 0 ? OpenMultipart(i) : kOpenMessage;
  text += kTextPart;
  for (std::size_t i = levels; i-- > 0;) {
    if (i % 2 == 0) text += CloseMultipart(i);
  }
  return text;
}

}  // namespace zqv::interface_test
