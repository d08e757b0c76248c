"""`zqv scan`: one row a message, and filters that select messages."""

import csv
import hashlib
import io
import json
import re
import unittest

import program
from program import SAMPLES, ZQV, on_terminal, zqv

NAMES = ["file", "date", "from", "subject", "bytes", "attachments", "findings"]
NESTED = SAMPLES / "nested.eml"


def letter(sender="a@example.com", date="Mon, 1 Jan 2024 10:00:00 +0000", subject="x", more=""):
    return f"From: {sender}\nDate: {date}\nSubject: {subject}\n{more}\nhello\n"


class RowsTest(program.TestCase):
    def rows(self, *arguments, **options):
        result = self.expect(zqv("scan", "--csv", *arguments, **options), **{"code": 0})
        return list(csv.reader(io.StringIO(result.out)))

    def test_csv(self):
        path = self.write("a.eml", letter('"Moss, Ada" <ada@example.com>', subject='say "hi"'))
        self.assertEqual(self.rows(path, NESTED), [
            NAMES,
            [str(path), "2024-01-01T10:00:00+00:00", '"Moss, Ada" <ada@example.com>', 'say "hi"',
             str(path.stat().st_size), "0", "1"],
            [str(NESTED), "2024-09-13T17:45:10+01:00", "Help desk <helpdesk@example.org>",
             "Your ticket 881 was answered", str(NESTED.stat().st_size), "2", "0"]])

    def test_table_is_as_wide_as_the_terminal(self):
        for columns in (80, 120):
            lines = on_terminal("scan", NESTED, columns=columns, NO_COLOR="1").splitlines()
            self.assertEqual([len(line) for line in lines], [columns] * 2)
        self.assertIn("2024-09-13T17:45:10+01:00", lines[1])
        self.assertEqual(lines[1].split()[-3:], [str(NESTED.stat().st_size), "2", "0"])

    def test_missing_values_are_a_dash(self):
        path = self.write("a.eml", "X-Any: x\n\nhello\n")
        line = self.expect(zqv("scan", path)).out.splitlines()[1]
        self.assertEqual(line.split()[1:4], ["-", "-", "-"])

    def test_json_lines(self):
        path = self.write("a.eml", letter(more="Message-ID: <1@x>\nIn-Reply-To: <0@x>\n"
                                               "References: <a@x>\n <0@x>\nTo: b@x, c@x\nCc: d@x\n"))
        result = self.expect(zqv("scan", "--jsonl", path, NESTED))
        first, second = map(json.loads, result.out.splitlines())
        self.assertEqual(
            [first[key] for key in ("message_id", "in_reply_to", "references", "to", "cc")],
            ["<1@x>", ["<0@x>"], ["<a@x>", "<0@x>"], ["b@x", "c@x"], ["d@x"]])
        self.assertEqual(first["sha256"], hashlib.sha256(path.read_bytes()).hexdigest())
        self.assertEqual((first["attachments"], first["findings"]), ([], ["no-content-type"]))
        self.assertEqual([(file["part"], file["kind"], file["name"], file["mime_type"],
                           file["bytes"]) for file in second["attachments"]],
                         [("1.2", "inline", "logo.gif", "image/gif", 121),
                          ("2", "attachment", "your message.eml", "message/rfc822", 533),
                          ("2.1.2", "attachment", "pages.csv", "text/csv", 34)])
        table = zqv("extract", NESTED, "--stdout", "2.1.2").out_bytes
        self.assertEqual(second["attachments"][2]["sha256"], hashlib.sha256(table).hexdigest())

    def test_several_processes_print_the_same(self):
        for i in range(40):
            self.write(f"{i:02}.eml", letter(subject=f"number {i}") + "x" * (i * 7919 % 5000))
        alone = self.rows("-r", self.folder)
        self.assertEqual(len(alone), 41)
        self.assertEqual(self.rows("-r", self.folder, "--jobs", "3"), alone)

    def test_unreadable_messages_are_reported(self):
        path = self.write("a.eml", b"")
        for jobs in ("1", "2"):
            result = self.expect(zqv("scan", "--csv", path, NESTED, "--jobs", jobs), 1, None, None)
            self.assertEqual(len(result.out.splitlines()), 2)
            self.assertRegex(result.err, f"^zqv: {re.escape(str(path))}: ")

    @unittest.skipIf("asan" in str(ZQV), "the sanitizer takes far more")
    def test_memory_does_not_grow(self):
        separator = "From a@b.c Mon Jan  1 10:00:00 2024\n"
        path = self.write("a.mbox", (separator + letter() + "\n") * 20000)
        result = self.expect(zqv("scan", "--csv", path, preexec_fn=lambda: program.limit_memory(200)),
                             0, None)
        self.assertEqual(len(result.out.splitlines()), 20001)


class FilterTest(program.TestCase):
    def setUp(self):
        super().setUp()
        mail = self.folder / "mail"
        mail.mkdir()
        file = ("Content-Type: application/pdf\nContent-Disposition: attachment; filename=a.pdf\n"
                "To: team@example.net\n")
        self.write("mail/1.eml", letter("Ann <ann@example.com>", "31 Dec 2023 23:30:00 -0100",
                                        "=?utf-8?q?=C3=9Cber_uns?=", "Content-Type: text/plain\n"))
        self.write("mail/2.eml", letter("Bob <bob@example.com>", "15 Feb 2024 10:00:00 +0000",
                                        "Report", file))
        self.write("mail/3.txt", letter("Ann <ann@example.com>", "soon", "report 2",
                                        "Content-Type: text/plain\nCc: Team <TEAM@example.net>\n"))

    def chosen(self, *options, verb="scan"):
        result = self.expect(zqv(verb, "--csv", "-r", "mail", *options, cwd=self.folder))
        return [line.split(",")[0][5:6] for line in result.out.splitlines()[1:]]

    def test_each(self):
        for options, names in [
                ((), "123"), (("--from", "ANN"), "13"), (("--from", "example.com"), "123"),
                (("--to", "team"), "23"), (("--recipient", "team@"), "23"),
                (("--subject", "über"), "1"), (("--subject", "REPORT"), "23"),
                (("--since", "2024"), "12"), (("--since", "2024-02-15"), "2"),
                (("--since", "2024-02-15T10:00:01Z"), ""), (("--until", "2023"), ""),
                (("--until", "2024-01-01"), "1"), (("--until", "2024"), "12"),
                (("--since", "2024-02-15T11:00+01:00", "--until", "2024-02"), "2"),
                (("--has-attachment",), "2"), (("--has-finding", "bad-date"), "3"),
                (("--include", "*.eml"), "12"), (("--include", "1*", "--include", "3*"), "13"),
                (("--subject", "report", "--from", "bob"), "2")]:
            with self.subTest(options):
                self.assertEqual(self.chosen(*options), list(names))

    def test_other_verbs(self):
        self.expect(zqv("list", "-r", "mail", "--from", "bob", cwd=self.folder),
                    out="0  attachment  application/pdf  6  a.pdf  -\n")
        self.expect(zqv("extract", "-r", "mail", "--has-attachment", "--dir", "out",
                        cwd=self.folder), out="out/a.pdf\n")
        result = zqv("export", "-r", "mail", "--to", "made", "--recipient", "team", "--form", "text",
                     cwd=self.folder)
        self.assertEqual(result.code, 0, result)
        self.assertEqual(sorted(path.name for path in (self.folder / "made").rglob("*.txt")),
                         ["2.eml.txt", "3.txt.txt"])

    def test_mistakes(self):
        for options in (["--since", "soon"], ["--until", "2024-13"], ["--has-finding", "nothing"],
                        ["--csv", "--jsonl"], ["--from", ""]):
            self.assertEqual(zqv("scan", *options, "mail").code, 2, options)


if __name__ == "__main__":
    unittest.main()
