"""Packs files as mail programs do: uuencode, yEnc and TNEF."""

import binascii
import struct


def uuencoded(data, name=b"a.bin"):
    """A uuencoded file."""
    lines = b"".join(binascii.b2a_uu(data[i:i + 45]) for i in range(0, len(data), 45))
    return b"begin 644 " + name + b"\n" + lines + b"`\nend\n"


def yenc(data, name=b"a.bin", size=None):
    """A file in yEnc."""
    code = bytearray()
    for byte in data:
        byte = (byte + 42) % 256
        code += bytes([61, (byte + 64) % 256]) if byte in (0, 10, 13, 61) else bytes([byte])
    lines = b"\n".join(bytes(code[i:i + 128]) for i in range(0, len(code), 128))
    size = len(data) if size is None else size
    return (b"=ybegin line=128 size=%d name=" % size) + name + b"\n" + lines + b"\n=yend size=%d\n" % size


def attribute(level, number, data):
    """One attribute of TNEF."""
    return struct.pack("<BII", level, number, len(data)) + data + struct.pack("<H", sum(data) % 65536)


def tnef(*files):
    """TNEF data with the files (name, data). Each has a short name, and its complete name as a
    property."""
    parts = struct.pack("<IH", 0x223E9F78, 1) + attribute(1, 0x00069007, struct.pack("<II", 1252, 0))
    for name, data in files:
        wide = (name + "\0").encode("utf-16-le")
        padding = b"\0" * (-len(wide) % 4)
        named = (struct.pack("<HH", 3, 0x8001) + bytes(16) + struct.pack("<III", 0, 7, 99))
        properties = (struct.pack("<I", 2) + named +
                      struct.pack("<HHII", 0x1F, 0x3707, 1, len(wide)) + wide + padding)
        parts += (attribute(2, 0x00069002, bytes(14)) + attribute(2, 0x00018010, b"SHORT~1.BIN\0") +
                  attribute(2, 0x0006800F, data) + attribute(2, 0x00069005, properties))
    return parts
