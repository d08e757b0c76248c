#!/usr/bin/env python3
"""Which folder may include which: the direction of the project's dependencies.

  includes.py FOLDER       lists every include that breaks a rule; fails when there is one
  includes.py --self-test  plants violations in a scratch project and requires that each is found

The tables below contain the rules. The rule for a file is the longest row that is a prefix of its
path. Files of the project are included in quotes, by their path from the top of the project.
"""

import pathlib
import re
import sys
import tempfile

# The core, lowest folder first. Each folder may include itself and the folders before it, and of
# the host's interface only the encoding numbers.
CORE = ["base", "text", "mime", "email"]
OF_THE_INTERFACE = "abi/encodings.h"

# The bridge, and what each of its folders may include besides itself. Bridge and core are shipped.
BRIDGE = {
    "abi": [],
    "host": ["abi", "base"],
    "objects": [*CORE, "host", "abi"],
    "plugin": [*CORE, "objects", "host", "abi"],
}

# All other folders, and what each may include besides itself. "*" means any file of the project.
OTHERS = {
    "standin": ["abi", "base"],
    "cli": ["standin", "abi", *CORE],
    "tests/interface": ["cli", "standin", "abi", "base", "tests/support"],
    "tests/cli": ["standin", "abi", "tests/support"],
    "tests/core": [*CORE, OF_THE_INTERFACE],
    "tests/unit/mimetic": [],
    "tests/unit/standin": ["standin", "abi", "base", "tests/support"],
    "tests": ["*"],
    "fuzz": ["*"],
    "bench": ["*"],
    "packaging": ["*"],
    "examples": ["*"],
}

# A unit test may include its own folder, the folders that this one may include, the fixtures of
# their unit tests, and these. It may include the stand-in host only if its folder may include abi.
UNIT_TEST_EXTRAS = ["tests/support", "tests/reference"]

# The folders that may use mimetic.
MIMETIC_USERS = ["mime/", "email/", "objects/", "tests/unit/", "bench/", "fuzz/"]

# Headers that the plug-in must not include, because they would have to be shipped.
NOT_IN_PLUGIN = re.compile(
    r"<(nlohmann|CLI|gtest|gmock|benchmark|rapidcheck|unicode)/|<(rapidcheck|iconv)\.h>")

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
SUFFIXES = {".h", ".cc", ".def", ".inc", ".mm"}
NOT_OURS = {"build", "dist", ".git", "third_party"}


def shipped():
    """For each folder of the plug-in: what it may include, itself included."""
    table = {}
    for index, folder in enumerate(CORE):
        table[folder] = [*CORE[: index + 1], OF_THE_INTERFACE]
    for folder, allowed in BRIDGE.items():
        table[folder] = [folder, *allowed]
    return table


def rules():
    """For each folder: the folders and files that it may include."""
    table = shipped()
    for folder, allowed in shipped().items():
        fixtures = [f"tests/unit/{other}" for other in allowed if "/" not in other]
        host = ["standin"] if "abi" in allowed else []
        table[f"tests/unit/{folder}"] = [*allowed, *fixtures, *host, *UNIT_TEST_EXTRAS]
    table.update(OTHERS)
    return table


def longest_prefix(path, folders):
    """The longest of `folders` that contains `path` or equals it; None when there is none."""
    holding = [folder for folder in folders if path == folder or path.startswith(folder + "/")]
    return max(holding, key=len, default=None)


def check_line(path, line, table, top):
    """The violation in one line of the file `path`, or None."""
    folder = longest_prefix(path, table)
    if folder is None:
        return "lies in a folder that has no rule; add one to tests/checks/includes.py"
    code = line.split("//")[0]
    names_mimetic = "mimetic::" in code or re.search(r"#\s*include\s*<mimetic/", code)
    if names_mimetic and not path.startswith(tuple(MIMETIC_USERS)):
        return "names the MIME library"
    match = INCLUDE.match(line)
    if not match:
        return None
    if match[1] == "<":
        if folder in shipped() and NOT_IN_PLUGIN.search(line):
            return f"includes <{match[2]}> into the plug-in"
        return None
    if not (top / match[2]).is_file():
        return f'includes "{match[2]}", which is no file seen from the top of the project'
    allowed = table[folder]
    if "*" in allowed or longest_prefix(match[2], [folder, *allowed]):
        return None
    return f"includes {match[2]} upwards or sideways"


def check(top):
    """All violations in the project at `top`, one text each."""
    table = rules()
    found = []
    files = 0
    for file in sorted(top.rglob("*")):
        path = file.relative_to(top).as_posix()
        if file.suffix not in SUFFIXES or path.split("/")[0] in NOT_OURS or not file.is_file():
            continue
        files += 1
        for number, line in enumerate(file.read_text("utf-8").splitlines(), 1):
            fault = check_line(path, line, table, top)
            if fault:
                found.append(f"{path}:{number}: {fault}")
    return found if files else [f"no source files in {top}"]


# A file, a line planted in it, and the text of the expected complaint ("" when none is expected).
PLANTED = [
    ("base/a.cc", '#include "abi/encodings.h"', ""),
    ("email/a.cc", '#include "abi/encodings.h"', ""),
    ("mime/a.cc", '#include "text/x.h"', ""),
    ("host/a.cc", '#include "abi/x.h"', ""),
    ("host/a.cc", '#include "base/x.h"', ""),
    ("objects/a.cc", '#include "email/x.h"', ""),
    ("objects/a.cc", '#include "host/x.h"', ""),
    ("objects/a.cc", "#include <mimetic/rfc822/mailbox.h>", ""),
    ("plugin/a.cc", '#include "objects/x.h"', ""),
    ("email/a.cc", "#include <mimetic/mimetic.h>", ""),
    ("standin/a.cc", '#include "base/x.h"', ""),
    ("cli/a.cc", '#include "mime/x.h"', ""),
    ("cli/a.cc", '#include "email/x.h"', ""),
    ("cli/a.cc", "#include <CLI/CLI.hpp>", ""),
    ("tests/unit/mime/a.cc", '#include "tests/unit/mime/x.h"', ""),
    ("tests/unit/text/a.cc", '#include "tests/reference/x.h"', ""),
    ("tests/unit/text/a.cc", '#include "tests/unit/base/x.h"', ""),
    ("tests/unit/host/a.cc", '#include "standin/x.h"', ""),
    ("tests/unit/objects/a.cc", '#include "tests/unit/host/x.h"', ""),
    ("tests/unit/objects/a.cc", '#include "tests/unit/mime/x.h"', ""),
    ("tests/core/a.cc", '#include "email/x.h"', ""),
    ("tests/corpus/a.cc", '#include "email/x.h"', ""),
    ("host/a.cc", "int x;  // the mimetic::Field of another folder", ""),
    ("base/a.cc", '#include "abi/x.h"', "upwards"),
    ("base/a.cc", '#include "text/x.h"', "upwards"),
    ("text/a.cc", '#include "abi/x.h"', "upwards"),
    ("text/a.cc", '#include "host/x.h"', "upwards"),
    ("text/a.cc", '#include "mime/x.h"', "upwards"),
    ("mime/a.h", '#include "email/x.h"', "upwards"),
    ("mime/a.h", '#include "objects/x.h"', "upwards"),
    ("email/a.cc", '#include "host/x.h"', "upwards"),
    ("email/a.cc", '  #  include "objects/x.h"', "upwards"),
    ("email/a.cc", '#include "abi/x.h"', "upwards"),
    ("email/a.cc", '#include "plugin/x.h"', "upwards"),
    ("host/a.cc", '#include "text/x.h"', "upwards"),
    ("host/a.cc", '#include "mime/x.h"', "upwards"),
    ("host/a.cc", '#include "objects/x.h"', "upwards"),
    ("host/a.cc", '#include "standin/x.h"', "upwards"),
    ("objects/a.cc", '#include "plugin/x.h"', "upwards"),
    ("abi/a.h", '#include "host/x.h"', "upwards"),
    ("abi/a.h", '#include "base/x.h"', "upwards"),
    ("standin/a.cc", '#include "host/x.h"', "upwards"),
    ("standin/a.cc", '#include "mime/x.h"', "upwards"),
    ("cli/a.cc", '#include "host/x.h"', "upwards"),
    ("cli/a.cc", '#include "objects/x.h"', "upwards"),
    ("tests/interface/a.cc", '#include "host/x.h"', "upwards"),
    ("tests/interface/a.cc", '#include "mime/x.h"', "upwards"),
    ("tests/core/a.cc", '#include "host/x.h"', "upwards"),
    ("tests/core/a.cc", '#include "standin/x.h"', "upwards"),
    ("tests/unit/base/a.cc", '#include "standin/x.h"', "upwards"),
    ("tests/unit/mime/a.cc", '#include "standin/x.h"', "upwards"),
    ("tests/unit/email/a.cc", '#include "tests/unit/host/x.h"', "upwards"),
    ("tests/unit/host/a.cc", '#include "text/x.h"', "upwards"),
    ("tests/unit/host/a.cc", '#include "tests/unit/mime/x.h"', "upwards"),
    ("tests/unit/objects/a.cc", '#include "plugin/x.h"', "upwards"),
    ("tests/unit/standin/a.cc", '#include "host/x.h"', "upwards"),
    ("base/a.cc", "#include <mimetic/mimetic.h>", "names the MIME library"),
    ("host/a.cc", "#include <mimetic/mimetic.h>", "names the MIME library"),
    ("text/charset.cc", "mimetic::Base64 codec;", "names the MIME library"),
    ("plugin/a.cc", "#include <mimetic/mimetic.h>", "names the MIME library"),
    ("standin/a.cc", "mimetic::Field field;", "names the MIME library"),
    ("cli/a.cc", "mimetic::Field field;", "names the MIME library"),
    ("base/a.cc", "#include <gtest/gtest.h>", "into the plug-in"),
    ("mime/a.cc", "#include <nlohmann/json.hpp>", "into the plug-in"),
    ("host/a.cc", "#include <CLI/CLI.hpp>", "into the plug-in"),
    ("objects/a.cc", "#include <CLI/CLI.hpp>", "into the plug-in"),
    ("text/a.cc", "#include <iconv.h>", "into the plug-in"),
    ("host/a.cc", '#include "x.h"', "no file seen from the top"),
    ("newfolder/a.cc", "int x;", "has no rule"),
]


def self_test():
    """The number of planted lines whose result was not the expected one."""
    failures = 0
    for path, line, expected in PLANTED:
        with tempfile.TemporaryDirectory() as name:
            top = pathlib.Path(name)
            for folder in [*rules(), *UNIT_TEST_EXTRAS]:
                (top / folder).mkdir(parents=True, exist_ok=True)
                (top / folder / "x.h").write_text("#pragma once\n")
            (top / OF_THE_INTERFACE).write_text("#pragma once\n")
            (top / path).parent.mkdir(parents=True, exist_ok=True)
            (top / path).write_text(line + "\n")
            found = check(top)
            good = not found if not expected else len(found) == 1 and expected in found[0]
            if not good:
                failures += 1
                print(f"{path}: {line}: expected '{expected}', got {found}")
    with tempfile.TemporaryDirectory() as name:
        if not check(pathlib.Path(name)):
            failures += 1
            print("an empty project passes")
    return failures


def main():
    if sys.argv[1] == "--self-test":
        return 1 if self_test() else 0
    found = check(pathlib.Path(sys.argv[1]))
    for fault in found:
        print(fault)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
