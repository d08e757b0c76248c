#!/usr/bin/env python3
"""Whether a Mac can compile what tests the library there: the stand-in host, tests/interface.

  mac_tests.py ROOT SDK               compiles, without output, each file that asks the system
  mac_tests.py --self-test ROOT SDK   plants calls that macOS lacks and demands complaints

SDK is the folder that scripts/macos-sdk makes. The other files ask the C++ library alone and are
compiled by preset mac-tests, which takes minutes. Ends with exit code 77 where the compiler or the
folder is missing.
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

COMPILER = "clang++-19"
PATTERNS = ("standin/*.cc", "cli/text.cc", "tests/support/*.cc", "tests/interface/*.cc",
            "tests/platforms/*.cc")
# What builds on a Mac leave out, and the program of Linux that writes tables.
LEFT_OUT = re.compile(r"_windows\.cc$|/windows_|/make_charset_tables\.cc$|/failing_memory\.cc$"
                      r"|/(locale|memory)_test\.cc$")
ASKS_SYSTEM = re.compile(r"^#include <[a-z_/-]+\.h>$|__APPLE__|__linux__", re.MULTILINE)
# These alone do not make a file ask the system.
OF_TESTS = re.compile(r"^#include <g(test|mock)/.*>$", re.MULTILINE)
NAMES = ("LIBRARY", "CORPUS", "SAMPLES", "TEST_DATA", "EMULATOR")


def sources(root):
    files = sorted(path for pattern in PATTERNS for path in root.glob(pattern))
    return [path for path in files if not LEFT_OUT.search(path.as_posix()) and
            ASKS_SYSTEM.search(OF_TESTS.sub("", path.read_text("utf-8")))]


def complaint(root, sdk, source, include):
    """What the compiler says of a file; empty when it is content."""
    command = [COMPILER, "--target=x86_64-apple-macos11.0", "-isysroot", str(sdk), "-std=c++17",
               "-fsyntax-only", "-fsigned-char", "-Wall", "-Wextra", "-Wpedantic", "-Werror",
               "-I", str(root), "-isystem", str(include)]
    for library in ("googletest", "googlemock"):
        command += ["-isystem", f"/usr/src/googletest/{library}/include"]
    command += [f'-DZQV_{name}=""' for name in NAMES]
    done = subprocess.run([*command, str(source)], capture_output=True, text=True, check=False)
    return done.stderr or (f"{source} cannot be compiled" if done.returncode != 0 else "")


def self_test(root, sdk, include):
    planted = {"#include <malloc.h>\n": "malloc.h", "#include <sys/prctl.h>\n": "prctl.h",
               "#include <sys/mman.h>\nint f() { return memfd_create(\"\", 0); }\n": "memfd_create",
               "#include <unistd.h>\nchar** f() { return environ; }\n": "environ"}
    failures = []
    with tempfile.TemporaryDirectory() as name:
        source = pathlib.Path(name) / "planted.cc"
        for text, expected in planted.items():
            source.write_text(text, "utf-8")
            if expected not in complaint(root, sdk, source, include):
                failures.append(f"not seen: {expected}")
        source.write_text("#include <unistd.h>\nint f() { return getpid(); }\n", "utf-8")
        if found := complaint(root, sdk, source, include):
            failures.append(f"refused without a reason: {found}")
    for expected in ("charset_iconv.cc", "run_again.cc", "child.cc"):
        if not any(path.name == expected for path in sources(root)):
            failures.append(f"left out: {expected}")
    return failures


def check(root, sdk, include):
    files = sources(root)
    print(f"{len(files)} files ask the system")
    return [found for source in files if (found := complaint(root, sdk, source, include))]


def main():
    wants_self_test = sys.argv[1:2] == ["--self-test"]
    arguments = sys.argv[2:] if wants_self_test else sys.argv[1:]
    if len(arguments) != 2:
        sys.exit(__doc__)
    root, sdk = (pathlib.Path(argument).resolve() for argument in arguments)
    if shutil.which(COMPILER) is None or not (sdk / "stamp").exists():
        print(f"skipped: no {COMPILER}, or no {sdk}")
        return 77
    with tempfile.TemporaryDirectory() as name:
        # The package's folder holds the headers of this system's C library, too.
        include = pathlib.Path(name)
        (include / "nlohmann").symlink_to("/usr/include/nlohmann")
        failures = (self_test if wants_self_test else check)(root, sdk, include)
    print("\n".join(failures) or "all is well")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
