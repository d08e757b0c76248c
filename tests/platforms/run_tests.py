#!/usr/bin/env python3
"""Runs a GoogleTest program for Windows by Wine.

  run_tests.py BUILD PROGRAM ZONE FILTER

Fails when a test failed, and when the filter fits none.
"""

import pathlib
import re
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402: beside this file


def main():
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    build, program, zone, tests = sys.argv[1:]
    with wine.server(pathlib.Path(build) / "wine"):
        code, text = wine.run(
            ["wine", wine.path(program), f"--gtest_filter={tests}", "--gtest_brief=1"],
            wine.environment(TZ=zone, ZQV_ZONE=zone), 1700)
    # Tests that ran in a process of their own call themselves skipped in the first one.
    print("\n".join(line for line in text.splitlines()
                    if "[  SKIPPED ]" not in line and "ran in a process of its own" not in line))
    count = re.search(r"\[==========\] (\d+) tests? from \d+ test suites? ran", text)
    if count is None or count[1] == "0":
        print("no test ran")
        return 1
    return code


if __name__ == "__main__":
    sys.exit(main())
