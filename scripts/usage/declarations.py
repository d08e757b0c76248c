"""Declarations of classes, methods and properties."""

import re

from usage.lines import Cursor, tokenize
from usage.model import Class, Member, Parameter, Type

SCOPE_WORDS = {"private", "protected", "public", "global"}


def parse_parameters(cursor):
    """What stands between the parentheses of a declaration."""
    parameters = []
    while not cursor.peek(")"):
        optional = False
        while cursor.peek("optional", "byref", "byval", "assigns"):
            optional = cursor.peek("optional") or optional
            cursor.take("optional", "byref", "byval", "assigns")
        name = cursor.next("word")
        rank = 1 if cursor.take("(") and cursor.need(")") else 0
        cursor.need("as")
        kind = cursor.type_name()
        if cursor.take("="):
            optional = True
            while not cursor.peek(",", ")"):
                cursor.next(cursor.kind() or "value")
        parameters.append(Parameter(name, Type(kind.name, max(rank, kind.rank)), optional))
        if not cursor.take(","):
            break
    cursor.need(")")
    return tuple(parameters)


def parse_method(cursor, **marks):
    """Name(parameters) As Type, each but the name optional."""
    name = cursor.next("word")
    parameters = parse_parameters(cursor) if cursor.take("(") else ()
    result = cursor.type_name() if cursor.take("as") else None
    cursor.end()
    return Member(name, "method", result, parameters, **marks)


def parse_property(cursor, shared=False):
    name = cursor.next("word")
    rank = 1 if cursor.take("(") and cursor.need(")") else 0
    cursor.need("as")
    cursor.take("new")
    kind = cursor.type_name()
    return Member(name, "property", Type(kind.name, max(rank, kind.rank)), (), shared, True)


def parse_member(line):
    """A member's line of the list of classes, or None."""
    match = re.fullmatch(r"  (shared )?property (\w+) as ([\w.]+)(\(\))?((?:, .*)?)", line)
    if match:
        writable = ", setter" in match[5]
        kind = Type(match[3], 1 if match[4] else 0)
        return Member(match[2], "property", kind, (), bool(match[1]), writable)
    match = re.fullmatch(r'  (shared )?method "(.+)"(?:, flags 0x([0-9a-f]+))?', line)
    if not match:
        return None
    private = bool(int(match[3] or "0", 16) & 0x80)
    return parse_method(Cursor(tokenize(match[2])), shared=bool(match[1]), private=private)


def parse_classes(text, owner):
    """The classes that a list tells, by their names in lower case."""
    classes, current = {}, None
    for line in text.splitlines():
        if not line:
            continue
        head = re.match(r"class ([\w.]+)(?: of (\w+))?(?:,|$)", line)
        member = None if head or current is None else parse_member(line)
        if head:
            current = Class(head[1], head[2] or "", owner)
            classes[head[1].lower()] = current
        elif member:
            current.add(member)
        else:
            raise ValueError(f"this line of the list of classes is not understood: {line}")
    return classes


def declaration_of(line):
    """The method that a Function or Sub line declares, or None."""
    cursor = Cursor(line.tokens)
    shared = False
    while cursor.peek(*SCOPE_WORDS, "shared"):
        shared = cursor.take(*SCOPE_WORDS, "shared") == "shared" or shared
    if not cursor.take("function", "sub"):
        return None
    return parse_method(cursor, shared=shared)


def property_of(line):
    """The property that a Property line declares, as the IDE copies it into a text, or None."""
    cursor = Cursor(line.tokens)
    while cursor.take(*SCOPE_WORDS):
        pass
    if not cursor.take("property") or cursor.kind() != "word":
        return None
    found = parse_property(cursor)
    cursor.end()
    return found
