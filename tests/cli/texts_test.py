"""The verbs that print one text: text, html, html2text, decode, strip, addresses."""

import unittest

import program
from program import SAMPLES, on_terminal, zqv


def message(content_type, body, *fields):
    """A message of one part."""
    lines = ["Subject: x", *fields, f"Content-Type: {content_type}", "", ""]
    return "\n".join(lines).encode("ascii") + body


class DateTest(program.TestCase):
    def test_a_year_before_the_first(self):
        # The result for a text that is not a date.
        path = self.write("a.eml", "Date: no date at all\nSubject: x\n\nx\n")
        self.assertIn("Date:    -001-11-30 00:00:00 as the classes give it\n", self.expect(zqv("show", path)).out)


class TextTest(program.TestCase):
    def test_plain_text(self):
        self.expect(zqv("text", SAMPLES / "plain.eml"), 0,
                    "Your keys are under the blue flower pot.\n\nAda\n")

    def test_html_as_the_message_has_it(self):
        path = self.write("a.eml", message("text/html; charset=iso-8859-1", b"<p>caf\xE9</p>"))
        self.expect(zqv("html", path), 0, "<p>caf\xE9</p>\n")

    def test_text_made_from_html(self):
        path = self.write("a.eml", message("text/html", b"<p>a</p>b"))
        self.expect(zqv("text", path), 0, "\na\nb\n")

    def test_every_line_end_is_a_line_feed(self):
        path = self.write("a.eml", message("text/plain", b"one\r\ntwo\rthree\nfour"))
        self.expect(zqv("text", path), 0, "one\ntwo\nthree\nfour\n")

    def test_raw_bytes(self):
        body = b"caf\xE9\r\n\x1B[2Jtwo"
        path = self.write("a.eml", message("text/plain; charset=iso-8859-1", body))
        self.assertEqual(zqv("text", "--raw", path).out_bytes, body)

    def test_undecodable_bytes_are_escaped(self):
        path = self.write("a.eml", message("text/plain; charset=utf-8", b"caf\xE9 au lait"))
        self.expect(zqv("text", path), 0, "caf\\xE9 au lait\n")

    def test_nothing_there(self):
        for verb, what in (("text", "plain text"), ("html", "HTML")):
            path = self.write("a.eml", message("text/plain", b""))
            self.expect(zqv(verb, path), 1, "", f"zqv: {path}: there is no {what}\n")

    def test_terminals_get_safe_text_and_files_the_text(self):
        path = self.write("a.eml", message("text/plain; charset=utf-8",
                                           b"a\x1B[2Jb\xE2\x80\xAEc\n"))
        self.expect(zqv("text", path), 0, "a\x1B[2Jb\u202Ec\n")
        self.assertEqual(on_terminal("text", path), "a\\x1B[2Jb\\u{202E}c\n")

    def test_standard_input(self):
        self.expect(zqv("text", "-", stdin=b"Subject: x\n\nhello"), 0, "hello\n")


class HtmlToTextTest(program.TestCase):
    def test_lists_and_references(self):
        path = self.write("a.html", "<ul><li>caf&eacute;<li>th\u00E9</ul>")
        self.expect(zqv("html2text", path), 0, "* caf\u00E9\n* th\u00E9\n")

    def test_bytes_that_are_no_utf8_are_mac_roman(self):
        self.expect(zqv("html2text", "-", stdin=b"<b>caf\x8E</b>"), 0, "caf\u00E9\n")

    def test_nothing_gives_nothing(self):
        self.expect(zqv("html2text", "-", stdin=b"<b"), 0, "")
        self.expect(zqv("html2text", "-", stdin=b""), 0, "")

    def test_files_that_cannot_be_read(self):
        gone = self.folder / "gone.html"
        self.expect(zqv("html2text", gone), 1, "", f"zqv: {gone}: No such file or directory\n")
        self.expect(zqv("html2text", self.folder), 1, "", f"zqv: {self.folder}: Is a directory\n")


class DecodeTest(program.TestCase):
    def test_words(self):
        self.expect(zqv("decode", "=?utf-8?Q?Caf=C3=A9?=", "=?utf-8?B?w7w=?= x", "plain text"), 0,
                    "Caf\u00E9\n\u00FC x\nplain text\n")

    def test_one_line_for_each(self):
        self.expect(zqv("decode", "=?utf-8?Q?a=0Ab=1Bc?=", ""), 0, "a\\x0Ab\\x1Bc\n\n")

    def test_lines_of_standard_input(self):
        self.expect(zqv("decode", "first one", "-", stdin=b"=?utf-8?Q?a=20b?=\n\nlast one"), 0,
                    "first one\na b\n\nlast one\n")

    def test_texts_that_look_like_options(self):
        self.expect(zqv("decode", "--", "-x=?utf-8?Q?=21?="), 0, "-x!\n")


class StripTest(program.TestCase):
    MESSAGE = (b"Subject: caf\xC3\xA9\n"
               b"Content-Type: multipart/mixed; boundary=b\n"
               b"\n"
               b"--b\n"
               b"Content-Type: text/plain; charset=utf-8\n"
               b"\n"
               b"th\xC3\xA9\n"
               b"--b\n"
               b"Content-Type: application/pdf\n"
               b"Content-Disposition: attachment\n"
               b"\n"
               b"secret\n"
               b"--b--\n")
    # The library quotes the parameters of types, and ends the message with the closing boundary.
    STRIPPED = ("Subject: caf\u00E9\n"
                "Content-Type: multipart/mixed; boundary=\"b\"\n"
                "\n"
                "--b\n"
                "Content-Type: text/plain; charset=\"utf-8\"\n"
                "\n"
                "th\u00E9\n"
                "--b--\n")

    def test_files_are_gone_and_text_is_kept(self):
        path = self.write("a.eml", self.MESSAGE)
        self.expect(zqv("strip", path), 0, self.STRIPPED)

    def test_raw_line_breaks(self):
        path = self.write("a.eml", self.MESSAGE)
        self.expect(zqv("strip", "--raw", path), 0, self.STRIPPED.replace("\n", "\r"))

    def test_result_can_be_stripped_again(self):
        self.expect(zqv("strip", "-", stdin=self.STRIPPED.encode("utf-8")), 0, self.STRIPPED)

    def test_bytes_of_no_encoding_stay(self):
        path = self.write("a.eml", b"Subject: x\n\ncaf\xE9\n")
        self.assertEqual(zqv("strip", "--raw", path).out_bytes, b"Subject: x\r\rcaf\xE9\r")

    def test_bytes_are_not_converted(self):
        source = (SAMPLES / "russian-koi8.eml").read_bytes()
        result = self.expect(zqv("strip", SAMPLES / "russian-koi8.eml"), 0, None)
        self.assertEqual(result.out_bytes.partition(b"\n\n")[2].rstrip(),
                         source.replace(b"\r\n", b"\n").partition(b"\n\n")[2].rstrip())
        self.expect(zqv("text", "-", stdin=result.out_bytes), 0,
                    zqv("text", SAMPLES / "russian-koi8.eml").out)

    def test_text_that_goes_with_the_files(self):
        data = (b"Content-Type: multipart/mixed; boundary=b\n\n--b\nContent-Type: text/plain\n"
                b"Content-Disposition: inline\n\nhello\n--b--\n")
        path = self.write("a.eml", data)
        self.expect(zqv("strip", path), 0, None, f"zqv: {path}: its text was left out, too: it is "
                                                 "marked as inline or attachment\n")

    def test_zero_byte(self):
        path = self.write("a.eml", b"Subject: x\n\nkept\x00lost\n")
        self.expect(zqv("strip", path), 1, "Subject: x\n\nkept\n",
                    f"zqv: {path}: what follows the first zero byte was left out\n")


class AddressesTest(program.TestCase):
    def test_fields_names_and_groups(self):
        path = self.write("a.eml", b"""\
From: =?utf-8?Q?Zo=C3=AB?= <zoe@example.org>
To: "Moss, Ada" <ada@example.com>,Crew:ben@example.org,Cleo <cleo@example.org>;
Cc: undisclosed-recipients:
Sender: desk@example.net
Reply-To: back@example.net

x
""")
        self.expect(zqv("addresses", path), 0, """\
From      zoe@example.org   Zo\u00EB        -
Sender    desk@example.net  -          -
To        ada@example.com   Moss, Ada  -
To        ben@example.org   -          Crew
To        cleo@example.org  Cleo       Crew
Cc        -                 -          undisclosed-recipients
Reply-To  back@example.net  -          -
""")

    def test_none(self):
        self.expect(zqv("addresses", "-", stdin=b"Subject: x\n\nx\n"), 0, "")

    def test_several_files(self):
        path = self.write("a.eml", b"From: ada@example.com\n\nx\n")
        self.expect(zqv("addresses", path, path), 0,
                    f"==> {path} <==\nFrom  ada@example.com  -  -\n\n"
                    f"==> {path} <==\nFrom  ada@example.com  -  -\n")


if __name__ == "__main__":
    unittest.main()
