"""Nothing in a message may steer the terminal that shows it."""

import unittest

import program
from program import zqv

# Escapes that clear the screen, in every place that a message offers.
HOSTILE = (
    b"From: =?utf-8?Q?Eve=1B[2J?= <eve@example.com>\n"
    b"Subject: =?utf-8?Q?a=1B[31mb=0ASubject:_c=E2=80=AEd=C2=9Be?=\n"
    b"X-Raw: f\x1B[2Jg\n"
    b"MIME-Version: 1.0\n"
    b"Content-Type: multipart/mixed; boundary=b\n"
    b"\n"
    b"--b\n"
    b"Content-Type: text/plain; charset=utf-8\n"
    b"\n"
    b"one\x1B[2J\x00\x07\ttab\r\ntwo\rthree \xE2\x80\xAEfour \xE2\x81\xA6five \xC2\x9B6n\x7F\n"
    b"--b\n"
    b"Content-Type: image/png\n"
    b"Content-ID: <id\x1B[2J>\n"
    b"Content-Disposition: attachment; filename=\"=?utf-8?Q?x=1B[2J=0A=E2=80=AEy.png?=\"\n"
    b"\n"
    b"data\n"
    b"--b--\n"
)


class TerminalTest(program.TestCase):
    def setUp(self):
        super().setUp()
        self.path = self.write("hostile.eml", HOSTILE)

    def test_no_verb_lets_a_control_character_through(self):
        for verb in ("show", "tree", "headers", "addresses", "list", "json"):
            with self.subTest(verb):
                result = self.expect(zqv(verb, self.path))
                self.assertTrue(result.out)
                bad = [c for c in result.out
                       if (ord(c) < 32 and c not in "\n\t") or 127 <= ord(c) < 160
                       or "\u202A" <= c <= "\u202E" or "\u2066" <= c <= "\u2069"]
                self.assertEqual(bad, [])

    def test_show(self):
        out = zqv("show", self.path).out
        self.assertIn("Subject:     a\\x1B[31mb\\x0ASubject: c\\u{202E}d\\x9Be\n", out)
        self.assertIn("From:        Eve\\x1B[2J <eve@example.com>\n", out)
        self.assertIn("             x\\x1B[2J\\x0A\\u{202E}y.png  image/png  4 bytes\n", out)
        self.assertIn("\none\\x1B[2J\\x00\\x07\ttab\ntwo\nthree "
                      "\\u{202E}four \\u{2066}five \\x9B6n\\x7F\n", out)

    def test_headers(self):
        self.expect(zqv("headers", "--name", "X-Raw", self.path), out="X-Raw: f\\x1B[2Jg\n")

    def test_list(self):
        out = zqv("list", self.path).out
        self.assertEqual(out, "2  attachment  image/png  4  x\\x1B[2J\\x0A\\u{202E}y.png  "
                              "<id\\x1B[2J>\n")

    def test_bytes_that_are_no_text(self):
        path = self.write("unknown.eml", b"Subject: x\nContent-Type: text/plain; charset=x-new\n"
                                         b"\n\xE9t\xC3\xA9\n")
        self.assertIn("\n\n\\xE9t\\xC3\\xA9\n", self.expect(zqv("show", path)).out)

    def test_bad_bytes_in_utf8(self):
        path = self.write("bad.eml", b"Subject: x\nContent-Type: text/plain; charset=utf-8\n"
                                     b"\n\xE9t\xC3\xA9\n")
        self.assertIn("\n\n\\xE9té\n", self.expect(zqv("show", path)).out)


if __name__ == "__main__":
    unittest.main()
