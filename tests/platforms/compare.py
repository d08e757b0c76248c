#!/usr/bin/env python3
"""Checks that a library for Windows, run in Wine, gives the same for each message as that for
Linux.

  compare.py [--full NAME] BUILD-LINUX BUILD-WINDOWS-TESTS WINDOWS-LIBRARY FOLDER...
  compare.py --self-test BUILD-LINUX FOLDER...

Each message in the folders is parsed by every constructor, in a recent and in an old host, with the
log on. The JSON of the message, the exception and the log must be equal on both systems
(tests/platforms/describe_messages.cc). --full prints all of these for one message.
"""

import argparse
import pathlib
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402: in this folder

PROGRAM = "tests/bin/describe_messages"
HOSTS = ("2024.1", "2012.01")
# Offsets of whole hours, because Wine knows few zones with others.
ZONE = "<+02>-2"
# Messages in charsets that the stand-in host converts on Linux only.
WITHOUT_TABLES = set()


def messages(folder):
    names = [str(path.relative_to(folder)) for path in sorted(folder.rglob("*.eml"))]
    return [name for name in names if f"{folder.name}/{name}" not in WITHOUT_TABLES]


def describe(command, paths, host, folder, names, scratch, full):
    """The lines that describe each message. `paths` converts a path to the form that the program
    expects."""
    listing, output = scratch / "list", scratch / "output"
    listing.write_text("".join(f"{name}\n" for name in names), encoding="utf-8")
    arguments = [host, paths(folder), paths(listing), paths(output)] + ([full] if full else [])
    code, text = wine.run([*command, *arguments], wine.environment(TZ=ZONE), 1500)
    if code != 0:
        sys.exit(f"{command} ended with {code}: {text}")
    return output.read_text(encoding="utf-8", errors="replace").splitlines()


def differences(ours, theirs):
    if len(ours) != len(theirs):
        return [f"{len(ours)} lines and {len(theirs)}"]
    return [f"{a}\n{b}" for a, b in zip(ours, theirs) if a != b]


def compare(linux, windows, folders, full):
    """The number of descriptions, and a text for each that differs."""
    found, count = [], 0
    with tempfile.TemporaryDirectory() as name:
        for folder in folders:
            names = messages(folder)
            if not names:
                sys.exit(f"{folder} has no messages")
            for host in HOSTS:
                sides = [describe(command, paths, host, folder, names, pathlib.Path(name), full)
                         for command, paths in (linux, windows)]
                count += len(sides[0])
                found += [f"host {host}, {folder.name}:\n{text}" for text in differences(*sides)]
    return count, found


def on_linux(build):
    return ([str(build / PROGRAM), str(build / "MimeEmailZQV.so")],
            lambda place: str(pathlib.Path(place).resolve()))


def on_windows(build, library):
    program = wine.path(build / f"{PROGRAM}.exe")
    return ["wine", program, wine.path(library)], wine.path


def self_test(build, folders):
    """Copies of a library with one letter changed: in a log line, in an exception's text, in a
    charset."""
    library = (build / "MimeEmailZQV.so").read_bytes()
    failures = []
    for old, new in ((b"parts count", b"partz count"), (b"parse empty text", b"parse empty texT"),
                     (b"ISO885915", b"ISO885995")):
        if old not in library:
            sys.exit(f"the library has no text {old}")
        with tempfile.TemporaryDirectory() as name:
            other = pathlib.Path(name) / "MimeEmailZQV.so"
            other.write_bytes(library.replace(old, new))
            command, paths = on_linux(build)
            _, found = compare((command, paths), ([command[0], str(other)], paths), folders, None)
        print(f"{new}: {len(found)} differences")
        if not found:
            failures.append(f"not seen: {new}")
    print("\n".join(failures) or "all was seen")
    return 1 if failures else 0


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("--full", metavar="NAME")
    parser.add_argument("--self-test", action="store_true")
    parser.add_argument("linux", type=pathlib.Path)
    parser.add_argument("rest", nargs="+", type=pathlib.Path)
    options = parser.parse_args()
    if options.self_test:
        return self_test(options.linux, options.rest)
    windows, library, *folders = options.rest
    with wine.server(windows / "wine"):
        count, found = compare(on_linux(options.linux), on_windows(windows, library), folders,
                               options.full)
    print("\n".join(found))
    print(f"Under Wine: {count} descriptions of messages, {len(found)} differ")
    return 1 if found or not count else 0


if __name__ == "__main__":
    sys.exit(main())
