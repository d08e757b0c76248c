#!/usr/bin/env python3
"""Checks the names that a library needs from the system: each must be in the list of its platform.

  undefined.py LIBRARY...              checks built files
  undefined.py --self-test LIBRARY...  takes a name from each list and requires a complaint

The oldest supported system has each name in undefined/PLATFORM.txt; this was looked up. Any other
name may link with stubs or newer libraries, and then prevent the library from loading. Before
adding a name to a list, look up since which version the platform has it.
"""

import pathlib
import struct
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import pe  # noqa: E402: in this folder

LISTS = pathlib.Path(__file__).parent / "undefined"
MAGICS = {b"\x7fELF": "linux", b"\xcf\xfa\xed\xfe": "macos", b"\xca\xfe\xba\xbe": "macos",
          b"MZ\x90\x00": "windows", b"MZ\x78\x00": "windows"}


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def read_list(platform):
    lines = (LISTS / f"{platform}.txt").read_text().splitlines()
    return {line for line in lines if line and not line.startswith("#")}


def names_of(path):
    """The platform of a file, and the names that it needs, without their versions."""
    platform = MAGICS.get(path.read_bytes()[:4])
    if platform is None:
        sys.exit(f"{path} is of no known kind")
    if platform == "linux":
        lines = output("nm", "-D", "--undefined-only", str(path)).splitlines()
        return platform, {line.split()[-1].split("@")[0] for line in lines if line}
    if platform == "macos":
        lines = output("llvm-nm-19", "-u", "--arch=all", "--format=just-symbols", str(path))
        return platform, {line for line in lines.split() if line.startswith(("_", "dyld_"))}
    file = pe.File(path.read_bytes())
    # Windows for arm64 began with functions that came much later on other processors.
    return f"windows-{file.processor}", set(file.imported())


def faults_of(path, without=None):
    platform, names = names_of(path)
    allowed = read_list(platform) - {without}
    return [f"{path}: {name} is not in undefined/{platform}.txt" for name in sorted(names - allowed)]


def self_test(paths):
    failures = []
    for path in paths:
        _, names = names_of(path)
        taken = sorted(names)[len(names) // 2]
        if len(faults_of(path, taken)) != 1:
            failures.append(f"{path}: not seen that {taken} is not in the list")
    return failures


def main():
    is_test = sys.argv[1:2] == ["--self-test"]
    paths = [pathlib.Path(name) for name in sys.argv[2 if is_test else 1:]]
    if not paths:
        sys.exit(__doc__)
    faults = self_test(paths) if is_test else [f for path in paths for f in faults_of(path)]
    print("\n".join(faults) or ("all was seen" if is_test else "as it should be"))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
