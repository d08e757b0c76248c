#!/usr/bin/env python3
"""Removes the time of linking from a Windows file, in place, so that equal input of the linker
gives equal bytes.

  forget_link_time.py FILE

For linkers without an option for this. The file's checksum, which includes that time, is cleared;
only drivers need a checksum.
"""

import pathlib
import struct
import sys

HEADER_AT = 0x3C  # the offset of the PE header is stored here
TIME, CHECKSUM = 8, 24 + 64  # offsets from the PE header


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    path = pathlib.Path(sys.argv[1])
    data = bytearray(path.read_bytes())
    header = struct.unpack_from("<I", data, HEADER_AT)[0]
    if data[header:header + 4] != b"PE\0\0":
        sys.exit(f"{path} is no Windows file")
    for place in (TIME, CHECKSUM):
        struct.pack_into("<I", data, header + place, 0)
    path.write_bytes(data)


if __name__ == "__main__":
    main()
