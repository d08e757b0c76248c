"""`zqv check`: each kind of finding, in a message that has it and not in a corrected one; line
numbers; output formats; and that hostile messages take time in proportion to their size."""

import json
import resource
import unittest

import program
from packing import tnef, uuencoded, yenc
from program import SAMPLES, zqv

CLEAN = "no findings\n"

# Five correct header fields; the next line of the message is line 6.
HEAD = ("From: ada@example.com\nTo: ben@example.org\nDate: Sat, 20 Jan 2024 18:00:00 +0000\n"
        "Subject: Keys\nMIME-Version: 1.0\n")
MIXED = HEAD + "Content-Type: multipart/mixed; boundary=cut\n\n"  # the first part begins in line 8
DATA = HEAD + "Content-Type: image/png\nContent-Transfer-Encoding: base64\n\n"
LETTER = "Content-Type: text/plain\n\nhello\n"

# The code of a finding; a message with this finding and no other; the same message corrected; the
# expected part, line and text.
CASES = {
    "no blank line in a message": (
        "no-blank-line", HEAD + "hello there\n", HEAD + "\nhello there\n",
        ("0", 6, 'no blank line ends the header: "hello there" is taken for text of the body')),
    "no blank line in a part": (
        "no-blank-line", MIXED + "--cut\nContent-Type: text/plain\nhello\n--cut--\n",
        MIXED + "--cut\nContent-Type: text/plain\n\nhello\n--cut--\n",
        ("1", 10, 'no blank line ends the header: "hello" is taken for text of the body')),
    "a boundary in a header": (
        "no-blank-line", MIXED + f"--cut\nContent-Type: text/plain\n--cut\n{LETTER}--cut--\n",
        MIXED + f"--cut\nContent-Type: text/plain\n\n--cut\n{LETTER}--cut--\n",
        ("1", 10, 'no blank line ends the header: the boundary "--cut" is taken for text of the '
                  "body")),
    "a header without end": (
        "cut-header", HEAD + "X-Last: y\n", HEAD + "X-Last: y\n\n",
        ("0", 6, "the message ends within a header: its last field is lost")),
    "a multipart without end": (
        "unterminated-multipart", MIXED + f"--cut\n{LETTER}", MIXED + f"--cut\n{LETTER}--cut--",
        ("0", 6, "the multipart is not closed: no line --cut-- before the end of the message")),
    "an inner multipart without end": (
        "unterminated-multipart",
        MIXED + f"--cut\nContent-Type: multipart/mixed; boundary=in\n\n--in\n{LETTER}--cut--\n",
        MIXED + f"--cut\nContent-Type: multipart/mixed; boundary=in\n\n--in\n{LETTER}--in--\n"
                "--cut--\n",
        ("1", 9, "the multipart is not closed: no line --in-- before line 15")),
    "a multipart without boundary": (
        "no-boundary", HEAD + f"Content-Type: multipart/mixed\n\n--cut\n{LETTER}--cut--\n",
        MIXED + f"--cut\n{LETTER}--cut--\n",
        ("0", 6, "the multipart has no boundary parameter: every line that begins with "
                "-- is taken for a boundary")),
    "a multipart without parts": (
        "empty-multipart", MIXED + "hello\n", MIXED + f"hello\n--cut\n{LETTER}--cut--\n",
        ("0", 6, "the multipart has no parts: no line --cut begins one")),
    "a boundary with half a quote": (
        "empty-multipart", MIXED.replace("=cut", '="cut') + f"--cut\n{LETTER}--cut--\n",
        MIXED.replace("=cut", '="cut"') + f"--cut\n{LETTER}--cut--\n",
        ("0", 6, 'the multipart has no parts: no line --"cut begins one')),
    "two dates": (
        "repeated-field", HEAD + "Date: Sun, 21 Jan 2024 18:00:00 +0000\n\nx\n", HEAD + "\nx\n",
        ("0", 6, "Date occurs 2 times, but is allowed once: the last is used")),
    "three subjects": (
        "repeated-field", HEAD + "SUBJECT: two\nsubject: three\n\nx\n",
        HEAD + "X-Subject: two\nX-Subject: three\n\nx\n",
        ("0", 6, "Subject occurs 3 times, but is allowed once: the first is used")),
    "two types of a part": (
        "repeated-field", MIXED + f"--cut\nContent-Type: text/plain\n{LETTER}--cut--\n",
        MIXED + f"--cut\nTo: a@b.c\nTo: b@b.c\nReceived: x\nReceived: y\n{LETTER}--cut--\n",
        ("1", 10, "Content-Type occurs 2 times, but is allowed once: the first is used")),
    "a date of words": (
        "bad-date", HEAD.replace("Sat, 20 Jan 2024 18:00:00 +0000", "soon") + "\nx\n",
        HEAD + "\nx\n", ("0", 3, '"soon" is not a valid date: the message\'s date is a guess')),
    "a year of two digits": (
        "early-year", HEAD.replace("2024", "24") + "\nx\n", HEAD + "\nx\n",
        ("0", 3, 'the year in "Sat, 20 Jan 24 18:00:00 +0000" is before 1000: no century is '
                 'added')),
    "a lower-case encoded word": (
        "lower-case-word", HEAD + "X-Note: =?utf-8?q?caf=C3=A9?= =?utf-8?b?eA==?=\n\nx\n",
        HEAD + "X-Note: =?utf-8?Q?caf=C3=A9?= =?utf-8?B?eA==?=\n\nx\n",
        ("0", 6, "an encoded word in X-Note has a lower-case q and is not decoded: "
                 '"=?utf-8?q?caf=C3=A9?="')),
    "an encoded word of unknown charset": (
        "unknown-word-charset", HEAD + "X-Note: a\n =?x-none?Q?b?=\n\nx\n",
        HEAD + "X-Note: a\n =?koi8-r?Q?b?= =?x-none?Z?b?=\n\nx\n",
        ("0", 6, 'an encoded word in X-Note names the unknown charset "x-none"')),
    "encoded words of two charsets": (
        "mixed-charsets",
        HEAD.replace("Keys", "=?iso-8859-1?Q?=E9?= =?utf-8?Q?=C3=A9?=") + "\nx\n",
        HEAD.replace("Keys", "=?iso-8859-1?Q?e?= =?utf-8?Q?=C3=A9?= =?UTF8?Q?=C3=A9?=") + "\nx\n",
        ("0", 4, "encoded words in Subject name several charsets: the last one counts for all")),
    "a field of strange bytes": (
        "field-bytes", (HEAD + "X-Note: caf").encode() + b"\xE9\n\nx\n",
        HEAD + "X-Note: café\n\nx\n",
        ("0", 6, "bytes in X-Note are not taken for UTF-8: they are read as Mac Roman")),
    "a zero byte in a field": (
        "zero-byte-in-field", HEAD + "X-Note: a\0b\n\nx\n", HEAD + "X-Note: ab\n\nx\n",
        ("0", 6, "X-Note contains a zero byte: the rest of the field is lost")),
    "a CR in a header": (
        "lone-cr", HEAD + "X-Note: a\rX-Other: b\n\nx\n", HEAD + "X-Note: a\r\nX-Other: b\n\nx\n",
        ("0", 6, "a line of the header ends with a single CR, others do not")),
    "a type without subtype": (
        "bad-content-type", HEAD + "Content-Type: text\n\nx\n",
        HEAD + "Content-Type: text/x\n\nx\n",
        ("0", 6, 'the Content-Type "text/" is not type/subtype: the part is listed as a file')),
    "an unknown charset": (
        "unknown-charset", HEAD + "Content-Type: text/plain; charset=x-none\n\ncafé\n",
        HEAD + "Content-Type: text/plain; charset=x-none\n\ncafe\n",
        ("0", 6, 'unknown charset "x-none": the text has no encoding')),
    "text that is not ASCII": (
        "wrong-charset", HEAD + "Content-Type: text/html; charset=us-ascii\n\ncafé\n",
        HEAD + "Content-Type: text/html; charset=utf-8\n\ncafé\n",
        ("0", 6, 'the text is not in the charset "us-ascii"')),
    "text that is not UTF-8": (
        "wrong-charset",
        (HEAD + "Content-Type: text/plain; charset=UTF-8\n\ncaf").encode() + b"\xE9\n",
        (HEAD + "Content-Type: text/plain; charset=latin1\n\ncaf").encode().replace(
            b"latin1", b"iso-8859-1") + b"\xE9\n",
        ("0", 6, 'the text is not in the charset "UTF-8"')),
    "text without charset": (
        "guessed-charset", (HEAD + "Content-Type: text/plain\n\ncaf").encode() + b"\xE9\n",
        HEAD + "Content-Type: text/plain\n\ncafé\n",
        ("0", 6, "no charset, and the text is not taken for UTF-8: it is read as Mac Roman")),
    "a zero byte in text": (
        "zero-byte-in-text", HEAD + "\na\0b\n",
        HEAD + "Content-Type: application/x-any\n\na\0b\n",
        ("0", 1, "the text contains a zero byte")),
    "an encoded message": (
        "encoded-message",
        MIXED + "--cut\nContent-Type: message/rfc822\nContent-Transfer-Encoding: base64\n\n"
                "RnJvbTogYWRhQGV4YW1wbGUuY29tCgpoaQo=\n\n--cut--\n",
        MIXED + "--cut\nContent-Type: message/rfc822\nContent-Transfer-Encoding: 7bit\n\n"
                "From: ada@example.com\n\nhi\n--cut--\n",
        ("1", 10, "the attached message is in base64: it is read without decoding")),
    "base64 with other characters": (
        "bad-base64", DATA + "aGVsbG8=\n-- \nThe list\n", DATA + "aGVs\n bG8=\n",
        ("0", 7, "the part's base64 contains other characters: its data are damaged")),
    "base64 that is cut off": (
        "bad-base64", DATA + "aGVsb\n", DATA + "aGVsbG8\n",
        ("0", 7, "the part's base64 is cut off: its data are incomplete")),
    "a name with percent escapes": (
        "encoded-name",
        MIXED + "--cut\nContent-Type: image/png\nContent-Disposition: attachment;\n"
                " filename*=utf-8''na%C3%AFve.png\n\nx\n--cut--\n",
        MIXED + "--cut\nContent-Type: image/png; name=\"naive.png\"\n"
                "Content-Disposition: attachment;\n filename*=utf-8''na%C3%AFve.png\n\nx\n"
                "--cut--\n",
        ("1", 10, 'the file name stays encoded: "na%C3%AFve.png"')),
    "a name with a language": (
        "encoded-name",
        MIXED + "--cut\nContent-Type: image/png\n"
                "Content-Disposition: attachment; filename*=utf-8'en'a.png\n\nx\n--cut--\n",
        MIXED + "--cut\nContent-Type: image/png\n"
                "Content-Disposition: attachment; filename*=utf-8''a.png\n\nx\n--cut--\n",
        ("1", 10, "the file name stays encoded: \"utf-8'en'a.png\"")),
    "a name in pieces": (
        "unread-name",
        MIXED + "--cut\nContent-Type: image/png\nContent-Disposition: attachment;\n"
                " filename*0=\"a\"; filename*1=\"b.png\"\n\nx\n--cut--\n",
        MIXED + "--cut\nContent-Type: image/png\nContent-Disposition: attachment;\n"
                " filename=\"ab.png\"; filename*0=\"a\"; filename*1=\"b.png\"\n\nx\n--cut--\n",
        ("1", 10, "the library does not read the file name in filename*0")),
    "a name of the type with a charset": (
        "unread-name", MIXED + "--cut\nContent-Type: image/png; name*=utf-8''a.png\n\nx\n--cut--\n",
        MIXED + "--cut\nContent-Type: image/png; name=a%20b.png\n\nx\n--cut--\n",
        ("1", 9, "the library does not read the file name in name*")),
}

UNKNOWN_ENCODING = "Content-Type: image/png\nContent-Transfer-Encoding: x-uuencode\n\nx\n"


class CheckCase(program.TestCase):
    def documents(self, *paths):
        """The exit code, and the findings of each document."""
        result = zqv("check", "--json", *paths)
        self.assertEqual(result.err, "", result)
        decoder = json.JSONDecoder()
        rest = result.out
        found = []
        while rest:
            document, end = decoder.raw_decode(rest)
            self.assertEqual(list(document), ["format_version", "file", "findings"])
            found.append(document["findings"])
            rest = rest[end:].lstrip()
        return result.code, found

    def findings(self, message):
        """The findings in one message: code, part, line and text of each."""
        code, (findings,) = self.documents(self.write("letter.eml", message))
        self.assertEqual(code, 1 if findings else 0)
        for finding in findings:
            self.assertEqual(list(finding), ["code", "part", "line", "text"])
        # Most of these messages have no Content-Type, to be short; LackingTest tests that finding.
        return [tuple(finding.values()) for finding in findings
                if finding["code"] != "no-content-type"]

    def codes(self, message):
        return [finding[0] for finding in self.findings(message)]


class FindingTest(CheckCase):
    def test_each_is_reported(self):
        for name, (code, message, _, place) in CASES.items():
            with self.subTest(name):
                self.assertEqual(self.findings(message), [(code, *place)])

    def test_corrected_messages_have_none(self):
        for name, (_, _, corrected, _) in CASES.items():
            with self.subTest(name):
                self.assertEqual(self.findings(corrected), [])

    def test_line_ends_do_not_matter(self):
        for name, (code, message, _, place) in CASES.items():
            if code == "lone-cr":
                continue
            with self.subTest(name):
                text = message if isinstance(message, bytes) else message.encode()
                self.assertEqual(self.findings(text.replace(b"\n", b"\r\n")), [(code, *place)])

    def test_last_line_without_end(self):
        for end in ("\n", "\r\n", "\r"):
            text = (HEAD + "X-Last: y").replace("\n", end)
            self.assertEqual(self.codes(text), ["cut-header"], repr(end))

    def test_unknown_transfer_encoding(self):
        self.assertEqual(self.findings(MIXED + f"--cut\n{UNKNOWN_ENCODING}--cut--\n"), [
            ("unlisted-part", "1", 9,
             "the part is in no list: it is neither an attachment nor an inline part, nor the "
             "message's text"),
            ("unknown-transfer-encoding", "1", 10,
             'unknown transfer encoding "x-uuencode": the part is not decoded')])
        for known in ("BASE64", "Quoted-Printable", "7bit", "8bit", "binary"):
            part = UNKNOWN_ENCODING.replace("x-uuencode", known).replace("\nx\n", "\neA==\n")
            self.assertEqual(self.findings(MIXED + f"--cut\n{part}--cut--\n"), [], known)
        # For a multipart the transfer encoding does not matter.
        self.assertEqual(self.findings(MIXED.replace(
            "\n\n", "\nContent-Transfer-Encoding: x-none\n\n") + f"--cut\n{LETTER}--cut--\n"), [])

    def test_parts_after_an_unclosed_multipart_are_lost(self):
        inner = f"--cut\nContent-Type: multipart/mixed; boundary=in\n\n--in\n{LETTER}"
        behind = f"--cut\n{LETTER}--cut\n{LETTER}--cut--\n"
        self.assertEqual(self.findings(MIXED + inner + behind), [
            ("unterminated-multipart", "1", 9,
             "the multipart is not closed: no line --in-- before line 15"),
            ("lost-parts", None, 16, "the 2 parts from here on are lost: the library "
                                     "stops at the boundary of an outer multipart while an inner "
                                     "one is not closed")])
        self.assertEqual(self.findings(MIXED + inner + "--in--\n" + behind), [])

    def test_more_lost_parts_than_are_parsed(self):
        inner = ("--cut\nContent-Type: multipart/mixed; boundary=in\n\n--in\n"
                 "Content-Type: text/plain; charset=x-none\n\ncafé\n")
        found = [finding[:3] for finding in self.findings(MIXED + inner + "--cut\n\nx\n" * 9_990)]
        self.assertIn(("lost-parts", None, 16), found)
        self.assertIn(("unknown-charset", "1.1", 12), found)
        # When a limit stops the additional parse, findings come only from the objects of the
        # library.
        self.assertEqual([finding[:3] for finding in self.findings(
            MIXED + inner + "--cut\n\nx\n" * 10_000)], [("unknown-charset", "1.1", None)])

    def test_boundaries_in_headers(self):
        part = "--cut\nContent-Type: text/plain\n"
        # The parts after the line keep their numbers.
        self.assertEqual([finding[:3] for finding in self.findings(
            MIXED + f"{part}--cut\n{LETTER}{part}hello\n--cut--\n")],
            [("no-blank-line", "1", 10), ("no-blank-line", "2", 16)])
        # A closing boundary, which the library does not find in a header.
        for end in ("", "\n"):
            self.assertEqual([finding[:3] for finding in self.findings(
                MIXED + f"{part}--cut--{end}")], [("no-blank-line", "1", 10)])
        # A boundary line that the library takes for a header field.
        self.assertEqual([finding[:3] for finding in self.findings(
            MIXED + f"{part}--cut: x\n\nhello\n--cut--\n")], [("no-blank-line", "1", 10)])
        # A boundary of an outer multipart; the next boundary line ends the parse.
        inner = "--cut\nContent-Type: multipart/mixed; boundary=in\n--cut\n"
        self.assertEqual([finding[:3] for finding in self.findings(
            MIXED + f"{inner}{LETTER}--cut\n{LETTER}--cut--\n")],
            [("empty-multipart", "1", 9), ("unlisted-part", "1", 9), ("no-blank-line", "1", 10),
             ("lost-parts", None, 15)])

    def test_zero_bytes_in_boundaries(self):
        """`check` and `tree` read the same boundary, which ends at the zero byte."""
        for boundary, parts, code in (("a\0b", 2, "unterminated-multipart"),
                                      ("\0b", 2, "no-boundary"),
                                      ('"a\0b"', 0, "empty-multipart"),
                                      ('"\0b"', 0, "empty-multipart")):
            line = "--" + boundary.strip('"')
            message = HEAD + (f"Content-Type: multipart/mixed; boundary={boundary}\n\n"
                              f"{line}\n{LETTER}{line}\n{LETTER}{line}--\n")
            with self.subTest(repr(boundary)):
                tree = json.loads(zqv("tree", "--json", self.write("a.eml", message)).out)
                self.assertEqual(len(tree["parts"]), 1 + parts)
                self.assertEqual(self.codes(message), [code, "zero-byte-in-field"])

    def test_attached_message_without_a_blank_line_before_it(self):
        self.assertEqual([finding[:3] for finding in self.findings(
            MIXED + "--cut\nContent-Type: message/rfc822\nno field\nA: b\n\nx\n--cut--\n")],
            [("no-blank-line", "1", 10)])

    def test_delimiter_lines(self):
        # A line that begins with the boundary and ends in blanks is a boundary line. A line with
        # text or blanks before the boundary is not, nor is the boundary of a multipart that is
        # closed.
        body = f"--cut \t\n{LETTER}x--cut--\n --cut--\n--cu\n-- cut--\n--cut-- \n--cut\nnot: mail\n"
        self.assertEqual(self.findings(MIXED + body), [])
        self.assertEqual(self.codes(MIXED + body.replace("--cut-- \n", "")),
                         ["unterminated-multipart", "cut-header"])

    def test_one_boundary_twice(self):
        # The inner multipart gets every boundary line, so the outer one is not closed.
        inner = f"--cut\nContent-Type: multipart/mixed; boundary=cut\n\n--cut\n{LETTER}--cut--\n"
        self.assertEqual([finding[:3] for finding in self.findings(MIXED + inner)],
                         [("unterminated-multipart", "0", 6)])
        self.assertEqual(self.findings(MIXED + inner + "--cut--\n"), [])

    def test_attached_messages(self):
        odd = HEAD.replace("Sat, 20", "Sat, 32") + "Subject: more\n\nhi\n"
        self.assertEqual([finding[:3] for finding in self.findings(
            MIXED + f"--cut\nContent-Type: message/rfc822\n\n{odd}--cut--\n")],
            [("bad-date", "1.1", 13), ("repeated-field", "1.1", 16)])

    def test_empty_parts_give_no_finding(self):
        self.assertEqual(self.findings(MIXED + "--cut\nContent-Type: text/plain\n\n--cut--\n"), [])

    def test_dates(self):
        field = "Sat, 20 Jan 2024 18:00:00 +0000"
        good = ("20 Jan 2024 18:00 +0000", "Sat, 20 Jan 2024 8:00:00 GMT",
                "sat,20 jan 2024 18:00:60 +0000",
                "Thu, 29 Feb 2024 00:00:00 -0130 (a (nested) comment)",
                "Saturday, 20 January 2024 23:59:59 +0000",
                "Sat,\n 20 Jan 2024\n 18:00:00 +0000")
        for text in good:
            self.assertEqual(self.findings(HEAD.replace(field, text) + "\nx\n"), [], text)
        bad = ("", "2024-01-20T18:00:00Z", "Sat, 20 Jan 2024", "Thu, 29 Feb 2023 00:00:00 +0000",
               "31 Apr 2024 00:00:00 +0000", "0 Jan 2024 00:00:00 +0000", "1 Foo 2024 00:00:00 Z",
               "1 Jan 2024 24:00:00 +0000", "1 Jan 2024 00:60:00 +0000",
               "1 Jan 2024 00:00:61 +0000", "1 Jan 2024 04:00:00 PM", "(Sat",
               "Jan 1 2024 00:00:00", "1 Jan 20240 00:00:00",
               "20 Jan 2024 (evening) 18:00:00")
        for text in bad:
            self.assertEqual(self.codes(HEAD.replace(field, text) + "\nx\n"), ["bad-date"], text)

    def test_byte_order_mark(self):
        self.assertEqual(self.findings(b"\xEF\xBB\xBF" + (HEAD + "\nx\n").encode()), [])

    def test_samples(self):
        odd = {"signed.eml": ["frame-attachment"], "mac-roman.eml": ["guessed-charset"],
               "malformed.eml": ["bad-date", "unknown-word-charset", "unterminated-multipart",
                                 "unknown-charset", "unknown-charset", "no-blank-line",
                                 "lost-parts"]}
        paths = sorted(SAMPLES.glob("*.eml"))
        _, found = self.documents(*paths)
        self.assertGreater(len(paths), 10)
        for path, findings in zip(paths, found, strict=True):
            self.assertEqual([finding["code"] for finding in findings], odd.get(path.name, []),
                             path.name)


class LackingTest(CheckCase):
    """Contents of messages that the library does not offer as files or texts."""

    PLAIN = HEAD + "Content-Type: text/plain\n\n"

    def check(self, message, *expected):
        _, (findings,) = self.documents(self.write("letter.eml", message))
        self.assertEqual([(finding["code"], finding["part"], finding["line"], finding["text"])
                          for finding in findings], list(expected))

    def test_no_type(self):
        self.check(HEAD + "\nx\n",
                   ("no-content-type", "0", 1, "the message has no Content-Type: the library gives "
                                               "it no type and lists its text as a file"))
        self.check(self.PLAIN + "x\n")

    def test_no_sender(self):
        for value in ("Ada", '"ada@example.com"', "<>", "", "@example.com"):
            odd = self.PLAIN.replace("From: ada@example.com", f"From: {value}")
            with self.subTest(value):
                self.assertEqual([code for code, _, line, _ in self.findings(odd + "x\n")
                                  if line == 1], ["no-sender"])
        self.check(self.PLAIN.replace("ada@example.com", '"x" (<c@d.org>) , <ada@example.com>'))

    def test_packed_files(self):
        text = self.PLAIN.encode()
        binary = HEAD.encode() + b"Content-Type: application/ms-tnef; name=winmail.dat\n\n"
        for packing, odd in (("uuencode", text + uuencoded(b"hello", b"a.bin")),
                             ("yenc", text + yenc(b"hello", b"a.bin")),
                             ("tnef", binary + tnef(("a.bin", b"hello")))):
            with self.subTest(packing):
                findings = [finding for finding in self.findings(odd)
                            if finding[0] != "guessed-charset"]  # yEnc is no text
                self.assertEqual(findings, [(
                    "packed-file", "0", 1,
                    f'the file "a.bin" is packed in {packing}: the library does not see it')])
        self.check(self.PLAIN + "begin with a word\n=ybegin\nend\n")
        self.check(binary + b"hello")

    def test_empty_files(self):
        part = "--cut\nContent-Type: image/png; name=a.png\n\n"
        self.check(MIXED + f"{part}--cut--\n",
                   ("empty-file", "1", 9, 'the file "a.png" has no bytes'))
        self.check(MIXED + f"{part}x\n--cut--\n")

    def test_empty_files_in_an_unknown_encoding(self):
        part = "--cut\nContent-Type: image/png; name=a.png\nContent-Transfer-Encoding: x-none\n\n"
        empty = ("empty-file", "1", 9, 'the file "a.png" has no bytes')
        self.check(MIXED + f"{part}--cut--\n", empty, (
            "unlisted-part", "1", 9,
            "the part is in no list: it is neither an attachment nor an inline part, nor the "
            "message's text"), (
            "unknown-transfer-encoding", "1", 10,
            'unknown transfer encoding "x-none": the part is not decoded'))
        # The library offers such a part in a known encoding; without a name it is not a file that a
        # person would miss.
        self.check(MIXED + f"{part}--cut--\n".replace("x-none", "7bit"), empty)
        self.check(MIXED + f"{part}--cut--\n".replace("; name=a.png", ""))

    def test_names_of_texts(self):
        self.check(HEAD + "Content-Type: text/plain; name=a.txt\n\nx\n",
                   ("named-text", "0", 1, 'the message\'s own text has the file name "a.txt", '
                                          "which no property gives"))

    def test_frames(self):
        self.check(MIXED.replace("mixed", "signed") + f"--cut\n{LETTER}--cut--\n",
                   ("frame-attachment", "0", 1, 'the library lists the "multipart/signed" as an '
                                                "attachment, which has no bytes of its own"))

    def test_repeated_parameters(self):
        self.check(MIXED.replace("=cut", "=cut; boundary=b") + f"--cut\n{LETTER}--cut--\n",
                   ("repeated-parameter", "0", 6, "the parameter boundary occurs several times in "
                                                  "Content-Type, with different values"))
        self.check(MIXED.replace("=cut", "=cut; boundary=cut") + f"--cut\n{LETTER}--cut--\n")
        for parameter, field, line, names in (
                ("name", "Content-Type", 9, "; name=a; name=b"),
                ("filename", "Content-Disposition", 10,
                 "\nContent-Disposition: attachment; filename=a; filename=b")):
            part = f"--cut\nContent-Type: image/png{names}\n\nx\n"
            with self.subTest(field):
                self.check(MIXED + f"{part}--cut--\n", (
                    "repeated-parameter", "1", line, f"the parameter {parameter} occurs several "
                                                     f"times in {field}, with different values"))
                self.check(MIXED + f"{part}--cut--\n".replace("=b", "=a"))

    def test_pieces(self):
        odd = HEAD + "Content-Type: message/partial; id=a; number=1; total=2\n\nx\n"
        self.check(odd, ("message-piece", "0", 6, "the message is one piece of another, which can "
                                                  "be read only when all pieces are joined"))

    def test_base64_after_its_padding(self):
        self.check(DATA + "eA==eA==\n", (
            "bad-base64", "0", 7,
            "the part's base64 goes on after its padding: some readers stop there"))


class OutputTest(CheckCase):
    def test_no_findings(self):
        self.expect(zqv("check", SAMPLES / "plain.eml"), 0, CLEAN)

    def test_lines(self):
        letter = self.write("a.eml", HEAD + "Date: x\nContent-Type: multipart/mixed; boundary=b\n\n"
                            "--b\nContent-Type: text/plain\nhello\n--b--\n")
        self.expect(zqv("check", letter), 1, (
            "message  line 6   Date occurs 2 times, but is allowed once: the last is used\n"
            "message  line 6   \"x\" is not a valid date: the message's date is a guess\n"
            'part 1   line 11  no blank line ends the header: "hello" is taken for text of the body'
            "\n"))

    def test_several_messages(self):
        clean = SAMPLES / "plain.eml"
        odd = self.write("a.eml", HEAD + "Content-Type: text/plain\nhello\n")
        line = 'no blank line ends the header: "hello" is taken for text of the body'
        self.expect(zqv("check", clean, odd), 1,
                    f"==> {odd} <==\nmessage  line 7  {line}\n")
        self.expect(zqv("check", clean, clean), 0, CLEAN)
        self.expect(zqv("check", odd, clean, odd), 1,
                    f"==> {odd} <==\nmessage  line 7  {line}\n\n"
                    f"==> {odd} <==\nmessage  line 7  {line}\n")

    def test_an_unreadable_message_is_an_error(self):
        gone = self.folder / "gone.eml"
        self.expect(zqv("check", SAMPLES / "plain.eml", gone), 1, "",
                    f"zqv: {gone}: IOException: Failed to open file for reading.\n")

    def test_json_of_several_messages(self):
        code, found = self.documents(SAMPLES / "plain.eml", SAMPLES / "mac-roman.eml")
        self.assertEqual((code, [len(findings) for findings in found]), (1, [0, 1]))

    def test_quoted_text_is_escaped(self):
        for text in ("\x1B[2Jx", "\u202Ex", "x" * 10_000, "\0x", "é\x07"):
            letter = self.write("a.eml", HEAD + text + "\n\nx\n")
            lines = self.expect(zqv("check", letter), 1).out.splitlines()
            self.assertTrue(all(c.isprintable() for line in lines for c in line), lines)
            self.assertLess(max(len(line) for line in lines), 200)

    def test_no_message(self):
        letter = self.write("a.eml", "")
        self.expect(zqv("check", letter), 1, "",
                    f"zqv: {letter}: UnsupportedOperationException: Can't parse empty text.\n")


class HostileTest(CheckCase):
    def seconds(self, message):
        """The time that `check` takes for a message, minus the time of `tree`, which also parses
        it."""
        path = self.write("a.eml", message)

        def measure(verb, codes):
            before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
            self.assertIn(zqv(verb, path).code, codes)
            return resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before
        return measure("check", (0, 1)) - measure("tree", (0,))  # not refused: it has a tree

    def test_work_grows_with_the_message(self):
        def deep(n):
            return "".join(f"Content-Type: multipart/mixed; boundary=b{i}\n\n--b{i}\n"
                           for i in range(min(n // 60, 200))) + "\n" + "--b\n" * (n // 4)

        def lengths(n):
            return "".join(f"Content-Type: multipart/mixed; boundary={'x' * i}y\n\n--{'x' * i}y\n"
                           for i in range(1, 400)) + "\n" + ("--" + "x" * 2000 + "\n") * (n // 2003)

        shapes = {
            "parts": lambda n: MIXED + f"--cut\n\n{'x' * 100}\n" * (n // 108) + "--cut--\n",
            "depth": lambda n: HEAD + deep(n),
            "boundaries of every length": lambda n: HEAD + lengths(n),
            "fields": lambda n: HEAD + "Date: a date of more words than any\n" * (n // 36) + "\nx\n",
            "folds": lambda n: HEAD + "X: a\n" + " b\n" * (n // 3) + "\nx\n",
            "encoded words": lambda n: HEAD + "X: " + "=?a?q?" * (n // 6) + "\n\nx\n",
            "whole encoded words": lambda n: HEAD + "X: " + "=?utf-8?Q?a?= " * (n // 14) + "\n\n",
            "comments": lambda n: HEAD + "Date: " + "(" * n + "\n\nx\n",
            "parameters": lambda n: HEAD + "Content-Type: text/plain" + ";a=b" * 15_000 + "\n\n" +
                                    "x" * n,
        }
        # Ten times the size may take forty times as long, because builds with sanitizers vary, but
        # not a hundred times.
        small, large = 100_000, 1_000_000
        for name, shape in shapes.items():
            with self.subTest(name):
                self.assertLess(self.seconds(shape(large)),
                                40 * max(self.seconds(shape(small)), 0.05))

    def test_every_byte_value(self):
        for value in range(0x80):
            self.findings(bytes([value]) + HEAD.encode() + b"\n" + bytes([value]))


if __name__ == "__main__":
    unittest.main()
