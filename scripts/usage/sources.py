"""Files of code: projects' classes, and documents with blocks of code."""

import dataclasses
import pathlib
import re

from usage.declarations import SCOPE_WORDS, declaration_of, parse_property, property_of
from usage.lines import Cursor, Line, code_lines, tokenize
from usage.model import Class, Member, Misunderstood, Type


@dataclasses.dataclass
class Source:
    """A file of code: the class or module that it is, and the lines of its methods."""
    path: pathlib.Path
    itself: Class
    bodies: list
    is_document: bool = False


def read_document(path, report):
    """A Markdown file: each ```vb block is a body, its functions and properties are members."""
    source = Source(path, Class(str(path), "", "project"), [], True)
    block, opened = None, 0
    for number, text in enumerate(path.read_text("utf-8").splitlines(), 1):
        if block is None and re.match(r"\s*```\s*vb\s*$", text):
            block, opened = [], number
        elif block is not None and re.match(r"\s*```\s*$", text):
            source.bodies.append(code_lines(str(path), block))
            block = None
        elif block is not None:
            block.append((number, text))
    if block is not None:
        report.fault(Line(str(path), opened, ()), "this block of code has no end")
    collect_members(source, report)
    return source


def collect_members(source, report):
    for line in (line for body in source.bodies for line in body):
        try:
            member = declaration_of(line) or property_of(line)
        except Misunderstood as error:
            report.fault(line, f"not understood: {error}")
            continue
        if member:
            source.itself.add(member)


BODY_TAGS = {"Method", "Event", "Getter", "Setter"}


def read_code(path, report):
    """A .xojo_code file."""
    source = Source(path, Class(path.stem, "", "project"), [])
    tag, held = "", []
    for number, text in enumerate(path.read_text("utf-8").splitlines(), 1):
        match = re.match(r"\s*#tag (End)?(\w+)(.*)", text)
        if match and match[1] and match[2] == tag:
            take_member(source, tag, code_lines(str(path), held), report)
            tag, held = "", []
        elif match and not match[1] and match[2] in BODY_TAGS | {"Property"}:
            tag, held = match[2], []
        elif match and match[2] == "Constant" and not match[1]:
            take_constant(source, match[3])
        elif tag:
            held.append((number, text))
        else:
            take_heading(source, text)
    return source


def take_heading(source, text):
    """Class, module, super class, or the declaration of a computed property."""
    match = re.match(r"\s*(?:\w+ )?(Class|Module|Interface) (\w+)\s*$", text)
    if match and not text.strip().startswith("End"):
        source.itself.name, source.itself.is_module = match[2], match[1] == "Module"
        return
    match = re.match(r"Inherits (\w+)\s*$", text)
    if match:
        source.itself.base = match[1]
        return
    cursor = Cursor(tokenize(text))
    try:
        while cursor.take(*SCOPE_WORDS, "shared"):
            pass
        source.itself.add(parse_property(cursor, source.itself.is_module))
    except Misunderstood:
        pass  # a line of another kind


def take_constant(source, text):
    match = re.match(r", Name = (\w+), Type = (\w+)", text)
    if match:
        source.itself.add(Member(match[1], "property", Type(match[2]), (), True))


def take_member(source, tag, lines, report):
    """Adds what one #tag block declares."""
    if tag != "Property":
        source.bodies.append(lines)
    for line in lines[:1]:
        try:
            if tag in ("Method", "Event"):
                source.itself.add(declaration_of(line))
            elif tag == "Property":
                cursor, shared = Cursor(line.tokens), False
                while cursor.peek(*SCOPE_WORDS, "shared"):
                    shared = cursor.take(*SCOPE_WORDS, "shared") == "shared" or shared
                source.itself.add(parse_property(cursor, shared or source.itself.is_module))
        except (Misunderstood, AttributeError) as error:
            report.fault(line, f"this declaration is not understood: {error}")


def files_of(paths):
    """The files to read, folders searched."""
    for path in map(pathlib.Path, paths):
        if path.is_dir():
            yield from sorted(file for file in path.rglob("*")
                              if file.suffix in (".xojo_code", ".md") and file.is_file())
        else:
            yield path


def read_sources(paths, report):
    sources = []
    for file in files_of(paths):
        if file.suffix == ".md":
            sources.append(read_document(file, report))
        elif file.name != "Build Automation.xojo_code":
            sources.append(read_code(file, report))
    return sources
