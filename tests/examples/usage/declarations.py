"""Classes as the list of classes, projects and documents declare them."""

import contextlib
import pathlib
import re

from usage.lines import Cursor, code_lines, tokenize
from usage.types import NOTHING, Class, Fault, Member, Parameter, Type

# What a line of code that declares a member begins with.
WORDS = ("private", "protected", "public", "property", "function", "sub")
# What stands before a body and behind it: in a document, and in a class of a project.
FENCE = r"^ *```(vb)\n(.*?)(?:^ *```$|\Z)"
TAG = r"^\s*#tag (Method|Event|Property)\b[^\n]*\n(.*?)^\s*#tag End\1"


def variable(cursor):
    """Name() As Type"""
    name, rank = cursor.word(), cursor.brackets()
    cursor.need("as")
    kind = cursor.type_name()
    return name, Type(kind.name, max(rank, kind.rank))


def parameters(cursor):
    """(Name As Type, Optional Name As Type)"""
    found = []
    if not cursor.take("(") or cursor.take(")"):
        return found
    while not found or cursor.take(","):
        optional = bool(cursor.take("optional"))
        found.append(Parameter(*variable(cursor), optional))
    cursor.need(")")
    return found


def method(cursor, **marks):
    """Name(parameters) As Type, each but the name optional."""
    name, taken = cursor.word(), parameters(cursor)
    result = cursor.type_name() if cursor.take("as") else NOTHING
    cursor.end()
    return Member(name, result, taken, **marks)


def declaration(line):
    """The member that a line of code declares, or None."""
    cursor, words = Cursor(line.tokens), set()
    while word := cursor.take(*WORDS):
        words.add(word)
    if words & {"function", "sub"}:
        return method(cursor)
    if not words:
        return None
    if "property" not in words:
        cursor.refuse("Function, Sub or Property")
    member = Member(*variable(cursor), is_writable=True)
    cursor.end()
    return member


def listed_classes(text, are_ours):
    """The classes of a list as `zqv classes` prints it. Ours inherit from Object or another."""
    classes = []
    for line in text.splitlines():
        head = re.match(r"class ([\w.]+)(?: of (\w+))?(?:,|$)", line)
        field = re.match(r"  (shared )?property (\w+) as ([\w.]+)(.*)", line)
        call = re.match(r'  (shared )?method "(.+)"(?:, flags 0x([0-9a-f]+))?$', line)
        if head:
            classes.append(Class(head[1], head[2] or ("Object" if are_ours else ""), are_ours))
        elif field and classes:
            classes[-1].add(Member(field[2], Type(field[3]), None, bool(field[1]),
                                   ", setter" in field[4]))
        elif call and classes:
            if int(call[3] or "0", 16) & 0x80 == 0:  # not private
                classes[-1].add(method(Cursor(tokenize(call[2])), is_shared=bool(call[1])))
        elif line:
            raise ValueError(f"this line of the list of classes is not understood: {line}")
    return classes


def read(path):
    """The class, module or document in a file, with what it declares and its bodies."""
    text = path.read_text("utf-8")
    head = re.search(r"(?m)^Protected (Class|Module) (\w+)(?:\nInherits (\w+))?", text)
    source = Class(head[2], head[3] or "Object") if head else Class(str(path), "Object")
    for match in re.finditer(TAG if head else FENCE, text, re.M | re.S):
        first = text.count("\n", 0, match.start(2)) + 1
        prefix = "Property " if match[1] == "Property" else ""
        source.bodies.append(code_lines(path, first, prefix + match[2]))
    for line in (line for body in source.bodies for line in body):
        with contextlib.suppress(Fault):  # which Body reports
            if member := declaration(line):
                member.is_shared = bool(head) and head[1] == "Module"
                source.add(member)
    return source


def read_sources(paths):
    """The files of code at these paths; folders are searched."""
    files = [file for path in map(pathlib.Path, paths)
             for file in (sorted(path.rglob("*.xojo_code")) if path.is_dir() else [path])]
    return [read(file) for file in files if file.name != "Build Automation.xojo_code"]
