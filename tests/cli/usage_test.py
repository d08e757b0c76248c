"""The command line: what is refused, and that it is refused before anything is done."""

import unittest

import program
from program import SAMPLES, zqv

PLAIN = str(SAMPLES / "plain.eml")


class UsageTest(program.TestCase):
    def test_mistakes(self):
        target = str(self.folder / "out")
        mistakes = {
            "no verb": [],
            "unknown verb": ["shew", PLAIN],
            "show without file": ["show"],
            "tree without file": ["tree"],
            "headers without file": ["headers", "--name", "Subject"],
            "list without file": ["list"],
            "unknown option": ["show", "--colour", PLAIN],
            "option of another verb": ["show", "--name", "Subject", PLAIN],
            "option without value": ["headers", PLAIN, "--name"],
            "empty field name": ["headers", "--name", "", PLAIN],
            "extract without folder": ["extract", PLAIN],
            "extract into nothing": ["extract", PLAIN, "--dir", ""],
            "extract without file": ["extract", "--dir", target],
            "extract of two files": ["extract", PLAIN, PLAIN, "--dir", target],
            "text of two files": ["text", PLAIN, PLAIN],
            "html without file": ["html"],
            "html2text of two files": ["html2text", PLAIN, PLAIN],
            "strip without file": ["strip"],
            "decode without text": ["decode"],
            "json without file": ["json", "--raw"],
            "raw list": ["list", "--raw", PLAIN],
            "classes with a file": ["classes", PLAIN],
            "unknown entry point": ["show", PLAIN, "--without", "REALNothing"],
            "entry point in lower case": ["show", PLAIN, "--without", "runtimeubound"],
            "empty library": ["show", PLAIN, "--library", ""],
        }
        for version in ("", ".", "x", "2024r1", "1.2.3", "1e3", "nan", "-1"):
            mistakes[f"host version {version!r}"] = ["show", PLAIN, "--host-version", version]
        for part in ("", ".", "1.", ".1", "1..2", "x", "1,2", "-1", " 1"):
            mistakes[f"part {part!r}"] = ["headers", PLAIN, "--part", part]
        for name, arguments in mistakes.items():
            with self.subTest(name):
                result = self.expect(zqv(*arguments), 2, "", None)
                self.assertRegex(result.err, r"\Azqv: .+ \(zqv --help tells more\)\n\Z")
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_help(self):
        for arguments in (["--help"], ["-h"]):
            out = self.expect(zqv(*arguments)).out
            for verb in ("show", "tree", "headers", "addresses", "list", "extract", "text", "html",
                         "html2text", "decode", "strip", "json", "classes"):
                self.assertRegex(out, rf"(?m)^  {verb} ")
        self.assertIn("--force", self.expect(zqv("extract", "--help")).out)

    def test_version(self):
        self.assertRegex(self.expect(zqv("--version")).out, r"\Azqv \d+\.\d+\.\d+\n\Z")

    def test_common_options_stand_before_and_behind_the_verb(self):
        expected = zqv("show", PLAIN).out
        version = ["--host-version", "2015.1"]
        self.expect(zqv(*version, "show", PLAIN), 0, expected)
        self.expect(zqv("show", *version, PLAIN), 0, expected)
        self.expect(zqv("show", PLAIN, *version), 0, expected)

    def test_files_named_like_options_and_verbs(self):
        for name in ("tree", "--help", "--", "-"):
            self.write(name, f"Subject: {name}\n\nx\n")
        self.expect(zqv("headers", "tree", "./-", "--", "--help", "--", "tree", "-",
                        cwd=self.folder, stdin=b"Subject: input\n\nx\n"), 0,
                    "==> tree <==\nSubject: tree\n\n==> ./- <==\nSubject: -\n"
                    "\n==> ./--help <==\nSubject: --help\n\n==> ./-- <==\nSubject: --\n"
                    "\n==> tree <==\nSubject: tree\n\n==> - <==\nSubject: input\n")


if __name__ == "__main__":
    unittest.main()
