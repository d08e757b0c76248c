#!/usr/bin/env python3
"""Takes the time at which it was linked out of a Windows file, in place: the same input of the
linker then gives the same bytes.

  forget_link_time.py FILE

For linkers without a switch for it. The file's checksum, which that time is part of, is cleared:
only drivers are asked for one.
"""

import pathlib
import struct
import sys

HEADER_AT = 0x3C  # where the place of the PE header stands
TIME, CHECKSUM = 8, 24 + 64  # from there


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
