#!/usr/bin/env python3
"""Checks that links and paths in the documents lead somewhere.

  links.py FOLDER       lists the broken links and paths; fails when there is one
  links.py --self-test  plants each fault in a scratch project and requires that it is found

A link within the project must name an existing file or folder, and an existing heading. README.md
must link to every document of docs/, and some document to every other file of docs/. A path in a
span of code that begins with a folder of the project must name a file, `mime/parser.cc`, or several
files: `tests/unit/<folder>/`, or `host/string_bytes` for all files of that name.
"""

import fnmatch
import pathlib
import posixpath
import re
import sys

import documents

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
import planted

ELSEWHERE = re.compile(r"[a-z][a-z0-9+.-]*:", re.IGNORECASE)
PATH = re.compile(r"[\w.<>*-]+(?:/[\w.<>*-]+)+/?")
PLACEHOLDER = re.compile(r"<[^<>]*>")
FEWEST_LINKS = 3  # a project with fewer links was not read correctly


class Project:
    """The files and folders of the project."""

    def __init__(self, top):
        self.top = top
        self.files = set(documents.project_files(top))
        self.folders = {parent.as_posix() for name in self.files
                        for parent in pathlib.PurePosixPath(name).parents}
        self.tops = {name.split("/")[0] for name in self.files if "/" in name}
        self.anchors = {}

    def has(self, path):
        return path in self.files or path in self.folders

    def anchors_of(self, path):
        if path not in self.anchors:
            self.anchors[path] = documents.anchors(documents.read(self.top, path))
        return self.anchors[path]

    def has_like(self, path):
        """Whether a file or folder matches. The path of a file may omit the suffix."""
        pattern = PLACEHOLDER.sub("*", path).rstrip("/")
        return any(fnmatch.fnmatchcase(name, pattern) or fnmatch.fnmatchcase(name, pattern + ".*")
                   for name in self.files | self.folders)


def check_link(project, document, target):
    """The fault of one link, or nothing."""
    path, _, anchor = target.partition("#")
    if path.startswith("/"):
        return "leads out of the project"
    where = posixpath.normpath(posixpath.join(posixpath.dirname(document), path))
    if path == "":
        where = document
    if where.startswith(".."):
        return "leads out of the project"
    if not project.has(where):
        return "there is no such file"
    if anchor and (not where.endswith(".md") or anchor not in project.anchors_of(where)):
        return "there is no such heading"
    return None


def check_linked(project, linked):
    """Files of docs/ to which nothing links. `linked` has the targets of links by document."""
    faults = []
    for name in sorted(project.files):
        if posixpath.dirname(name) != "docs":
            continue
        if name.endswith(".md") and name not in linked.get("README.md", ()):
            faults.append(f"README.md: no link to {name}")
        elif not any(name in targets for targets in linked.values()):
            faults.append(f"{name}: no document links to it")
    return faults


def check_paths(project, document, prose):
    faults = []
    for line, text in documents.code_spans(prose):
        named = PATH.fullmatch(text) and text.split("/")[0] in project.tops
        if named and not project.has_like(text):
            faults.append(f"{document}:{line}: {text}: there is no such file")
    return faults


def check(top):
    """All faults of the project at `top`, one text each."""
    project = Project(top)
    faults, linked, count = [], {}, 0
    for document in documents.documents(top):
        prose, _ = documents.split(documents.read(top, document))
        faults += check_paths(project, document, prose)
        folder = posixpath.dirname(document)
        for line, target in documents.links(prose):
            if ELSEWHERE.match(target):
                continue
            count += 1
            fault = check_link(project, document, target)
            if fault:
                faults.append(f"{document}:{line}: {target}: {fault}")
            path = posixpath.normpath(posixpath.join(folder, target.partition("#")[0]))
            linked.setdefault(document, set()).add(path)
    if count < FEWEST_LINKS:
        faults.append(f"too few links were found: {count}")
    return faults + check_linked(project, linked)


GOOD = {
    "README.md": "# One\n[two](docs/two.md), [its end](docs/two.md#the-end-2-of-it),\n"
                 "[here](#one), [folder](lib/), [far](https://example.com/x#y),\n"
                 "`lib/a.c`, `lib/<any>.c`, `lib/a`, `lib/*`, `other/b.c`, `lib/a.c x`\n"
                 "```sh\n[no](link.md)\n```\n\n    [no](link.md)\n",
    "docs/two.md": "# Same\n# Same\n## The `end` (2) of *it*\n![a picture](two.svg) `[no](link)`\n"
                   "[back](../README.md) [again](#same-1) [split\nin two](../lib/a.c)\n"
                   "<a id='Named.place'></a> [named](#Named.place)\n[defined][x]\n"
                   "\n[x]: two.svg\n",
    "docs/two.svg": "<svg/>",
    "lib/a.c": "",
}


def plus(name, text):
    """The good project with more text in one file."""
    return {name: GOOD[name] + text + "\n"}


PLANTED = [
    ({}, ""),
    (plus("README.md", "[x](docs/three.md)"), "docs/three.md: there is no such file"),
    (plus("README.md", "[x\ny](docs/three.md)"), "README.md:10: docs/three.md: there is no such"),
    (plus("README.md", "[x](Lib/a.c)"), "Lib/a.c: there is no such file"),
    (plus("README.md", "![x](docs/three.svg)"), "docs/three.svg: there is no such file"),
    (plus("README.md", "[![x](docs/two.svg)](three)"), "three: there is no such file"),
    (plus("README.md", "[![x](docs/three.svg)](lib)"), "docs/three.svg: there is no such file"),
    (plus("README.md", "\n[x]: three"), "three: there is no such file"),
    (plus("README.md", "[x](docs/two.md#end)"), "docs/two.md#end: there is no such heading"),
    (plus("README.md", "[x](lib/a.c#L1)"), "lib/a.c#L1: there is no such heading"),
    (plus("README.md", "[x](#two)"), "#two: there is no such heading"),
    (plus("README.md", "[x](#One)"), "#One: there is no such heading"),
    (plus("docs/two.md", "[x](#same-2)"), "#same-2: there is no such heading"),
    (plus("docs/two.md", "[x](#named.place)"), "#named.place: there is no such heading"),
    (plus("docs/two.md", "[x](../../x)"), "../../x: leads out of the project"),
    (plus("docs/two.md", "[x](/usr/x)"), "/usr/x: leads out of the project"),
    (plus("docs/two.md", "`lib/b.c`"), "lib/b.c: there is no such file"),
    (plus("docs/two.md", "`lib/<any>.h`"), "lib/<any>.h: there is no such file"),
    (plus("docs/two.md", "`lib/b`"), "lib/b: there is no such file"),
    ({"docs/three.md": "# Three\n"}, "README.md: no link to docs/three.md"),
    ({"docs/three.svg": "<svg/>"}, "docs/three.svg: no document links to it"),
    ({"README.md": "[two](docs/two.md)\n", "docs/two.md": "# Two\n"}, "too few links were found"),
]


if __name__ == "__main__":
    sys.exit(planted.main(check, GOOD, PLANTED))
