#!/usr/bin/env python3
"""Makes the help: one HTML page, and the same as Markdown for reading in the repository.

  zqv classes | make_help.py --version 1.1.0 --notice THIRD_PARTY.md --html index.html
  make_help.py --classes FILE --markdown docs/reference.md
  make_help.py --classes FILE --check-markdown docs/reference.md

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
import reference_markdown

TEXTS = pathlib.Path(__file__).parent / "reference.toml"


def arguments():
    parser = argparse.ArgumentParser(description="Makes the built-in help.")
    parser.add_argument("--classes", type=pathlib.Path, metavar="FILE",
                        help="what zqv classes printed; standard input if not given")
    parser.add_argument("--texts", type=pathlib.Path, metavar="FILE", default=TEXTS,
                        help="the texts; reference.toml beside this program if not given")
    parser.add_argument("--version", default="", help="the version that the page shows")
    parser.add_argument("--notice", type=pathlib.Path, metavar="FILE",
                        help="the third-party notice at the end of the page")
    parser.add_argument("--html", type=pathlib.Path, metavar="FILE", help="the page to write")
    parser.add_argument("--markdown", type=pathlib.Path, metavar="FILE",
                        help="the Markdown file to write")
    parser.add_argument("--check-markdown", type=pathlib.Path, metavar="FILE",
                        help="fail when this file is not what --markdown would write")
    given = parser.parse_args()
    if given.html and not (given.version and given.notice):
        parser.error("--html needs --version and --notice")
    if not (given.html or given.markdown or given.check_markdown):
        parser.error("nothing to do: give --html, --markdown or --check-markdown")
    return given


def make_book(given):
    """The texts, once they fit the registered classes."""
    listed = given.classes.read_text("utf-8") if given.classes else sys.stdin.read()
    classes = listing.read(listed)
    texts = reference.load(given.texts)
    reference.check(texts, classes)
    return page.Book(classes, texts, given.version)


def make(given):
    book = make_book(given)
    # Made in any case: it finds links that lead nowhere.
    notice = given.notice.read_text("utf-8") if given.notice else "Copyright"
    made = page.Page(book, notice).write()
    markdown = reference_markdown.write(book)
    if given.html:
        save(given.html, made)
    if given.markdown:
        save(given.markdown, markdown)
    if given.check_markdown and given.check_markdown.read_bytes() != markdown.encode("utf-8"):
        raise listing.Problem(f"{given.check_markdown.name} is not up to date: "
                              "make it again with --markdown")


def save(path, text):
    path.write_bytes(text.encode("utf-8"))


def main():
    try:
        make(arguments())
    except (listing.Problem, OSError) as error:
        print(f"make_help: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
