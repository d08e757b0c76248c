#!/usr/bin/env python3
"""Checks that a library gives the same for each message as that for Linux.

  compare.py [--full NAME] BUILD-LINUX BUILD-WINDOWS-TESTS WINDOWS-LIBRARY FOLDER...
  compare.py --write FILES PROGRAM LIBRARY FOLDER...
  compare.py --against FILES PROGRAM LIBRARY FOLDER...
  compare.py --self-test BUILD-LINUX FOLDER...

Each message in the folders is parsed by every constructor, in a recent and in an old host, with the
log on. The JSON of the message, the exception and the log must be equal on both systems
(tests/platforms/describe_messages.cc). --full prints all of these for one message.

The first form runs a library for Windows in Wine. PROGRAM is describe_messages for this system:
--write writes its descriptions to the folder FILES, on Linux; --against compares its descriptions
with those in FILES, on another system.
"""

import argparse
import itertools
import pathlib
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import runner  # noqa: E402: in this folder
import wine  # noqa: E402: in this folder

PROGRAM = "tests/bin/describe_messages"
HOSTS = ("2024.1", "2012.01")
# Offsets of whole hours, because Wine knows few zones with others.
ZONE = "<+02>-2"
# Messages in charsets that the stand-in host converts on Linux only.
WITHOUT_TABLES = set()


def messages(folder):
    names = sorted(path.relative_to(folder).as_posix() for path in folder.rglob("*.eml"))
    return [name for name in names if f"{folder.name}/{name}" not in WITHOUT_TABLES]


class Program:
    """Descriptions of messages by a program that loads a library."""

    def __init__(self, by, program, library):
        self.by, self.program, self.library = by, program, library

    def lines(self, host, folder, scratch, full):
        listing, output = scratch / "list", scratch / "output"
        listing.write_text("".join(f"{name}\n" for name in messages(folder)), encoding="utf-8")
        path = self.by.path
        command = [*self.by.command(self.program), path(self.library), host, path(folder),
                   path(listing), path(output), *([full] if full else [])]
        with self.by.in_zone(ZONE) as variables:
            code, text = wine.run(command, variables, 1500)
        if code != 0:
            sys.exit(f"{command} ended with {code}: {text}")
        return output.read_text(encoding="utf-8", errors="replace").splitlines()


class Written:
    """Descriptions that were written on another system."""

    def __init__(self, files):
        self.files = files

    def file(self, host, folder):
        return self.files / f"{folder.name}-{host}.txt"

    def lines(self, host, folder, _scratch, _full):
        return self.file(host, folder).read_text(encoding="utf-8").splitlines()


def differences(ours, theirs):
    if len(ours) != len(theirs):
        return [f"{len(ours)} lines and {len(theirs)}"]
    return [f"{a}\n{b}" for a, b in zip(ours, theirs) if a != b]


def describe(folders, sides, full=None):
    """For each folder and host: the lines that describe the messages, of each side."""
    with tempfile.TemporaryDirectory() as scratch:
        for folder, host in itertools.product(folders, HOSTS):
            if not messages(folder):
                sys.exit(f"{folder} has no messages")
            yield folder, host, [side.lines(host, folder, pathlib.Path(scratch), full)
                                 for side in sides]


def compare(left, right, folders, full=None):
    """The number of descriptions, and a text for each that differs."""
    found, count = [], 0
    for folder, host, lines in describe(folders, (left, right), full):
        count += len(lines[0])
        found += [f"host {host}, {folder.name}:\n{text}" for text in differences(*lines)]
    return count, found


def write(written, program, folders):
    written.files.mkdir(parents=True, exist_ok=True)
    for folder, host, (lines,) in describe(folders, (program,)):
        text = "".join(f"{line}\n" for line in lines)
        written.file(host, folder).write_text(text, encoding="utf-8")


def on_linux(build, library=None):
    return Program(runner.Native(), build / PROGRAM, library or build / "MimeEmailZQV.so")


def self_test(build, folders):
    """Descriptions by the same library must be equal. Those by copies with one letter changed, in a
    log line, in an exception's text, in a charset, must not."""
    library = (build / "MimeEmailZQV.so").read_bytes()
    failures = []
    with tempfile.TemporaryDirectory() as scratch:
        ours, other = Written(pathlib.Path(scratch)), pathlib.Path(scratch) / "MimeEmailZQV.so"
        write(ours, on_linux(build), folders)
        count, found = compare(on_linux(build), ours, folders)
        if found or not count:
            failures.append(f"of {count} descriptions by the same library {len(found)} differ")
        for old, new in ((b"parts count", b"partz count"), (b"parse empty text", b"parse empty texT"),
                         (b"ISO885915", b"ISO885995")):
            if old not in library:
                sys.exit(f"the library has no text {old}")
            other.write_bytes(library.replace(old, new))
            _, found = compare(on_linux(build, other), ours, folders)
            print(f"{new}: {len(found)} differences")
            if not found:
                failures.append(f"not seen: {new}")
    print("\n".join(failures) or "all was seen")
    return 1 if failures else 0


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("--full", metavar="NAME")
    parser.add_argument("--self-test", action="store_true")
    parser.add_argument("--write", metavar="FILES", type=pathlib.Path)
    parser.add_argument("--against", metavar="FILES", type=pathlib.Path)
    parser.add_argument("first", type=pathlib.Path)
    parser.add_argument("rest", nargs="+", type=pathlib.Path)
    options = parser.parse_args()
    if options.self_test:
        return self_test(options.first, options.rest)
    if options.write or options.against:
        library, *folders = options.rest
        by = runner.Native()
        sides = [Program(by, options.first, library), Written(options.against)]
    else:
        windows, library, *folders = options.rest
        by = runner.Wine(windows / "wine")
        sides = [on_linux(options.first), Program(by, windows / f"{PROGRAM}.exe", library)]
    if options.write:
        write(Written(options.write), sides[0], folders)
        return 0
    with by.ready():
        count, found = compare(*sides, folders, options.full)
    print("\n".join(found))
    print(f"{by.name}: {count} descriptions of messages, {len(found)} differ")
    return 1 if found or not count else 0


if __name__ == "__main__":
    sys.exit(main())
