#!/usr/bin/env python3
"""Makes the plug-in's package: a zip file whose bytes depend on its contents only.

  make_package.py OUTPUT NAME=FILE...   NAME is the path inside, below the plug-in's folder
"""

import pathlib
import sys
import zipfile

FOLDER = "MimeEmailZQV"
# The earliest time in the format. The times of the files mean nothing to those who install them.
TIME = (1980, 1, 1, 0, 0, 0)


def add(package, name, content):
    entry = zipfile.ZipInfo(f"{FOLDER}/{name}", TIME)
    entry.create_system = 3  # 3 means Unix, for permissions
    entry.external_attr = 0o100644 << 16
    entry.compress_type = zipfile.ZIP_DEFLATED
    package.writestr(entry, content, compresslevel=9)


def main():
    if len(sys.argv) < 3 or not all("=" in argument for argument in sys.argv[2:]):
        sys.exit(__doc__)
    files = dict(argument.split("=", 1) for argument in sys.argv[2:])
    with zipfile.ZipFile(sys.argv[1], "w") as package:
        for name in sorted(files):
            add(package, name, pathlib.Path(files[name]).read_bytes())


if __name__ == "__main__":
    main()
