"""No text in a message can control the terminal on which it is shown."""

import re
import unittest

import program
from program import SAMPLES, on_terminal, zqv

# Escape sequences that clear the screen, in every field and text of a message.
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

    def test_no_verb_prints_a_control_character(self):
        for verb in ("show", "tree", "headers", "addresses", "list", "json", "check",
                     "show --json", "tree --json", "headers --json", "addresses --json",
                     "list --json", "check --json"):
            with self.subTest(verb):
                result = zqv(*verb.split(), self.path)
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


class ColourTest(program.TestCase):
    def headings(self, *arguments, terminal=True, **variables):
        """The output on a terminal, or the output into a file."""
        command = ["show", SAMPLES / "plain.eml", *arguments]
        if terminal:
            return on_terminal(*command, **variables)
        return zqv(*command).out

    def test_on_terminals_only(self):
        self.assertIn("\x1B[1mSubject:\x1B[0m Keys", self.headings(TERM="xterm"))
        self.assertNotIn("\x1B", self.headings(terminal=False))

    def test_not_where_it_is_not_wanted(self):
        self.assertNotIn("\x1B", self.headings(TERM="dumb"))
        self.assertNotIn("\x1B", self.headings(TERM="xterm", NO_COLOR="1"))
        self.assertNotIn("\x1B", self.headings("--color", "never", TERM="xterm"))

    def test_an_empty_variable_is_ignored(self):
        self.assertIn("\x1B[1m", self.headings(TERM="xterm", NO_COLOR=""))

    def test_always(self):
        self.assertIn("\x1B[1m", self.headings("--color", "always", terminal=False))
        self.assertIn("\x1B[1m", self.headings("--color", "always", TERM="dumb", NO_COLOR="1"))

    def test_columns_stay_where_they_are(self):
        plain = self.headings(terminal=False)
        coloured = self.headings("--color", "always", terminal=False)
        self.assertEqual(re.sub(r"\x1B\[[0-9]*m", "", coloured), plain)


class WidthTest(program.TestCase):
    def test_lines_of_tables_end_where_the_terminal_ends(self):
        name = "写真" * 30 + ".png"
        path = self.write("wide.eml", "Subject: x\nMIME-Version: 1.0\nContent-Type: image/png; "
                          f"name=\"{name}\"\n\nx\n")
        whole = self.expect(zqv("tree", path)).out
        self.assertEqual(whole, f"0  image/png  2  {name}\n")
        cut = on_terminal("tree", path, columns=40)
        # 17 columns before the name, 22 columns of the name at two each, and the sign for text that
        # was cut.
        self.assertEqual(cut, "0  image/png  2  " + "写真" * 5 + "写…\n")
        self.assertEqual(on_terminal("tree", path, columns=200), whole)


if __name__ == "__main__":
    unittest.main()
