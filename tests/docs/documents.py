"""The documents of the project, and their Markdown."""

import html
import pathlib
import re
import subprocess

FENCE = re.compile(r"^\s*(```+|~~~+)\s*([^\s`]*)[^`]*$")
CODE_SPAN = re.compile(r"(`+)(.+?)\1", re.DOTALL)
COMMENT = re.compile(r"<!--.*?-->", re.DOTALL)
HEADING = re.compile(r"^(#{1,6})\s+(.*?)\s*#*$")
IMAGE = re.compile(r"!\[([^\]]*)\]\(([^()\s]+)\)")
LINK = re.compile(r"\[([^\]]*)\]\(([^()\s]+)\)")
DEFINED_LINK = re.compile(r"^\s*\[[^\]]+\]:\s+(\S+)", re.MULTILINE)
TAG = re.compile(r"<[^<>]+>")
NAMED_PLACE = re.compile(r"""<a\s+(?:id|name)=["']([^"']+)["']""")


def project_files(top):
    """The paths of the project's files: those that git would add, or without git all except build
    results."""
    run = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "-z"],
                         cwd=top, capture_output=True, encoding="utf-8", check=False)
    if run.returncode == 0:
        names = run.stdout.split("\0")
    else:
        names = [path.relative_to(top).as_posix() for path in top.rglob("*")
                 if not {".git", "build", "dist"} & set(path.relative_to(top).parts)]
    return sorted(name for name in names if name and (top / name).is_file())


def documents(top):
    """The paths of all Markdown files."""
    return [name for name in project_files(top) if name.endswith(".md")]


def read(top, name):
    return (pathlib.Path(top) / name).read_text("utf-8")


class Block:
    """The lines of code between two fences. `line` is the line number of the first one."""

    def __init__(self, language, line):
        self.language = language
        self.line = line
        self.lines = []


def split(text):
    """The lines outside of fences, with code as empty lines, and the blocks of code."""
    prose, blocks, fence = [], [], None
    for number, line in enumerate(text.splitlines(), 1):
        match = FENCE.match(line)
        if fence is None and match:
            fence = match[1]
            blocks.append(Block(match[2], number + 1))
        elif fence is not None and line.strip() == fence:
            fence = None
        elif fence is not None:
            blocks[-1].lines.append(line)
        else:
            prose.append(line)
            continue
        prose.append("")
    return prose, blocks


def blank(match):
    """The replacement for removed text: its line breaks, so that later lines keep their numbers."""
    return " " + "\n" * match[0].count("\n")


def without_code(prose):
    """The text of the lines without code (spans and indented blocks) and without comments."""
    kept, before, in_code = [], "", False
    for line in prose:
        in_code = line.startswith("    ") and (in_code or not before.strip())
        kept.append("" if in_code else line)
        before = line
    return COMMENT.sub(blank, CODE_SPAN.sub(blank, "\n".join(kept)))


def code_spans(prose):
    """(line number, text) of each span of code."""
    text = "\n".join(prose)
    return [(text.count("\n", 0, match.start()) + 1, match[2].strip())
            for match in CODE_SPAN.finditer(text)]


def links(prose):
    """(line number, target) of each link and image, in order."""
    text = without_code(prose)
    # With images removed, a link around an image is found like any other.
    places = [(match.start(), match[2]) for match in IMAGE.finditer(text)]
    text = IMAGE.sub(lambda match: " " * len(match[0]), text)
    places += [(match.start(), match[2]) for match in LINK.finditer(text)]
    places += [(match.start(1), match[1]) for match in DEFINED_LINK.finditer(text)]
    return [(text.count("\n", 0, place) + 1, target) for place, target in sorted(places)]


def slug(heading):
    """The anchor of a heading: lower case, dashes for blanks, no punctuation and no markup."""
    text = LINK.sub(r"\1", IMAGE.sub("", heading)).replace("`", "").replace("*", "")
    text = html.unescape(TAG.sub("", text))
    return re.sub(r"[^\w\- ]", "", text.lower()).replace(" ", "-")


def anchors(text):
    """All anchors of a document; equal headings are numbered."""
    prose, _ = split(text)
    found, seen = set(NAMED_PLACE.findall("\n".join(prose))), {}
    for line in prose:
        match = HEADING.match(line)
        if not match:
            continue
        name = slug(match[2])
        count = seen.get(name, 0)
        seen[name] = count + 1
        found.add(f"{name}-{count}" if count else name)
    return found
