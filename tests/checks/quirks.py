#!/usr/bin/env python3
"""Checks the quirks, which are rules that look like bugs: each has a test and a row in
docs/quirks.md.

  quirks.py FOLDER       lists what is missing in the project; fails when anything is
  quirks.py --self-test  plants each fault in a scratch project and requires that it is found

A quirk is a comment in the library's folders with "QUIRK:", and after it "Test: Suite.Name", or
several tests separated by commas. Each test must exist in tests/, and the document must name it.
Every test that docs/quirks.md or SECURITY.md names must exist, as `Suite.Name` or `Suite.*`.
"""

import pathlib
import re
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
import planted

NAMING_TESTS = ["docs/quirks.md", "docs/development.md", "docs/limits.md", "docs/testing.md",
                "SECURITY.md", "tests/interface/README.md"]
NAMED = re.compile(r"`([A-Z]\w*\.(?:[A-Z]\w*|\*))`")
FOLDERS = ["abi", "base", "text", "mime", "email", "host", "objects", "plugin"]
COMMENT = re.compile(r"^\s*//\s?(.*)$")
TESTS = re.compile(r"Test: ((?:\w+\.\w+)(?:,\s+\w+\.\w+)*)")
DEFINED = re.compile(r"\bTEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\)")


def quirks(text):
    """For each quirk its line number and the text of the comment, from QUIRK: on."""
    found = []
    lines = text.splitlines()
    for number, line in enumerate(lines, 1):
        if "QUIRK:" not in line:
            continue
        words = [line.split("QUIRK:", 1)[1].strip()]
        for following in lines[number:]:
            comment = COMMENT.match(following)
            if not comment or "QUIRK:" in following:
                break
            words.append(comment[1].strip())
        found.append((number, " ".join(words)))
    return found


def defined_tests(top):
    names = set()
    for file in (top / "tests").rglob("*_test.cc"):
        names.update(".".join(match) for match in DEFINED.findall(file.read_text("utf-8")))
    return names


def check(top):
    """All faults of the project at `top`, one text each."""
    document = top / "docs" / "quirks.md"
    listed = document.read_text("utf-8") if document.is_file() else ""
    defined = defined_tests(top)
    faults = []
    named = set()
    for folder in FOLDERS:
        for file in sorted((top / folder).rglob("*.[hc]*")):
            for number, text in quirks(file.read_text("utf-8")):
                place = f"{file.relative_to(top).as_posix()}:{number}"
                match = TESTS.search(text)
                if not match:
                    faults.append(f"{place}: names no test")
                    continue
                for test in re.split(r",\s+", match[1]):
                    named.add(test)
                    if test not in defined:
                        faults.append(f"{place}: the test {test} does not exist")
                    if f"`{test}`" not in listed:
                        faults.append(f"{place}: {test} is not in docs/quirks.md")
    if not named:
        faults.append("no quirk found at all")
    suites = {test.split(".")[0] + ".*" for test in defined}
    for document in NAMING_TESTS:
        path = top / document
        for test in NAMED.findall(path.read_text("utf-8") if path.is_file() else ""):
            if test not in defined and test not in suites:
                faults.append(f"{document}: the test {test} does not exist")
    return faults


GOOD = {
    "host/a.h": "// Rule. QUIRK: odd. Reason.\n// Test: Odd.One,\n// Odd.Two.\nint F();\n",
    "tests/a_test.cc": "TEST(Odd, One) {}\nTEST_F(Odd, Two) {}\n",
    "docs/quirks.md": "| odd | `Odd.One`, `Odd.Two` |\n",
}
PLANTED = [
    ({}, ""),
    ({"host/a.h": "// QUIRK: odd. Reason.\nint F();\n"}, "names no test"),
    ({"tests/a_test.cc": "TEST(Odd, One) {}\n"}, "Odd.Two does not exist"),
    ({"docs/quirks.md": "| odd | `Odd.One` |\n"}, "Odd.Two is not in docs/quirks.md"),
    ({"docs/quirks.md": GOOD["docs/quirks.md"] + "| `Odd.Three` |\n"}, "Odd.Three does not exist"),
    ({"SECURITY.md": "| `Odd.One`, `Odd.*`, `Odd.Four` |\n"}, "SECURITY.md: the test Odd.Four does not exist"),
    ({"SECURITY.md": "| `Even.*` |\n"}, "SECURITY.md: the test Even.* does not exist"),
    ({"host/a.h": "int F();\n"}, "no quirk found at all"),
]


if __name__ == "__main__":
    sys.exit(planted.main(check, GOOD, PLANTED))
