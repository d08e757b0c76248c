"""Runs the generator of the help as a build does, and parses its output."""

import argparse
import html.parser
import os
import pathlib
import subprocess
import sys

TOP = pathlib.Path(__file__).resolve().parents[2]
MAKER = TOP / "help" / "make_help.py"
VERSION = "9.8.7"
VOID = {"meta", "input", "br", "link", "img", "hr", "wbr"}


def options(description):
    """The options that both tests have; other arguments are for unittest."""
    parser = argparse.ArgumentParser(description=description)
    parser.add_argument("--zqv", type=pathlib.Path, required=True, metavar="PATH",
                        help="the built zqv program")
    parser.add_argument("--shots", type=pathlib.Path, metavar="FOLDER",
                        help="where the browser test puts its pictures")
    return parser.parse_known_args()


def registered(zqv):
    """The list of the classes that the built library registers."""
    return subprocess.run([zqv, "classes"], check=True, stdout=subprocess.PIPE,
                          timeout=60).stdout.decode("utf-8")


def make(listed, *arguments, **environment):
    """Runs the generator. Returns exit code and standard error."""
    run = subprocess.run([sys.executable, "-B", MAKER, *arguments], input=listed.encode("utf-8"),
                         stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60, check=False,
                         env={**os.environ, **environment})
    return run.returncode, run.stderr.decode("utf-8")


def make_page(listed, path, *arguments, **environment):
    return make(listed, "--version", VERSION, "--notice", TOP / "THIRD_PARTY.md",
                "--html", path, *arguments, **environment)


def make_docs(zqv, *arguments):
    """One run of the generator of the documents: exit code and standard error."""
    run = subprocess.run([sys.executable, "-B", MAKER.parent / "make_docs.py", zqv, *arguments],
                         stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60, check=False)
    return run.returncode, run.stderr.decode("utf-8")


class Page(html.parser.HTMLParser):
    """A strict parser of a page: an element that is not closed, or closed twice, is a fault."""

    def __init__(self, text):
        super().__init__(convert_charrefs=True)
        self.faults, self.ids, self.links, self.loads = [], [], [], []
        self.headings, self.members, self.labels = [], [], []
        self.open_tags = []
        self.text = {}  # of each kind of element
        self.feed(text)
        self.close()
        self.faults += [f"<{tag}> is not closed" for tag in self.open_tags]

    def handle_starttag(self, tag, attrs):
        given = dict(attrs)
        if len(given) != len(attrs):
            self.faults.append(f"<{tag}> has an attribute twice")
        if tag not in VOID:
            self.open_tags.append(tag)
        self.note(tag, given)

    def note(self, tag, given):
        """Records what the tests need of an element."""
        if "id" in given:
            self.ids.append(given["id"])
        if tag == "a":
            self.links.append(given.get("href", ""))
        elif "href" in given:
            self.loads.append(given["href"])
        self.loads += [given[name] for name in ("src", "srcset", "data", "action") if name in given]
        if tag in ("h1", "h2", "h3", "h4", "h5", "h6"):
            self.headings.append(int(tag[1]))
        if "data-key" in given:
            self.members.append((given["data-class"], given["data-key"]))
        if tag == "label":
            self.labels.append(given.get("for"))

    def handle_endtag(self, tag):
        if tag in VOID or not self.open_tags or self.open_tags[-1] != tag:
            self.faults.append(f"</{tag}> closes nothing at line {self.getpos()[0]}")
        else:
            self.open_tags.pop()

    def handle_data(self, data):
        tag = self.open_tags[-1] if self.open_tags else ""
        self.text[tag] = self.text.get(tag, "") + data
