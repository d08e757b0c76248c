#!/usr/bin/env python3
"""Checks what the dynamic linker of macOS sees of a library.

  macho.py [--universal] LIBRARY [FOLDER...]   checks a file of one processor, or of both
  macho.py --self-test LIBRARY                 breaks each rule in a copy and requires a complaint

Checked are: one exported name; only the system's four libraries, at their paths; an identity with
the project's version and no search path; the oldest supported system; a signature with correct
hashes; operators new and delete that the process can replace; at most 1.5 MB; no mention of FOLDER.
"""

import argparse
import hashlib
import pathlib
import re
import struct
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
import planted

ENTRY_POINT = "_REALPluginMain"
IDENTITY = "@rpath/MimeEmailZQV.dylib"
LIBRARIES = {
    "/System/Library/Frameworks/CoreFoundation.framework/Versions/A/CoreFoundation",
    "/System/Library/Frameworks/Foundation.framework/Versions/C/Foundation",
    "/usr/lib/libSystem.B.dylib",
    "/usr/lib/libc++.1.dylib",
}
PROCESSORS = {0x01000007: "x86_64", 0x0100000C: "arm64"}
OLDEST = {"x86_64": (10, 13), "arm64": (11, 0)}
LARGEST = 1_500_000
PROJECT = pathlib.Path(__file__).parents[2] / "CMakeLists.txt"
VERSION = re.search(r"^project\(.* VERSION (\d+)\.(\d+)\.(\d+) ", PROJECT.read_text(), re.M)
BINDS_TO_WEAK = 0x10000  # the loader binds to a definition in the process if there is one

UNIVERSAL, THIN = 0xCAFEBABE, 0xFEEDFACF
DYNAMIC_LIBRARY = 6
SYMBOLS, LOAD, IDENTIFY, RPATH = 0x2, 0xC, 0xD, 0x8000001C
SIGNATURE, OLD_VERSION, NEW_VERSION = 0x1D, 0x24, 0x32
SIGNATURE_BLOB, CODE_DIRECTORY, AD_HOC, SHA256 = 0xFADE0CC0, 0xFADE0C02, 0x2, 2


def text_at(data, start):
    return data[start:data.index(b"\0", start)].decode("ascii", "replace")


class Slice:
    """The file for one processor."""

    def __init__(self, data):
        self.data = data
        magic, processor, _, self.type, count, _, self.flags, _ = struct.unpack_from("<8I", data)
        self.is_thin = magic == THIN
        self.processor = PROCESSORS.get(processor, hex(processor))
        self.commands = list(self._commands(count)) if self.is_thin else []

    def _commands(self, count):
        at = 32
        for _ in range(count):
            command, size = struct.unpack_from("<2I", self.data, at)
            yield command, at
            at += size

    def places(self, wanted):
        return [at for command, at in self.commands if command == wanted]

    def names(self, wanted):
        """The paths in load commands of the kind `wanted`."""
        return [text_at(self.data, at + struct.unpack_from("<I", self.data, at + 8)[0])
                for at in self.places(wanted)]

    def versions(self):
        """The versions in the library's identity."""
        numbers = [struct.unpack_from("<I", self.data, at + 16)[0] for at in self.places(IDENTIFY)]
        return [(number >> 16, number >> 8 & 0xFF, number & 0xFF) for number in numbers]

    def exported(self):
        names = []
        for at in self.places(SYMBOLS):
            symbols, count, strings, _ = struct.unpack_from("<4I", self.data, at + 8)
            for i in range(count):
                name, kind = struct.unpack_from("<IB", self.data, symbols + 16 * i)
                # No symbol for debuggers and no private one: external and defined.
                if kind & 0xF0 == 0 and kind & 0x01 and kind & 0x0E == 0x0E:
                    names.append(text_at(self.data, strings + name))
        return names

    def oldest(self):
        for at in self.places(NEW_VERSION):
            version = struct.unpack_from("<I", self.data, at + 12)[0]
            return version >> 16, version >> 8 & 0xFF
        for at in self.places(OLD_VERSION):
            version = struct.unpack_from("<I", self.data, at + 8)[0]
            return version >> 16, version >> 8 & 0xFF
        return None


def code_directory(data):
    """The code directory of a signature, which describes the hashes of the pages."""
    magic, _, count = struct.unpack_from(">3I", data)
    if magic != SIGNATURE_BLOB:
        return None
    for i in range(count):
        _, offset = struct.unpack_from(">2I", data, 12 + 8 * i)
        if struct.unpack_from(">I", data, offset)[0] == CODE_DIRECTORY:
            return data[offset:]
    return None


def signature_faults(part):
    """The faults of an ad-hoc signature."""
    places = part.places(SIGNATURE)
    if not places:
        return ["is not signed"]
    start, size = struct.unpack_from("<2I", part.data, places[0] + 8)
    directory = code_directory(part.data[start:start + size])
    if directory is None:
        return ["has no code directory in its signature"]
    flags, hashes, _, _, count, limit = struct.unpack_from(">6I", directory, 12)
    length, kind, _, page = struct.unpack_from("4B", directory, 36)
    if not flags & AD_HOC or kind != SHA256:
        return ["is signed in another way than ad hoc with SHA-256"]
    if limit != start:
        return ["has a signature that does not cover all before it"]
    faults = []
    for i in range(count):
        wanted = directory[hashes + i * length:hashes + (i + 1) * length]
        content = part.data[i << page:min(i + 1 << page, limit)]
        if hashlib.sha256(content).digest() != wanted:
            faults.append(f"has another hash of page {i} in its signature")
    return faults or ([] if count << page >= limit else ["has too few hashes in its signature"])


def slice_faults(part):
    """One text for each rule that the file for one processor breaks."""
    if not part.is_thin or part.type != DYNAMIC_LIBRARY:
        return ["is no dynamic library"]
    faults = []
    if part.exported() != [ENTRY_POINT]:
        faults.append(f"exports {part.exported()}")
    loaded = part.names(LOAD)
    if sorted(loaded) != sorted(LIBRARIES):
        faults.append(f"loads {sorted(set(loaded) ^ LIBRARIES)} besides or not")
    if part.names(IDENTIFY) != [IDENTITY]:
        faults.append(f"calls itself {part.names(IDENTIFY)}")
    if part.versions() != [tuple(int(number) for number in VERSION.groups())]:
        faults.append(f"has the version {part.versions()}")
    if not part.flags & BINDS_TO_WEAK:
        faults.append("does not take the process's operators new and delete")
    if part.places(RPATH):
        faults.append("has a search path")
    if part.oldest() != OLDEST.get(part.processor):
        faults.append(f"runs on {part.oldest()} and later")
    return faults + signature_faults(part)


def split(data):
    """The slices of a universal file; nothing for any other file."""
    magic, count = struct.unpack_from(">2I", data)
    if magic != UNIVERSAL:
        return []
    parts = [struct.unpack_from(">5I", data, 8 + 20 * i) for i in range(count)]
    return [Slice(data[offset:offset + size]) for _, _, offset, size, _ in parts]


def faults_of(data, is_universal, folders):
    parts = split(data) if is_universal else [Slice(data)]
    faults = [f"{part.processor}: {fault}" for part in parts for fault in slice_faults(part)]
    processors = sorted(part.processor for part in parts)
    if is_universal and processors != sorted(OLDEST):
        faults.append(f"is for {processors}")
    if max([len(part.data) for part in parts], default=0) > LARGEST:
        faults.append(f"is larger than {LARGEST:,} bytes")
    return faults + [f"names the folder {folder}" for folder in folders if folder.encode() in data]


def self_test(data):
    """Breaks each rule by changing bytes of a copy."""
    part = Slice(data)
    at = {command: place for command, place in part.commands}
    def changed(place, new):
        return data[:place] + new + data[place + len(new):]

    other = data.index(b"/usr/lib/libc++.1.dylib")
    plants = {
        "is no dynamic library": changed(12, b"\x08"),
        "exports": data.replace(b"_REALPluginMain\0", b"_REALPluginMaim\0"),
        "besides or not": changed(other, b"/usr/lib/libc--"),
        "calls itself": data.replace(b"@rpath/MimeEmailZQV", b"@rpath/MimeEmailXYZ"),
        "has a search path": changed(at[IDENTIFY], struct.pack("<I", RPATH)),
        "is larger than": data + bytes(LARGEST),
        "names the folder": data + b"/somewhere/project",
        "and later": changed(at.get(NEW_VERSION, at.get(OLD_VERSION)) + 8,
                             struct.pack("<2I", 0x000F0000, 0x000F0000)),
    }
    plants["another hash of page"] = changed(0x8000, b"\xFF\xFE")
    plants["is not signed"] = changed(at[SIGNATURE], struct.pack("<I", 0x26))
    plants["has the version"] = changed(at[IDENTIFY] + 16, struct.pack("<I", 0))
    plants["operators new and delete"] = changed(
        24, struct.pack("<I", part.flags & ~BINDS_TO_WEAK))
    folders = ["/somewhere/project"]
    found = {wanted: faults_of(copy, False, folders) for wanted, copy in plants.items()}
    return planted.report_copies(found, faults_of(data, False, folders))


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("--universal", action="store_true")
    parser.add_argument("--self-test", action="store_true")
    parser.add_argument("library", type=pathlib.Path)
    parser.add_argument("folders", nargs="*")
    options = parser.parse_args()
    data = options.library.read_bytes()
    if options.self_test:
        return self_test(data)
    faults = faults_of(data, options.universal, options.folders)
    print("\n".join(f"{options.library}: {fault}" for fault in faults) or "as it should be")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
