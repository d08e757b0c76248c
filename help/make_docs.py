#!/usr/bin/env python3
"""Writes the documents that follow from the registered classes: docs/reference.md, docs/schema.json.

  help/make_docs.py build/release/zqv            writes both
  help/make_docs.py --check build/release/zqv    fails when one of them is out of date

The classes come from the program, the texts from reference.toml, what the schema says beside the
classes from schema_template.json.
"""

import argparse
import json
import pathlib
import subprocess
import sys

import json_schema
import listing
import make_help
import page
import reference_markdown

HERE = pathlib.Path(__file__).parent
COMMAND = "python3 help/make_docs.py build/release/zqv"


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("zqv", type=pathlib.Path, metavar="ZQV", help="the built program")
    parser.add_argument("--check", action="store_true",
                        help="write nothing; fail when a document is not what would be written")
    parser.add_argument("--folder", type=pathlib.Path, default=HERE.parent / "docs",
                        help="where the documents are; docs if not given")
    parser.add_argument("--texts", type=pathlib.Path, metavar="FILE", default=make_help.TEXTS,
                        help="the texts; reference.toml beside this program if not given")
    return parser.parse_args()


def printed(*command):
    """What the program prints."""
    run = subprocess.run(command, stdout=subprocess.PIPE, check=False)
    if run.returncode != 0:
        raise listing.Problem(f"{' '.join(map(str, command))} ended with {run.returncode}")
    return run.stdout.decode("utf-8")


def documents(given):
    """Each document's name and text."""
    book = make_help.make_book(printed(given.zqv, "classes"), given.texts)
    page.Page(book, "Copyright").write()  # finds links that lead nowhere
    classes = json.loads(printed(given.zqv, "classes", "--json"))["classes"]
    template = (HERE / "schema_template.json").read_text("utf-8")
    return {"reference.md": reference_markdown.write(book),
            "schema.json": json_schema.write(template, classes, book.texts)}


def make(given):
    stale = []
    for name, text in documents(given).items():
        path = given.folder / name
        if not given.check:
            path.write_bytes(text.encode("utf-8"))
        elif not path.is_file() or path.read_bytes() != text.encode("utf-8"):
            stale.append(f"docs/{name}")
    if stale:
        raise listing.Problem(f"out of date: {', '.join(stale)}. Write them by: {COMMAND}")


if __name__ == "__main__":
    sys.exit(make_help.finish("make_docs", lambda: make(arguments())))
