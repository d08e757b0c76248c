#!/usr/bin/env python3
"""Checks what the loader of Windows sees of a library.

  pe.py LIBRARY [FOLDER...]    checks a file as it is shipped
  pe.py --self-test LIBRARY    breaks each rule in a copy and requires a complaint

Checked are: one exported name; functions of KERNEL32.dll and the C runtime only; a known processor;
random addresses over the whole address range, and no data that can be executed; no time of linking;
at most 1.5 MB; no mention of FOLDER; on x86-64 no move of 32 bytes that requires alignment, because
some compilers place such values at addresses that are not aligned.
"""

import argparse
import pathlib
import struct
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
import planted

ENTRY_POINT = "REALPluginMain"
PROCESSORS = {0x8664: "x86-64", 0xAA64: "arm64"}
LIBRARIES = {"kernel32.dll", "msvcrt.dll"}
UNIVERSAL_RUNTIME = "api-ms-win-crt-"  # the beginning of the names of its parts
LARGEST = 1_500_000
IS_LIBRARY = 0x2000
FLAGS = {0x20: "high-entropy addresses", 0x40: "movable addresses", 0x100: "data that is not run"}
FIRST_TIME = 315532800  # 1980-01-01, which strip writes in a package
EXPORTS, IMPORTS = 0, 1
ALIGNED_MOVES = ("vmovdqa", "vmovaps", "vmovapd", "vmovntdq", "vmovntps", "vmovntpd")


class File:
    def __init__(self, data):
        self.data = data
        self.header = self.number("<I", 0x3C)
        self.is_file = data[self.header:self.header + 4] == b"PE\0\0"
        if not self.is_file:
            return
        self.processor = PROCESSORS.get(self.number("<H", self.header + 4))
        self.time = self.number("<I", self.header + 8)
        self.kind = self.number("<H", self.header + 22)
        self.optional = self.header + 24
        self.flags = self.number("<H", self.optional + 70)
        first = self.optional + self.number("<H", self.header + 20)
        self.sections = [struct.unpack_from("<4I", data, first + 40 * i + 8)
                         for i in range(self.number("<H", self.header + 6))]

    def number(self, form, at):
        return struct.unpack_from(form, self.data, at)[0]

    def place(self, address):
        """The offset in the file of the bytes at an address in memory."""
        for size, start, stored, offset in self.sections:
            if start <= address < start + max(size, stored):
                return address - start + offset
        raise ValueError(f"no section has the address {address:#x}")

    def text(self, address):
        at = self.place(address)
        return self.data[at:self.data.index(b"\0", at)].decode("ascii", "replace")

    def directory(self, which):
        return self.number("<I", self.optional + 112 + 8 * which)

    def exported(self):
        if self.directory(EXPORTS) == 0:
            return []
        table = self.place(self.directory(EXPORTS))
        functions, count, _, names = struct.unpack_from("<4I", self.data, table + 20)
        listed = [self.text(self.number("<I", self.place(names) + 4 * i)) for i in range(count)]
        return listed + ["a function without a name"] * (functions - count)

    def libraries(self):
        if self.directory(IMPORTS) == 0:
            return
        at = self.place(self.directory(IMPORTS))
        while self.number("<I", at + 12):
            yield self.text(self.number("<I", at + 12))
            at += 20

    def imported(self):
        """The names of the libraries from which functions are imported."""
        at = self.place(self.directory(IMPORTS))
        while self.number("<I", at + 12):
            row = self.place(self.number("<I", at) or self.number("<I", at + 16))
            while address := self.number("<Q", row):
                yield f"number {address & 0xFFFF}" if address >> 63 else self.text(address + 2)
                row += 8
            at += 20


def aligned_moves(data):
    """The instructions that move 32 bytes between a register and memory that must be aligned."""
    with tempfile.NamedTemporaryFile(suffix=".dll") as file:
        file.write(data)
        file.flush()
        listing = subprocess.run(["objdump", "-d", "--no-show-raw-insn", file.name],
                                 check=True, capture_output=True, text=True).stdout
    instructions = [line.split("\t", 1)[1].strip() for line in listing.splitlines() if "\t" in line]
    return [text for text in instructions
            if text.startswith(ALIGNED_MOVES) and "%ymm" in text and "(" in text]


def faults_of(data, folders):
    """One text for each rule that the file breaks."""
    file = File(data)
    if not file.is_file or not file.kind & IS_LIBRARY:
        return ["is no dynamic library"]
    faults = []
    if file.processor is None:
        faults.append("is for an unknown processor")
    if file.exported() != [ENTRY_POINT]:
        faults.append(f"exports {file.exported()}")
    strange = [name for name in file.libraries()
               if name.lower() not in LIBRARIES and not name.startswith(UNIVERSAL_RUNTIME)]
    if strange:
        faults.append(f"needs {strange}")
    faults += [f"is without {what}" for bit, what in FLAGS.items() if not file.flags & bit]
    if file.time not in (0, FIRST_TIME):
        faults.append("says when it was linked")
    if len(data) > LARGEST:
        faults.append(f"is larger than {LARGEST:,} bytes")
    faults += [f"names the folder {folder}" for folder in folders if folder.encode() in data]
    if file.processor == "x86-64":
        faults += [f"moves 32 bytes that must be aligned: {move}" for move in aligned_moves(data)]
    return faults


def moving_aligned(data):
    """A copy of the file with a move of 32 bytes that requires alignment in its code."""
    file = File(data)
    entry = file.place(file.number("<I", file.optional + 16))
    return data[:entry] + b"\xC5\xFD\x6F\x04\x24" + data[entry + 5:]  # vmovdqa (%rsp),%ymm0


def self_test(data):
    file = File(data)

    def changed(at, new):
        return data[:at] + new + data[at + len(new):]

    library = data.index(b"KERNEL32.dll\0")
    plants = {
        "is no dynamic library": changed(file.header + 22, struct.pack("<H", 0x0202)),
        "unknown processor": changed(file.header + 4, struct.pack("<H", 0x01C4)),
        "exports": data.replace(b"REALPluginMain\0", b"REALPluginMaim\0"),
        "needs": changed(library, b"KERNEL33"),
        "without high-entropy": changed(file.optional + 70, struct.pack("<H", 0x140)),
        "without movable": changed(file.optional + 70, struct.pack("<H", 0x120)),
        "without data that is not run": changed(file.optional + 70, struct.pack("<H", 0x60)),
        "says when": changed(file.header + 8, struct.pack("<I", 1_700_000_000)),
        "is larger than": data + bytes(LARGEST),
        "names the folder": data + b"/somewhere/project",
    }
    if file.processor == "x86-64":
        plants["must be aligned"] = moving_aligned(data)
    folders = ["/somewhere/project"]
    found = {wanted: faults_of(copy, folders) for wanted, copy in plants.items()}
    return planted.report_copies(found, faults_of(data, folders))


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("--self-test", action="store_true")
    parser.add_argument("library", type=pathlib.Path)
    parser.add_argument("folders", nargs="*")
    options = parser.parse_args()
    data = options.library.read_bytes()
    if options.self_test:
        return self_test(data)
    faults = faults_of(data, options.folders)
    print("\n".join(f"{options.library}: {fault}" for fault in faults) or "as it should be")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
