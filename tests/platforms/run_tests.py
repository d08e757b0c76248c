#!/usr/bin/env python3
"""Runs the program of tests/interface in Wine, or natively on its own system.

  run_tests.py BUILD PROGRAM RUN...      a program for Windows, in Wine, whose folder is in BUILD
  run_tests.py --native PROGRAM RUN...   a program for this system
  run_tests.py --self-test

A RUN is a name of RUNS below, or "all". Prints how many tests ran, and which were skipped. Fails
when a test failed, when no test ran, and when the time runs out. On Windows it changes the system's
time zone while the tests run, and restores it.
"""

import pathlib
import re
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import runner  # noqa: E402: in this folder
import wine  # noqa: E402: in this folder

SECONDS = 1200
# Time zone and filter. Dates of messages are expected for UTC. A process on Windows has the zone in
# which it is started; a test of date_test.cc for another zone does nothing there.
RUNS = {
    "corpus": ("UTC0", "Messages/*"),
    "interface": ("IST-5:30", "-Messages/*:MissingEntryPoints.Each*"),
    "dates-in-zone-1": ("UTC0", "Dates.*"),
    "dates-in-zone-2": ("<+01>-1", "Dates.*"),
    "dates-in-zone-3": ("NST3:30", "Dates.*"),
}


def count_tests(text):
    """The number of tests that ran, and the names of those that were skipped. Each test runs in a
    process that prints its own summary; the last summary is from the process that started all of
    them."""
    ran = re.findall(r"^\[==========\] (\d+) tests? from \d+ test suites? ran", text, re.MULTILINE)
    skipped = re.findall(r"^\[  SKIPPED \] 1 test, listed below:\n\[  SKIPPED \] (\S+)", text,
                         re.MULTILINE)
    return int(ran[-1]) if ran else 0, skipped


def verdict(code, text, how):
    """The program's exit code, or another one when no test ran; and a line with the numbers."""
    ran, skipped = count_tests(text)
    names = f" ({', '.join(skipped)})" if skipped else ""
    line = f"{how}: {ran} tests ran, {len(skipped)} of them skipped{names}"
    return code or (1 if ran == len(skipped) else 0), line


def self_test():
    one = "[==========] 1 test from 1 test suite ran. (7 ms total)\n"
    skip = "[  PASSED  ] 0 tests.\n[  SKIPPED ] 1 test, listed below:\n[  SKIPPED ] A.B\n"
    end = "[==========] 2 tests from 1 test suite ran. (9 ms total)\n"
    none = "[==========] 0 tests from 0 test suites ran. (0 ms total)\n"
    failures = [f"{text!r} gave {found}, not {wanted}" for text, code, wanted in (
        ("", 0, 1), (none, 0, 1), (one + none, 0, 1), (one + skip + end, 0, 0), (one + end, 3, 3),
        (one + skip + one + skip + end, 0, 1)) if (found := verdict(code, text, "")[0]) != wanted]
    if not verdict(0, one + skip + end, "")[1].endswith("2 tests ran, 1 of them skipped (A.B)"):
        failures.append("the line does not tell what ran")
    zones = {zone for zone, _ in RUNS.values()} - set(runner.WINDOWS_ZONES)
    failures += [f"no name on Windows: {zone}" for zone in zones]
    print("\n".join(failures) or "all was seen")
    return 1 if failures else 0


def run(by, program, name):
    zone, tests = RUNS[name]
    with by.in_zone(zone) as variables:
        code, text = wine.run(
            [*by.command(program), f"--gtest_filter={tests}", "--gtest_brief=1"], variables,
            SECONDS)
    text = text.replace("\r\n", "\n")
    code, line = verdict(code, text, by.name)
    if code != 0:
        print(text)
    print(line)
    return code


def main():
    arguments = sys.argv[1:]
    if arguments == ["--self-test"]:
        return self_test()
    if len(arguments) < 3:
        sys.exit(__doc__)
    build, program, *names = arguments
    by = runner.Native() if build == "--native" else runner.Wine(pathlib.Path(build) / "wine")
    if names == ["all"]:
        names = list(RUNS)
    with by.ready():
        codes = [run(by, program, name) for name in names]
    return max(codes)


if __name__ == "__main__":
    sys.exit(main())
