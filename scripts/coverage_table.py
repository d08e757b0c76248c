#!/usr/bin/env python3
"""Prints the share of lines that ran for each of the library's folders, and the lines that did not
run.

  coverage_table.py REPORT   REPORT is the JSON file of gcovr

The exit status is 1 when a folder is below LEAST per cent, or has no lines.
"""

import collections
import json
import pathlib
import sys

FOLDERS = ["base", "text", "mime", "email", "host", "objects", "plugin"]
LEAST = 95


def read(path):
    """Folder -> file -> line number -> whether the line ran."""
    folders = {folder: collections.defaultdict(dict) for folder in FOLDERS}
    for file in json.loads(path.read_text("utf-8"))["files"]:
        folder = file["file"].split("/")[0]
        if folder not in folders:
            continue
        lines = folders[folder][file["file"]]
        for line in file["lines"]:
            if line.get("gcovr/noncode"):
                continue
            number = line["line_number"]
            lines[number] = lines.get(number, False) or line["count"] > 0
    return folders


def main():
    folders = read(pathlib.Path(sys.argv[1]))
    is_good = True
    print("| Folder | Lines | Ran | Share |\n|---|--:|--:|--:|")
    for folder, files in folders.items():
        ran = sum(sum(lines.values()) for lines in files.values())
        lines = sum(len(lines) for lines in files.values())
        share = 100 * ran / lines if lines else 0
        is_good = is_good and share >= LEAST
        print(f"| `{folder}/` | {lines} | {ran} | {share:.1f} % |")
    print()
    for files in folders.values():
        for name, lines in sorted(files.items()):
            for number in sorted(number for number, ran in lines.items() if not ran):
                text = pathlib.Path(name).read_text("utf-8").splitlines()[number - 1].strip()
                print(f"{name}:{number}: {text}")
    return 0 if is_good else 1


if __name__ == "__main__":
    sys.exit(main())
