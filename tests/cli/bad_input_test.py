"""The program with files that are not messages, and with files that are not libraries."""

import ctypes
import os
import re
import shutil
import subprocess
import unittest

import program
from program import SAMPLES, TIMEOUT, ZQV, environment, zqv

EMPTY = "UnsupportedOperationException: Can't parse empty text."
NO_HEADER = ("UnsupportedOperationException: "
             "Email must start with an header text. BOM character?")
NOT_OPENED = "IOException: Failed to open file for reading."

# Every verb that reads messages, with its required arguments.
VERBS = (["show"], ["tree"], ["headers"], ["addresses"], ["list"], ["check"], ["text"], ["html"],
         ["strip"], ["json"], ["bench"], ["extract", "--dir", "never-made"],
         ["extract", "--stdout", "0"], ["report", "-o", "never-made"])


class BadFileTest(program.TestCase):
    def check(self, path, message):
        """Requires that every verb reports the same error once and prints nothing."""
        for verb in VERBS:
            with self.subTest(verb[0]):
                self.expect(zqv(*verb, path, cwd=self.folder), 1, "", f"zqv: {path}: {message}\n")
        self.assertFalse((self.folder / "never-made").exists())
        result = self.expect(zqv("export", "--to", "exported", path, cwd=self.folder), 1, "", None)
        self.assertRegex(result.err, rf"\Azqv: {re.escape(str(path))}: {re.escape(message)}\n"
                                     r"zqv: exported 0 messages.*\n\Z")
        self.assertEqual(list((self.folder / "exported").iterdir()), [])

    def test_missing(self):
        self.check(self.folder / "nothing.eml", NOT_OPENED)

    def test_name_of_no_bytes(self):
        self.check("", NOT_OPENED)

    def test_directory(self):
        self.check(self.folder, "is a folder; --recursive reads what is in it")

    def test_empty(self):
        self.check(self.write("a.eml", b""), EMPTY)

    def test_only_a_byte_order_mark(self):
        self.check(self.write("a.eml", b"\xEF\xBB\xBF"), EMPTY)

    def test_first_byte_is_high(self):
        for first in (b"\x80", b"\xC3", b"\xFF"):
            self.check(self.write("a.eml", first + b"Subject: x\n\nx\n"), NO_HEADER)

    def test_two_byte_order_marks(self):
        self.check(self.write("a.eml", b"\xEF\xBB\xBF" * 2 + b"Subject: x\n\nx\n"), NO_HEADER)

    def test_unreadable(self):
        path = self.write("a.eml", b"Subject: x\n\nx\n")
        path.chmod(0)
        copy = self.copy_program()
        options = program.as_nobody()
        self.expect(zqv("show", path, program=copy, **options), 1, "",
                    f"zqv: {path}: {NOT_OPENED}\n")
        # The program must have read the library, and have failed to read this file only.
        path.chmod(0o644)
        self.expect(zqv("show", path, program=copy, **options), 0, None)

    def test_three_gigabytes(self):
        path = self.write("a.eml", b"Subject: x\n\n")
        os.truncate(path, 3 << 30)
        self.check(path, "larger than 2 GB, which is more than a host string holds")
        self.expect(zqv("html2text", path), 1, "",
                    f"zqv: {path}: larger than 2 GB, which is more than a host string holds\n")

    def test_binary_junk_is_read_as_far_as_it_goes(self):
        path = self.write("a.eml", bytes(range(1, 256)) * 100)
        for verb in VERBS + (["export", "--to", "exported"],):
            with self.subTest(verb[0]):
                result = zqv(*verb, path, cwd=self.folder)
                self.assertIn(result.code, (0, 1), result)
                # export also writes how many messages it exported
                lines = 2 if verb[0] == "export" else 1
                self.assertLessEqual(result.err.count("\n"), lines, result)
                for file in self.folder.glob("*made"):
                    shutil.rmtree(file) if file.is_dir() else file.unlink()

    def test_control_characters_in_the_name(self):
        self.expect(zqv("show", "no\x1B[2J\nsuch\u202Efile"), 1, "",
                    f"zqv: no\\x1B[2J\\x0Asuch\\u{{202E}}file: {NOT_OPENED}\n")


class NoMessageTest(program.TestCase):
    """Verbs that read files which need not be messages."""

    def test_html2text(self):
        gone = self.folder / "gone.html"
        self.expect(zqv("html2text", gone), 1, "", f"zqv: {gone}: No such file or directory\n")
        self.expect(zqv("html2text", self.folder), 1, "", f"zqv: {self.folder}: Is a directory\n")
        self.expect(zqv("html2text", self.write("a.html", b"")), 0, "")

    def test_nothing_to_measure(self):
        self.expect(zqv("bench", "-r", self.folder), 1, "",
                    "zqv: there is no message to measure with\n")


class SeveralFilesTest(program.TestCase):
    def test_valid_messages_are_shown(self):
        good = self.write("good.eml", "Subject: first\n\nx\n")
        other = self.write("other.eml", "Subject: second\n\nx\n")
        bad = self.write("bad.eml", b"")
        result = self.expect(zqv("headers", bad, good, "gone.eml", other), 1,
                             f"==> {good} <==\nSubject: first\n"
                             f"\n==> {other} <==\nSubject: second\n",
                             f"zqv: {bad}: {EMPTY}\nzqv: gone.eml: {NOT_OPENED}\n")
        self.assertEqual(result.code, 1)

    def test_a_missing_field_does_not_stop_other_files(self):
        good = self.write("good.eml", "X-Kind: a\nSubject: first\n\nx\n")
        bad = self.write("bad.eml", "Subject: second\n\nx\n")
        self.expect(zqv("headers", "--name", "X-Kind", bad, good), 1,
                    f"==> {bad} <==\n\n==> {good} <==\nX-Kind: a\n",
                    f"zqv: {bad}: there is no field X-Kind\n")


class StandardInputTest(program.TestCase):
    def test_empty(self):
        self.expect(zqv("show", "-"), 1, "", f"zqv: -: {EMPTY}\n")

    def test_first_byte_is_high(self):
        self.expect(zqv("show", "-", stdin=b"\xC3x"), 1, "", f"zqv: -: {NO_HEADER}\n")

    def test_directory(self):
        directory = os.open(self.folder, os.O_RDONLY)
        self.addCleanup(os.close, directory)
        self.expect(zqv("show", "-", stdin=directory), 1, "", "zqv: -: Is a directory\n")

    def test_closed(self):
        with subprocess.Popen(["sh", "-c", '"$0" show - "$1" <&-', ZQV, SAMPLES / "plain.eml"],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              env=environment()) as shell:
            out, err = shell.communicate(timeout=TIMEOUT)
        self.assertEqual(err, b"zqv: -: Bad file descriptor\n")
        self.assertIn(b"Subject: Keys\n", out)
        self.assertEqual(shell.returncode, 1)


class LibraryTest(program.TestCase):
    def check(self, library, reason):
        result = zqv("--library", library, "show", SAMPLES / "plain.eml")
        self.expect(result, 1, "", None)
        self.assertRegex(result.err, rf"\Azqv: cannot load {library}: .*{reason}.*\n\Z")

    def test_missing(self):
        self.check(self.folder / "nothing.so", "No such file")

    def test_no_library(self):
        self.check(self.write("text.so", b"just text, and long enough to be looked at" * 9),
                   "invalid ELF header")

    def test_no_plugin(self):
        with open("/proc/self/maps", encoding="utf-8") as maps:
            libraries = {line.split()[-1] for line in maps if "/libc.so" in line}
        self.assertEqual(len(libraries), 1)
        ctypes.CDLL(*libraries)
        self.check(*libraries, "REALPluginMain")

    def test_is_searched_next_to_the_program(self):
        copy = self.copy_program()
        self.expect(zqv("show", SAMPLES / "plain.eml", program=copy), 0, None)
        (self.folder / "MimeEmailZQV.so").unlink()
        result = zqv("show", SAMPLES / "plain.eml", program=copy)
        self.expect(result, 1, "", None)
        self.assertIn(f"zqv: cannot load {self.folder}/MimeEmailZQV.so: ", result.err)
        self.expect(zqv("show", SAMPLES / "plain.eml", "--library", program.LIBRARY, program=copy),
                    0, None)


if __name__ == "__main__":
    unittest.main()
