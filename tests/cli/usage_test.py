"""The command line: which arguments are refused, and that nothing is done before they are."""

import os
import pathlib
import re
import shlex
import subprocess
import unittest

import program
from program import SAMPLES, zqv

SOURCE = pathlib.Path(os.environ["ZQV_SOURCE"])
PLAIN = str(SAMPLES / "plain.eml")
VERBS = ("show", "headers", "tree", "list", "addresses", "check", "text", "html", "html2text",
         "decode", "strip", "json", "extract", "export", "report", "classes", "bench",
         "completion", "scan")


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
            "extract into a folder and to the output":
                ["extract", PLAIN, "--dir", target, "--stdout", "1"],
            "export without folder": ["export", PLAIN],
            "export into nothing": ["export", PLAIN, "--to", ""],
            "export of an unknown form": ["export", PLAIN, "--to", target, "--form", "json,xml"],
            "export that replaces and does not":
                ["export", PLAIN, "--to", target, "--force", "--skip-existing"],
            "report without page": ["report", PLAIN],
            "check without file": ["check"],
            "bench without file": ["bench"],
            "JSON of a verb without data": ["text", "--json", PLAIN],
            "unknown input": ["show", "--input", "maildir", PLAIN],
            "unknown colour": ["show", "--color", "red", PLAIN],
            "completion of no shell": ["completion"],
            "completion of an unknown shell": ["completion", "csh"],
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
        for number in ("", "0", "-1", "1.5", "x", "99999999999999999999999"):
            mistakes[f"message {number!r}"] = ["show", PLAIN, "--message", number]
            mistakes[f"jobs {number!r}"] = ["export", PLAIN, "--to", target, "--jobs", number]
            mistakes[f"rounds {number!r}"] = ["bench", PLAIN, "--rounds", number]
        for shard in ("", "1", "0/2", "3/2", "/2", "1/", "1/2/3", "a/b", "-1/2"):
            mistakes[f"shard {shard!r}"] = ["export", PLAIN, "--to", target, "--shard", shard]
        for part in ("", ".", "1.", ".1", "1..2", "x", "1,2", "-1", " 1"):
            mistakes[f"part {part!r}"] = ["headers", PLAIN, "--part", part]
        for name, arguments in mistakes.items():
            with self.subTest(name):
                result = self.expect(zqv(*arguments), 2, "", None)
                self.assertRegex(result.err, r"\Azqv: .+ \(see zqv --help\)\n\Z")
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_unknown_verb_is_named(self):
        for arguments, reason in (([], "a verb is missing"),
                                  (["shew", PLAIN], "there is no verb shew"),
                                  (["--shew"], "there is no option --shew"),
                                  (["", PLAIN], "there is no verb "),
                                  (["show"], "source is required")):
            self.expect(zqv(*arguments), 2, "", f"zqv: {reason} (see zqv --help)\n")

    def test_help(self):
        for arguments in (["--help"], ["-h"]):
            out = self.expect(zqv(*arguments)).out
            for verb in VERBS:
                self.assertRegex(out, rf"(?m)^  {verb} ")
            self.assertIn("Exit codes: 0 ", out)
        self.assertIn("--force", self.expect(zqv("extract", "--help")).out)

    def test_help_of_each_verb_has_an_example_that_is_understood(self):
        for verb in VERBS:
            with self.subTest(verb):
                out = self.expect(zqv(verb, "--help")).out
                example = re.search(r"(?m)^Example: zqv (.*)$", out).group(1)
                words = shlex.split(example.split(" > ")[0])
                self.assertEqual(words[0], verb)
                letter = str(SAMPLES / "newsletter.eml")
                words = [letter if word in ("letter.eml", "page.html") else word for word in words]
                words = [str(SAMPLES) if word == "Mail" else word for word in words]
                self.expect(zqv(*words, cwd=self.folder), 0, None, None)

    def test_version(self):
        """The program's version is the project's, which is the newest in the changelog."""
        def version(file, pattern):
            return re.search(pattern, (SOURCE / file).read_text())[1]
        project = version("CMakeLists.txt", r"\nproject\(\w+ VERSION (\d+\.\d+\.\d+) ")
        self.assertEqual(self.expect(zqv("--version")).out, f"zqv {project}\n")
        self.assertEqual(version("CHANGELOG.md", r"\n## (\d+\.\d+\.\d+) "), project)
        self.assertEqual(version("docs/install.md", r" \./zqv_(\S+)_amd64\.deb"), project)

    def test_common_options_before_and_after_the_verb(self):
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


class ExitCodeTest(program.TestCase):
    def test_help_and_version_on_a_full_disk(self):
        for arguments in (["--version"], ["--help"], ["completion", "bash"]):
            with self.subTest(arguments), open("/dev/full", "wb") as full:
                run = subprocess.run([program.ZQV, *arguments], stdout=full,
                                     stderr=subprocess.PIPE, env=program.environment(), check=False)
                self.assertEqual((run.returncode, run.stderr),
                                 (1, b"zqv: standard output: No space left on device\n"))

    def test_a_file_that_looks_like_an_option(self):
        self.expect(zqv("show", "-dash.eml"), 2, "",
                    "zqv: there is no option -dash.eml; after -- it is a file (see "
                    "zqv --help)\n")


if __name__ == "__main__":
    unittest.main()
