#!/usr/bin/env python3
"""Runs a GoogleTest program for Windows in Wine.

  run_tests.py BUILD PROGRAM ZONE FILTER
  run_tests.py --self-test

Prints how many tests ran, and which were skipped. Fails when a test failed, when the filter matches
no test, and when the time runs out.
"""

import pathlib
import re
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402: in this folder

SECONDS = 1200


def count_tests(text):
    """The number of tests that ran, and the names of those that were skipped. Each test runs in a
    process that prints its own summary; the last summary is from the process that started all of
    them."""
    ran = re.findall(r"^\[==========\] (\d+) tests? from \d+ test suites? ran", text, re.MULTILINE)
    skipped = re.findall(r"^\[  SKIPPED \] 1 test, listed below:\n\[  SKIPPED \] (\S+)", text,
                         re.MULTILINE)
    return int(ran[-1]) if ran else 0, skipped


def verdict(code, text):
    """The program's exit code, or another one when no test ran; and a line with the numbers."""
    ran, skipped = count_tests(text)
    names = f" ({', '.join(skipped)})" if skipped else ""
    line = f"Under Wine: {ran} tests ran, {len(skipped)} of them skipped{names}"
    return code or (1 if ran == len(skipped) else 0), line


def self_test():
    one = "[==========] 1 test from 1 test suite ran. (7 ms total)\n"
    skip = "[  PASSED  ] 0 tests.\n[  SKIPPED ] 1 test, listed below:\n[  SKIPPED ] A.B\n"
    end = "[==========] 2 tests from 1 test suite ran. (9 ms total)\n"
    none = "[==========] 0 tests from 0 test suites ran. (0 ms total)\n"
    failures = [f"{text!r} gave {found}, not {wanted}" for text, code, wanted in (
        ("", 0, 1), (none, 0, 1), (one + none, 0, 1), (one + skip + end, 0, 0), (one + end, 3, 3),
        (one + skip + one + skip + end, 0, 1)) if (found := verdict(code, text)[0]) != wanted]
    if not verdict(0, one + skip + end)[1].endswith("2 tests ran, 1 of them skipped (A.B)"):
        failures.append("the line does not tell what ran")
    print("\n".join(failures) or "all was seen")
    return 1 if failures else 0


def main():
    if sys.argv[1:] == ["--self-test"]:
        return self_test()
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    build, program, zone, tests = sys.argv[1:]
    with wine.server(pathlib.Path(build) / "wine"):
        code, text = wine.run(
            ["wine", wine.path(program), f"--gtest_filter={tests}", "--gtest_brief=1"],
            wine.environment(TZ=zone, ZQV_ZONE=zone), SECONDS)
    text = text.replace("\r\n", "\n")
    code, line = verdict(code, text)
    if code != 0:
        print(text)
    print(line)
    return code


if __name__ == "__main__":
    sys.exit(main())
