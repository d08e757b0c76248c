#!/usr/bin/env python3
"""Makes the help: one HTML page. make_docs.py makes the same as Markdown, for the repository.

  zqv classes | make_help.py --version 1.1.0 --notice THIRD_PARTY.md --html index.html

The members come from what `zqv classes` prints, the texts from reference.toml. A member without a
text, a text without a member and a link that leads nowhere are errors. The same input gives the
same bytes.
"""

import argparse
import pathlib
import sys

import listing
import page
import reference

TEXTS = pathlib.Path(__file__).parent / "reference.toml"


def arguments():
    parser = argparse.ArgumentParser(description="Makes the built-in help.")
    parser.add_argument("--classes", type=pathlib.Path, metavar="FILE",
                        help="what zqv classes printed; standard input if not given")
    parser.add_argument("--texts", type=pathlib.Path, metavar="FILE", default=TEXTS,
                        help="the texts; reference.toml beside this program if not given")
    parser.add_argument("--version", required=True, help="the version that the page shows")
    parser.add_argument("--notice", type=pathlib.Path, metavar="FILE", required=True,
                        help="the third-party notice at the end of the page")
    parser.add_argument("--html", type=pathlib.Path, metavar="FILE", required=True,
                        help="the page to write")
    return parser.parse_args()


def make_book(listed, texts_path, version=""):
    """The texts, once they fit the registered classes. listed: what `zqv classes` printed."""
    classes = listing.read(listed)
    texts = reference.load(texts_path)
    reference.check(texts, classes)
    return page.Book(classes, texts, version)


def make(given):
    listed = given.classes.read_text("utf-8") if given.classes else sys.stdin.read()
    book = make_book(listed, given.texts, given.version)
    made = page.Page(book, given.notice.read_text("utf-8")).write()
    given.html.write_bytes(made.encode("utf-8"))


def finish(program, work):
    """The exit code of a program that does this work; what keeps it from that is printed."""
    try:
        work()
    except (listing.Problem, OSError) as error:
        print(f"{program}: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(finish("make_help", lambda: make(arguments())))
