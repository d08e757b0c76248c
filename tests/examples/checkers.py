"""Runs the checkers of Xojo code. The zqv program is named on the command line: --zqv FILE."""

import argparse
import functools
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

import usage

TOP = pathlib.Path(__file__).resolve().parents[2]
EXAMPLES = TOP / "examples"
PROJECTS = ["ShowMail", "WalkFolder"]
TIMEOUT = 60  # seconds


def run_script(name, *arguments):
    """A run of one of the project's scripts; gives code, standard output, standard error."""
    run = subprocess.run([sys.executable, "-B", TOP / "scripts" / name, *arguments],
                         capture_output=True, encoding="utf-8", timeout=TIMEOUT, check=False)
    return run.returncode, run.stdout, run.stderr


class TestCase(unittest.TestCase):
    """A test with a folder of its own, `self.folder`."""

    maxDiff = None
    zqv = None

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(text if isinstance(text, bytes) else text.encode("utf-8"))
        return path

    def copy_examples(self):
        """The examples, to plant mistakes in."""
        shutil.copytree(EXAMPLES, self.folder / "examples")
        return self.folder / "examples"

    def change(self, path, old, new):
        """Replaces what must be there exactly once."""
        data = path.read_bytes()
        self.assertEqual(data.count(old.encode("utf-8")), 1, f"{old} in {path}")
        path.write_bytes(data.replace(old.encode("utf-8"), new.encode("utf-8")))

    @classmethod
    @functools.cache
    def classes(cls):
        """The list of what the library registers."""
        return subprocess.run([cls.zqv, "classes"], capture_output=True, timeout=TIMEOUT,
                              encoding="utf-8", check=True).stdout

    def check_usage(self, *paths):
        """What usage.check says of files and folders of code."""
        return usage.check(self.classes(), paths)


def main():
    """Like unittest.main, with the option --zqv before its own."""
    parser = argparse.ArgumentParser(add_help=False)
    parser.add_argument("--zqv", required=True, type=pathlib.Path)
    arguments, rest = parser.parse_known_args()
    TestCase.zqv = arguments.zqv.resolve()
    unittest.main(module="__main__", argv=[sys.argv[0], *rest])
