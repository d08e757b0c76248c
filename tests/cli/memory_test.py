"""Too little memory: at any limit the exit code is 1 with an error message, or 0."""

import os
import resource
import signal
import unittest

import program
from program import SAMPLES, ZQV, zqv

VERBS = (("scan",), ("list",), ("extract", "--force", "--dir"), ("check",), ("json",), ("show",))
STEPS = 50
KILOBYTES = 1 << 10
# The memory that a message of 1 MB needs; a small one needs less than a tenth of it.
MOST = 40_000


def has_sanitizer():
    """Whether the program was built with a sanitizer, which reserves terabytes of address space."""
    return b"__asan_init" in ZQV.read_bytes() or b"__tsan_init" in ZQV.read_bytes()


def within(kilobytes, *arguments):
    """Runs the program with a limit of its address space."""
    def limit():
        resource.setrlimit(resource.RLIMIT_AS, (kilobytes * KILOBYTES, kilobytes * KILOBYTES))
    return zqv(*arguments, preexec_fn=limit)


def least():
    """The least memory in which the program starts. With less, the dynamic linker ends with 127 or
    a signal."""
    too_little, enough = 1_000, 1_000_000
    while enough - too_little > 4:
        middle = (too_little + enough) // 2
        if within(middle, "--version").code in (127, -signal.SIGSEGV):
            too_little = middle
        else:
            enough = middle
    return enough


@unittest.skipIf(has_sanitizer(), "a sanitizer needs more addresses than any limit leaves")
class MemoryTest(program.TestCase):
    def sweep(self, message, most):
        bottom = least()
        codes = {0: 0, 1: 0}
        for step in range(STEPS):
            limit = bottom + most * step // STEPS
            for verb, *options in VERBS:
                target = [self.folder / "out"] if options else []
                with self.subTest(verb=verb, limit=limit):
                    result = within(limit, verb, message, *options, *target)
                    self.assertIn(result.code, codes, result)
                    self.assertEqual(bool(result.err), result.code == 1, result)
                    codes[result.code] += 1
        # Both exit codes must have occurred often.
        self.assertGreater(min(codes.values()), STEPS // 4, codes)

    def test_a_small_message(self):
        self.sweep(SAMPLES / "attachments.eml", MOST // 10)

    def test_a_large_message(self):
        data = os.urandom(256).hex() * 2048
        part = "Content-Type: {}\nContent-Disposition: attachment; filename=a.txt\n\n"
        message = ("From: ada@example.com\nMIME-Version: 1.0\n"
                   "Content-Type: multipart/mixed; boundary=b\n\n--b\nContent-Type: text/plain\n\n"
                   "hello\n--b\n" + part.format("text/plain; charset=utf-8") + data + "\n--b--\n")
        self.assertGreater(len(message), 1_000_000)
        self.sweep(self.write("large.eml", message), MOST)


if __name__ == "__main__":
    unittest.main()
