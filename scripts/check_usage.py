#!/usr/bin/env python3
"""Checks how Xojo code uses the library's classes, against the declarations it registers.

  check_usage.py --classes FILE [--strict] [--verbose] PATH...

FILE is what `zqv classes` prints. PATHs are .xojo_code files, Markdown files (their ```vb blocks)
and folders with either. Types are followed from declarations through members, calls, loops and
blocks; names compare without case. Variables of a Markdown file live on in its later blocks.

Reported: members that do not exist, members of a class used on an object and the other way round,
arguments and values that do not fit, assignments to what cannot be assigned, results that nobody
takes, blocks that do not match, names declared twice, and whatever is not understood in an
expression that began with one of our classes. What else could not be followed is counted, listed
with --verbose, and a fault with --strict. Of the host's own classes HOST tells what the code here
needs; add to it as the need grows.
"""

import argparse
import dataclasses
import pathlib
import re
import sys

# The host's classes, as `zqv classes` writes ours. Global holds what stands alone; Array what every
# array has; Element is what it is an array of. A member's name may be followed by ", setter".
HOST = """
class Object
class Variant
  property StringValue as String
class Boolean
class Integer
  method "ToString(optional format as String) as String"
class Double
  method "ToString(optional format as String) as String"
class String
  property Asc as Integer
  property Bytes as Integer
  property Encoding as TextEncoding
  property IsEmpty as Boolean
  property Length as Integer
  method "BeginsWith(text as String) as Boolean"
  method "Characters as String()"
  method "Contains(text as String) as Boolean"
  method "ConvertEncoding(encoding as TextEncoding) as String"
  method "CountFields(separator as String) as Integer"
  method "DefineEncoding(encoding as TextEncoding) as String"
  method "EndsWith(text as String) as Boolean"
  method "IndexOf(text as String) as Integer"
  method "IndexOf(start as Integer, text as String) as Integer"
  method "LastField(separator as String) as String"
  method "Left(count as Integer) as String"
  method "Lowercase as String"
  method "Middle(start as Integer, optional count as Integer) as String"
  method "NthField(separator as String, number as Integer) as String"
  method "Replace(old as String, new as String) as String"
  method "ReplaceAll(old as String, new as String) as String"
  method "ReplaceLineEndings(ending as String) as String"
  method "Right(count as Integer) as String"
  method "ToArray(optional separator as String) as String()"
  method "ToInteger as Integer"
  method "Trim as String"
  method "TrimLeft as String"
  method "TrimRight as String"
  method "Uppercase as String"
  shared method "FromArray(parts as String(), optional separator as String) as String"
class Array
  property Count as Integer
  property LastIndex as Integer
  method "Add(value as Element)"
  method "AddAt(index as Integer, value as Element)"
  method "IndexOf(value as Element) as Integer"
  method "RemoveAll"
  method "RemoveAt(index as Integer)"
  method "ResizeTo(last as Integer)"
class Date of Object
  property Year as Integer, setter
  property Month as Integer, setter
  property Day as Integer, setter
  property Hour as Integer, setter
  property Minute as Integer, setter
  property Second as Integer, setter
  property TotalSeconds as Double, setter
  property GMTOffset as Double, setter
  property SQLDate as String, setter
  property SQLDateTime as String, setter
  property ShortDate as String
  property ShortTime as String
  property LongDate as String
  property LongTime as String
class DateTime of Object
  property Year as Integer
  property Month as Integer
  property Day as Integer
  property Hour as Integer
  property Minute as Integer
  property Second as Integer
  property SQLDate as String
  property SQLDateTime as String
  method "Constructor(year as Integer, month as Integer, day as Integer, \
optional hour as Integer, optional minute as Integer, optional second as Integer)"
class TextEncoding of Object
  method "Chr(code as Integer) as String"
  property InternetName as String
class Encodings
  shared property ASCII as TextEncoding
  shared property ISOLatin1 as TextEncoding
  shared property MacRoman as TextEncoding
  shared property UTF8 as TextEncoding
  shared property UTF16 as TextEncoding
class FolderItem of Object
  property Exists as Boolean
  property IsFolder as Boolean
  property IsAlias as Boolean
  property IsReadable as Boolean
  property Length as Integer
  property Name as String, setter
  property NativePath as String
  property Parent as FolderItem
  property URLPath as String
  method "Child(name as String, optional followAlias as Boolean) as FolderItem"
  method "Children(optional followAlias as Boolean) as FolderItem()"
  method "Constructor(optional path as String, optional mode as FolderItem.PathModes)"
  method "CreateFolder"
  method "Remove"
class FolderItem.PathModes
  shared property Native as FolderItem.PathModes
  shared property Shell as FolderItem.PathModes
  shared property URL as FolderItem.PathModes
class SpecialFolder
  shared property CurrentWorkingDirectory as FolderItem
  shared property Desktop as FolderItem
  shared property Documents as FolderItem
  shared property Temporary as FolderItem
class BinaryStream of Object
  property EndOfFile as Boolean
  property Length as Integer
  method "Close"
  method "Read(count as Integer, optional encoding as TextEncoding) as String"
  method "Write(data as String)"
  shared method "Create(file as FolderItem, optional overwrite as Boolean) as BinaryStream"
  shared method "Open(file as FolderItem, optional readWrite as Boolean) as BinaryStream"
class TextOutputStream of Object
  method "Close"
  method "Write(text as String)"
  method "WriteLine(text as String)"
  shared method "Create(file as FolderItem) as TextOutputStream"
class TextInputStream of Object
  method "Close"
  method "ReadAll(optional encoding as TextEncoding) as String"
  shared method "Open(file as FolderItem) as TextInputStream"
class StandardOutputStream of Object
  method "Flush"
  method "Write(text as String)"
  method "WriteLine(text as String)"
class StandardInputStream of Object
  method "ReadAll(optional encoding as TextEncoding) as String"
class MemoryBlock of Object
  property Size as Integer, setter
  method "Constructor(size as Integer)"
  method "StringValue(offset as Integer, count as Integer) as String"
class ConsoleApplication of Object
class RuntimeException of Object
  property ErrorNumber as Integer, setter
  property Message as String, setter
class IOException of RuntimeException
class NilObjectException of RuntimeException
class OutOfBoundsException of RuntimeException
class OutOfMemoryException of RuntimeException
class UnsupportedFormatException of RuntimeException
class UnsupportedOperationException of RuntimeException
class System
  shared method "DebugLog(text as String)"
class EndOfLine of String
  property LF as String
class Global
  property EndOfLine as EndOfLine
  property StdErr as StandardOutputStream
  property StdIn as StandardInputStream
  property StdOut as StandardOutputStream
  method "MessageBox(text as String)"
  method "Print(text as String)"
"""

NUMBERS = {"integer", "double", "single", "int8", "int16", "int32", "int64", "uint8", "uint16",
           "uint32", "uint64", "byte"}
SCOPE_WORDS = {"private", "protected", "public", "global"}
CLOSERS = {"next": "for", "wend": "while", "loop": "do"}
MIDDLES = {"else": {"if"}, "elseif": {"if"}, "case": {"select"}, "catch": {"try"},
           "finally": {"try"}}
COMPARISONS = {"=", "<>", "<", ">", "<=", ">="}
TOKEN = re.compile(r"""
    (?P<string>"(?:[^"]|"")*") | (?P<comment>'.*|//.*|(?i:rem)\b.*) |
    (?P<number>&[hHbBoO][0-9A-Fa-f]+|\d+(?:\.\d+)?(?:[eE][+-]?\d+)?) |
    (?P<word>[^\W\d]\w*) | (?P<operator><>|<=|>=|[-+*/]=|[-+*/\\^=<>().,:])""", re.VERBOSE)


@dataclasses.dataclass(frozen=True)
class Type:
    """A type by name; arrays have rank 1."""
    name: str
    rank: int = 0

    def __str__(self):
        return self.name + "()" * self.rank

    @property
    def key(self):
        return self.name.lower()

    @property
    def is_known(self):
        return self.name != "?"


UNKNOWN, NIL = Type("?"), Type("Nil")
STRING, INTEGER, DOUBLE, BOOLEAN = Type("String"), Type("Integer"), Type("Double"), Type("Boolean")


@dataclasses.dataclass(frozen=True)
class Parameter:
    name: str
    type: Type
    optional: bool = False


@dataclasses.dataclass(frozen=True)
class Member:
    """A property, or a method with its parameters; the type of a Sub is None."""
    name: str
    kind: str
    type: object
    parameters: tuple = ()
    shared: bool = False
    writable: bool = False
    private: bool = False

    def takes(self, count):
        needed = sum(not parameter.optional for parameter in self.parameters)
        return needed <= count <= len(self.parameters)


@dataclasses.dataclass
class Class:
    """A class or module; `owner` is "library", "host" or "project"."""
    name: str
    base: str
    owner: str
    is_module: bool = False
    members: dict = dataclasses.field(default_factory=dict)

    def add(self, member):
        self.members.setdefault(member.name.lower(), []).append(member)


@dataclasses.dataclass(frozen=True)
class Value:
    """What an expression is: of which type, began with one of our classes, may be assigned."""
    type: object
    ours: bool = False
    assignable: str = ""  # why it cannot be assigned; "" when it can
    of_class: object = None  # the class or module itself
    text: str = ""
    kind: str = ""


@dataclasses.dataclass(frozen=True)
class Line:
    """A line of code: where it begins and its tokens, pairs of kind and text."""
    file: str
    number: int
    tokens: tuple


class Misunderstood(Exception):
    """The rest of a line makes no sense to the checker."""


class Report:
    """What was found."""

    def __init__(self):
        self.faults, self.notes, self.uses = {}, {}, 0

    def fault(self, line, text):
        self.faults[f"{line.file}:{line.number}: {text}"] = None

    def note(self, line, text):
        self.notes[f"{line.file}:{line.number}: not followed: {text}"] = None


# Reading lines.


def tokenize(text):
    """The tokens of one line of code, without its comment."""
    tokens, at = [], 0
    while at < len(text):
        if text[at].isspace():
            at += 1
            continue
        match = TOKEN.match(text, at)
        if not match:
            tokens.append(("unknown", text[at]))
            at += 1
            continue
        if match.lastgroup != "comment":
            tokens.append((match.lastgroup, match[0]))
        at = match.end()
    return tokens


def code_lines(file, numbered):
    """Lines with tokens; a line that ends in an underscore goes on in the next."""
    lines, held, start = [], [], 0
    for number, text in numbered:
        start = start if held else number
        held += tokenize(text)
        if held and held[-1][1] == "_":
            held.pop()
            continue
        if held:
            lines.append(Line(file, start, tuple(held)))
        held = []
    if held:
        lines.append(Line(file, start, tuple(held)))
    return lines


class Cursor:
    """A place in the tokens of a line."""

    def __init__(self, tokens):
        self.tokens, self.at = tokens, 0

    def peek(self, *texts):
        return self.at < len(self.tokens) and self.tokens[self.at][1].lower() in texts

    def take(self, *texts):
        if not self.peek(*texts):
            return ""
        self.at += 1
        return self.tokens[self.at - 1][1].lower()

    def need(self, *texts):
        found = self.take(*texts)
        if not found:
            raise Misunderstood(f"expected {' or '.join(texts)}, found {self.rest()}")
        return found

    def kind(self):
        return self.tokens[self.at][0] if self.at < len(self.tokens) else ""

    def next(self, *kinds):
        if self.kind() not in kinds:
            raise Misunderstood(f"expected a {' or '.join(kinds)}, found {self.rest()}")
        self.at += 1
        return self.tokens[self.at - 1][1]

    def rest(self):
        return " ".join(text for _, text in self.tokens[self.at:]) or "the end of the line"

    def end(self):
        if self.at < len(self.tokens):
            raise Misunderstood(f"expected the end of the line, found {self.rest()}")

    def type_name(self):
        name = self.next("word")
        while self.take("."):
            name += "." + self.next("word")
        rank = 0
        if self.take("("):
            self.need(")")
            rank = 1
        return Type(name, rank)


# Reading declarations.


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


@dataclasses.dataclass
class Source:
    """A file of code: the class or module that it is, and the lines of its methods."""
    path: pathlib.Path
    itself: Class
    bodies: list
    is_document: bool = False


def declaration_of(line):
    """The method that a Function or Sub line declares, or None."""
    cursor = Cursor(line.tokens)
    shared = False
    while cursor.peek(*SCOPE_WORDS, "shared"):
        shared = cursor.take(*SCOPE_WORDS, "shared") == "shared" or shared
    if not cursor.take("function", "sub"):
        return None
    return parse_method(cursor, shared=shared)


def read_document(path, report):
    """A Markdown file: each ```vb block is a body, its functions are members."""
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
    collect_functions(source, report)
    return source


def collect_functions(source, report):
    for line in (line for body in source.bodies for line in body):
        try:
            member = declaration_of(line)
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


# What there is.


class World:
    """The classes of library, host and project, and how their types fit."""

    def __init__(self, library):
        self.host = parse_classes(HOST, "host")
        self.library = library
        self.project = []

    def find(self, name, source=None):
        """The class of a name; among projects, the one beside the source that asks."""
        key = name.lower()
        for table in (self.library, self.host):
            if key in table and key not in ("global", "array"):
                return table[key]
        found = [other for other in self.project if other.itself.name.lower() == key]
        if source is not None:
            found.sort(key=lambda other: other.path.parent != source.path.parent)
        return found[0].itself if found else None

    def ancestry(self, cls):
        while cls:
            yield cls
            cls = self.find(cls.base) if cls.base else None

    def members(self, cls, name):
        for each in self.ancestry(cls):
            if name.lower() in each.members:
                return each.members[name.lower()]
        return []

    def is_ours(self, kind):
        return kind is not None and kind.key in self.library

    def is_object(self, kind):
        cls = self.find(kind.name)
        return bool(cls) and not cls.is_module and any(
            each.name == "Object" or each.owner != "host" for each in self.ancestry(cls))

    def fits(self, target, source):
        """Whether a value of the type `source` may go where `target` is asked for."""
        if source is None or target is None:
            return False
        if not (target.is_known and source.is_known) or "variant" in (target.key, source.key):
            return True
        if source == NIL:
            return target.rank > 0 or self.is_object(target)
        if target.rank != source.rank:
            return False
        if target.key == source.key:
            return True
        if target.rank:
            return False
        if {target.key, source.key} == {"string", "memoryblock"}:
            return True
        if target.key in NUMBERS and source.key in NUMBERS:
            return True
        if target.key == "object":
            return self.is_object(source)
        return any(each.name.lower() == target.key
                   for each in self.ancestry(self.find(source.name)))


def describe(count):
    return f"{count} argument" + ("" if count == 1 else "s")


class Body:
    """Reads the lines of one method or block, with the types of its variables."""

    def __init__(self, world, source, report, variables):
        self.world, self.source, self.report = world, source, report
        self.scopes = [variables, {}]  # what was known before, and what the body declares
        self.blocks = []  # (word, line) of those that are open
        self.result = None  # the declared type of the function, None in a Sub
        self.in_method = False
        self.line = None
        self.cursor = None

    def run(self, lines):
        for self.line in lines:
            self.cursor = Cursor(self.line.tokens)
            depth = len(self.blocks)
            try:
                self.statement()
                self.cursor.end()
            except Misunderstood as error:
                self.misunderstood(str(error), depth)
        for word, line in self.blocks:
            self.report.fault(line, f"this {word} has no end")
        self.scopes[0].update(self.scopes[1])

    def misunderstood(self, text, depth):
        """A fault when the line has to do with our classes or opens a block, else a note."""
        names = (text for kind, text in self.line.tokens if kind == "word")
        kinds = [Type(name) for name in names]
        kinds += [self.variable(kind.name) for kind in kinds if self.variable(kind.name)]
        if any(self.world.is_ours(kind) for kind in kinds) or len(self.blocks) != depth:
            self.report.fault(self.line, f"not understood: {text}")
        else:
            self.report.note(self.line, text)

    def fault(self, text):
        self.report.fault(self.line, text)

    # Variables and blocks.

    def variable(self, name):
        for scope in reversed(self.scopes):
            if name.lower() in scope:
                return scope[name.lower()]
        return None

    def declare(self, name, kind):
        """Gives the type, unknown when there is none of this name."""
        if not self.world.find(kind.name, self.source) and kind.key not in NUMBERS:
            if kind.key.endswith("zqv"):
                self.fault(f"there is no class {kind.name}")
            else:
                self.report.note(self.line, f"the type {kind.name}")
            kind = UNKNOWN
        if name.lower() in self.scopes[-1]:
            self.fault(f"{name} is declared a second time")
        self.scopes[-1][name.lower()] = kind
        return kind

    def open(self, word):
        self.blocks.append((word, self.line))
        self.scopes.append({})

    def middle(self, word):
        if not self.blocks or self.blocks[-1][0] not in MIDDLES[word]:
            self.fault(f"{word} stands outside of its block")
            return
        self.scopes[-1] = {}

    def close(self, word):
        """Ends a block; an End alone ends any."""
        if not self.blocks or word not in ("", self.blocks[-1][0]):
            self.fault(f"this ends no {word or 'block'}")
            return
        self.blocks.pop()
        self.scopes.pop()

    # Statements.

    def statement(self):
        cursor = self.cursor
        words = {"var": self.declare_variables, "dim": self.declare_variables,
                 "static": self.declare_variables, "const": self.constant, "for": self.loop,
                 "if": self.condition, "while": self.while_loop, "do": self.do_loop,
                 "select": self.select, "case": self.case, "try": lambda: self.open("try"),
                 "catch": self.catch, "return": self.give_back, "raise": self.expression,
                 "call": self.expression, "end": self.end, "elseif": self.else_if}
        if cursor.kind() == "unknown" and cursor.peek("#"):
            cursor.at = len(cursor.tokens)  # for the compiler
        elif cursor.peek("else", "finally"):
            self.middle(cursor.take("else", "finally"))
        elif cursor.peek(*CLOSERS):
            self.closer()
        elif cursor.peek("exit", "continue", "break"):
            cursor.at = len(cursor.tokens)
        elif cursor.peek("function", "sub", "shared", *SCOPE_WORDS):
            self.method()
        elif cursor.peek("get", "set") and len(cursor.tokens) == 1:
            self.open(cursor.take("get", "set"))
        elif cursor.peek(*words) and not self.is_assigned_name():
            words[cursor.take(*words)]()
        else:
            self.assignment_or_call()

    def is_assigned_name(self):
        """Some words of the language are also names of members and variables."""
        return len(self.cursor.tokens) > 1 and self.cursor.tokens[1][1] in (".", "=")

    def method(self):
        member = declaration_of(self.line)
        self.cursor.at = len(self.cursor.tokens)
        if member is None:
            raise Misunderstood("a declaration of another kind")
        self.open("sub" if member.type is None else "function")
        self.result, self.in_method = member.type, True
        for parameter in member.parameters:
            self.declare(parameter.name, parameter.type)

    def declare_variables(self):
        """Var a, b() As T = value, c As New T(arguments)"""
        while True:
            names = [self.declared_name()]
            while self.cursor.take(","):
                names.append(self.declared_name())
            self.cursor.need("as")
            if self.cursor.peek("new"):
                kind = self.construct().type
                value = None
            else:
                kind = self.cursor.type_name()
                value = self.expression() if self.cursor.take("=") else None
            for name, rank in names:
                declared = self.declare(name, Type(kind.name, max(rank, kind.rank)))
                if value:
                    self.must_fit(declared, value, f"{name} is")
            if not self.cursor.take(","):
                return

    def declared_name(self):
        name, rank = self.cursor.next("word"), 0
        if self.cursor.take("("):
            rank = 1
            if not self.cursor.peek(")"):
                self.must_fit(INTEGER, self.expression(), "the bound is")
            self.cursor.need(")")
        return name, rank

    def constant(self):
        name = self.cursor.next("word")
        declared = self.cursor.type_name() if self.cursor.take("as") else None
        self.cursor.need("=")
        value = self.expression()
        kind = self.declare(name, declared or value.type)
        self.must_fit(kind, value, f"{name} is")

    def loop(self):
        self.open("for")
        if self.cursor.take("each"):
            self.each()
            return
        name = self.cursor.next("word")
        kind = self.variable(name) or UNKNOWN
        if self.cursor.take("as"):
            kind = self.declare(name, self.cursor.type_name())
        self.cursor.need("=")
        self.must_fit(kind, self.expression(), f"{name} is")
        self.cursor.need("to", "downto")
        self.must_fit(kind, self.expression(), f"{name} is")
        if self.cursor.take("step"):
            self.must_fit(kind, self.expression(), f"{name} is")

    def each(self):
        name = self.cursor.next("word")
        declared = self.cursor.type_name() if self.cursor.take("as") else None
        self.cursor.need("in")
        value = self.expression()
        element = self.element(value, f"For Each needs an array, and {value.text} is")
        kind = self.declare(name, declared) if declared else self.variable(name) or UNKNOWN
        self.must_fit(kind, Value(element, value.ours, text=f"an element of {value.text}"),
                      f"{name} is")

    def element(self, value, text):
        if value.type is None or (value.type.is_known and not value.type.rank):
            self.fault(f"{text} {value.type or 'nothing'}")
            return UNKNOWN
        return Type(value.type.name) if value.type.is_known else UNKNOWN

    def condition(self):
        self.truth()
        self.cursor.need("then")
        if self.cursor.at == len(self.cursor.tokens):
            self.open("if")
            return
        self.statement()
        if self.cursor.take("else"):
            self.statement()

    def else_if(self):
        self.middle("elseif")
        self.truth()
        self.cursor.need("then")

    def truth(self):
        self.must_fit(BOOLEAN, self.expression(), "the condition is")

    def while_loop(self):
        self.truth()
        self.open("while")

    def do_loop(self):
        self.open("do")
        if self.cursor.take("until"):
            self.truth()

    def closer(self):
        word = self.cursor.take(*CLOSERS)
        if word == "loop" and self.cursor.take("until"):
            self.truth()
        if word == "next" and self.cursor.kind() == "word":
            self.cursor.next("word")
        self.close(CLOSERS[word])

    def select(self):
        self.cursor.need("case")
        self.expression()
        self.open("select")

    def case(self):
        self.middle("case")
        if self.cursor.take("else"):
            return
        while True:
            if self.cursor.take("is"):
                self.cursor.need(*COMPARISONS)
            self.expression()
            if self.cursor.take("to"):
                self.expression()
            if not self.cursor.take(","):
                return

    def catch(self):
        self.middle("catch")
        if self.cursor.kind() == "word":
            name = self.cursor.next("word")
            self.cursor.need("as")
            self.declare(name, self.cursor.type_name())

    def end(self):
        word = self.cursor.take("if", "select", "try", "function", "sub", "get", "set")
        self.close(word)
        if word in ("function", "sub"):
            self.result, self.in_method = None, False

    def give_back(self):
        if self.cursor.at == len(self.cursor.tokens) or self.cursor.peek("else"):
            if self.result is not None:
                self.fault(f"this Return gives nothing, and the function {self.result}")
            return
        value = self.expression()
        if self.result is not None:
            self.must_fit(self.result, value, "the function gives")
        elif self.in_method:
            self.fault("a Sub gives nothing back")

    def assignment_or_call(self):
        value = self.postfix()
        operator = self.cursor.take("=", "+=", "-=", "*=", "/=")
        if operator:
            self.assign(value, operator)
        elif self.cursor.at < len(self.cursor.tokens) and not self.cursor.peek("else"):
            raise Misunderstood(self.cursor.rest())
        elif value.kind in ("property", "variable", "element") or value.of_class:
            self.fault(f"{value.text} alone is no statement")
        elif value.type is not None and value.type.is_known:
            self.fault(f"the result of {value.text} is not used: put Call before it, or take it")

    def assign(self, target, operator):
        value = self.expression()
        if target.assignable:
            self.fault(f"{target.text} cannot be assigned: {target.assignable}")
        elif operator != "=":
            self.operands(operator[0], target, value)
        elif target.type is not None:
            self.must_fit(target.type, value, f"{target.text} is")

    def must_fit(self, kind, value, text):
        if value.of_class:
            self.fault(f"{value.text} is a class, and a value is asked for")
        elif not self.world.fits(kind, value.type):
            given = "nothing" if value.type is None else value.type
            self.fault(f"{text} {kind}, and {value.text} is {given}")

    # Expressions, loosest operators first.

    def expression(self):
        value = self.conjunction()
        while self.cursor.peek("or", "xor"):
            value = self.logical(self.cursor.take("or", "xor"), value, self.conjunction())
        return value

    def conjunction(self):
        value = self.negation()
        while self.cursor.take("and"):
            value = self.logical("and", value, self.negation())
        return value

    def logical(self, operator, left, right):
        for side in (left, right):
            if self.known(side) and side.type.key not in NUMBERS | {"boolean", "variant"}:
                self.fault(f"{side.text} beside {operator} is {side.type}")
        return Value(left.type, text=f"{left.text} {operator} {right.text}")

    def negation(self):
        if self.cursor.take("not"):
            value = self.negation()
            self.must_fit(BOOLEAN, value, "Not needs")
            return Value(BOOLEAN, text=f"Not {value.text}")
        return self.comparison()

    def comparison(self):
        left = self.sum()
        while self.cursor.peek(*COMPARISONS, "is", "isa"):
            operator = self.cursor.take(*COMPARISONS, "is", "isa")
            right = self.sum()
            text = f"{left.text} {operator} {right.text}"
            if operator == "isa":
                if not right.of_class and right.type.is_known:
                    self.fault(f"{right.text} behind IsA is no class")
            elif not (self.comparable(left, right, operator)):
                self.fault(f"{text} compares {left.type} with {right.type}")
            left = Value(BOOLEAN, text=text)
        return left

    def comparable(self, left, right, operator):
        if not (self.known(left) and self.known(right)):
            return not (left.of_class or right.of_class)
        if operator == "is":
            for side in (left, right):
                if side.type not in (NIL, Type("Variant")) and not self.world.is_object(side.type):
                    return False
        return self.world.fits(left.type, right.type) or self.world.fits(right.type, left.type)

    def known(self, value):
        return not value.of_class and value.type is not None and value.type.is_known

    def sum(self):
        value = self.product()
        while self.cursor.peek("+", "-"):
            value = self.operands(self.cursor.take("+", "-"), value, self.product())
        return value

    def product(self):
        value = self.unary()
        while self.cursor.peek("*", "/", "\\", "mod", "^"):
            operator = self.cursor.take("*", "/", "\\", "mod", "^")
            value = self.operands(operator, value, self.unary())
        return value

    def operands(self, operator, left, right):
        text = f"{left.text} {operator} {right.text}"
        for side in (left, right):
            bad = side.of_class or side.type is None or side.type == NIL or side.type.rank
            strings = operator != "+" and not bad and side.type.key == "string"
            if bad or strings or (side.type.is_known and self.world.is_object(side.type)):
                self.fault(f"{side.text} beside {operator} is {side.type or 'nothing'}")
                return Value(UNKNOWN, text=text)
        if not (left.type.is_known and right.type.is_known):
            return Value(UNKNOWN, text=text)
        kinds = {left.type.key, right.type.key} - {"variant"}
        if "string" in kinds and len(kinds) > 1 and "endofline" not in kinds:
            self.fault(f"{text} adds {left.type} and {right.type}")
        if kinds & {"string", "endofline"}:
            return Value(STRING, text=text)
        return Value(DOUBLE if "double" in kinds or operator == "/" else INTEGER, text=text)

    def unary(self):
        if self.cursor.take("-", "+"):
            return self.unary()
        return self.postfix()

    def postfix(self):
        value = self.primary()
        while True:
            if self.cursor.take("."):
                value = self.member(value, self.cursor.next("word"))
            elif self.cursor.peek("("):
                value = self.index(value, self.arguments())
            else:
                return value

    def arguments(self):
        """The values in parentheses, or None where there are none."""
        if not self.cursor.take("("):
            return None
        values = []
        while not self.cursor.peek(")"):
            values.append(self.expression())
            if not self.cursor.take(","):
                break
        self.cursor.need(")")
        return values

    def primary(self):
        cursor = self.cursor
        if cursor.kind() == "string":
            return Value(STRING, text=cursor.next("string"))
        if cursor.kind() == "number":
            text = cursor.next("number")
            is_whole = text.startswith("&") or text.isdigit()
            return Value(INTEGER if is_whole else DOUBLE, text=text)
        if cursor.peek("("):
            values = self.arguments()
            if len(values) != 1:
                raise Misunderstood("parentheses with several values")
            return dataclasses.replace(values[0], kind="")
        if cursor.peek("new"):
            return self.construct()
        return self.name(cursor.next("word"))

    def name(self, text):
        literals = {"nil": NIL, "true": BOOLEAN, "false": BOOLEAN}
        key = text.lower()
        if key in literals:
            return Value(literals[key], text=text)
        if key in ("self", "me"):
            return Value(Type(self.source.itself.name), text=text)
        if key == "if":
            return self.choice()
        kind = self.variable(text)
        if kind is not None:
            ours = self.world.is_ours(kind)
            self.report.uses += ours
            return Value(kind, ours, text=text, kind="variable")
        return self.global_name(text)

    def choice(self):
        """If(condition, one, other)"""
        values = self.arguments()
        if values is None or len(values) != 3:
            raise Misunderstood("If without three values")
        self.must_fit(BOOLEAN, values[0], "the condition is")
        return Value(values[1].type, values[1].ours, text="If(...)")

    def global_name(self, text):
        """A member of this class, a global method of a module, of the host, or a class."""
        owners = [self.source.itself]
        owners += [other.itself for other in self.world.project if other.itself.is_module]
        owners.append(self.world.host["global"])
        for owner in owners:
            members = self.world.members(owner, text)
            if members:
                return self.use(members, text, False)
        cls = self.world.find(text, self.source)
        if cls:
            ours = cls.owner == "library"
            self.report.uses += ours
            return Value(Type(cls.name), ours, "it is a class", cls, text)
        self.report.note(self.line, f"the name {text}")
        arguments = self.arguments()
        return Value(UNKNOWN, text=text, kind="method" if arguments is not None else "")

    def construct(self):
        """New T(arguments)"""
        self.cursor.need("new")
        name = self.cursor.next("word")
        while self.cursor.take("."):
            name += "." + self.cursor.next("word")
        arguments = self.arguments() or []
        cls = self.world.find(name, self.source)
        if not cls:
            return Value(Type(name), text=f"New {name}")
        ours = cls.owner == "library"
        self.report.uses += ours
        constructors = self.world.members(cls, "Constructor")
        if any(each.private for each in constructors):
            self.fault(f"the constructor of {cls.name} is private")
        elif constructors:
            self.choose(constructors, f"New {cls.name}", arguments, ours)
        elif arguments and cls.owner != "host":
            self.fault(f"New {cls.name} takes no arguments")
        return Value(Type(cls.name), ours, "it is new", text=f"New {cls.name}")

    def member(self, value, name):
        """value.name, with its arguments."""
        text = f"{value.text}.{name}"
        if value.type is None:
            self.fault(f"{value.text} gives nothing that could have a member {name}")
            return self.lost(text)
        if not value.type.is_known:
            return self.lost(text)
        nested = self.world.find(f"{value.type.name}.{name}") if value.of_class else None
        if nested:
            return Value(Type(nested.name), value.ours, "it is a type", nested, text)
        cls = self.world.find(value.type.name, self.source)
        if value.type.rank:
            cls = self.world.host["array"]
        elif value.type.key in NUMBERS and not cls:
            cls = self.world.host["integer"]
        members = self.world.members(cls, name)
        self.report.uses += cls.owner == "library"
        if not members:
            self.no_member(value, cls, name)
            return self.lost(text)
        if not self.reachable(value, cls, members[0], text):
            return self.lost(text)
        element = value.type.name if value.type.rank else ""
        return self.use(members, text, value.ours or cls.owner == "library", element)

    def no_member(self, value, cls, name):
        owner = str(value.type)
        if cls.owner != "host" or value.ours:
            self.fault(f"{owner} has no member {name}")
        else:
            self.report.note(self.line, f"the member {name} of {owner}")

    def reachable(self, value, cls, member, text):
        """Shared members stand behind the class, others behind an object."""
        if cls.is_module:
            return True
        if value.of_class and not member.shared:
            self.fault(f"{text} needs an object, and {value.text} is the class")
            return False
        if not value.of_class and member.shared and cls.owner == "library":
            self.fault(f"{text} is shared: write {cls.name}.{member.name}")
            return False
        return True

    def lost(self, text):
        self.arguments()
        return Value(UNKNOWN, text=text)

    def use(self, members, text, ours, element=""):
        """Reads a property, or calls the method that fits the arguments."""
        arguments = self.arguments()
        first = members[0]
        if first.kind == "property":
            why = "" if first.writable else "it is read-only"
            value = Value(first.type, ours, why, text=text, kind="property")
            return value if arguments is None else self.index(value, arguments)
        chosen = self.choose(members, text, arguments or [], ours, element)
        if chosen is None:
            return Value(UNKNOWN, ours, text=text, kind="method")
        if arguments and not chosen.parameters:  # these index what the method gives
            value = Value(chosen.type, ours, text=text, kind="method")
            return self.index(value, arguments)
        kind = UNKNOWN if chosen.type == Type("Element") else chosen.type
        shown = text if arguments is None else f"{text}(...)"
        return Value(kind, ours, "it is a method", text=shown, kind="method")

    def choose(self, members, text, arguments, ours, element=""):
        """The method whose parameters fit, or None."""
        fitting = [member for member in members if member.takes(len(arguments))]
        if not fitting:
            if len(arguments) == 1 and any(m.type and m.type.rank for m in members):
                return next(m for m in members if m.type and m.type.rank)
            counts = " or ".join(sorted({str(len(m.parameters)) for m in members}))
            self.fault(f"{text} takes {counts}, and not {describe(len(arguments))}")
            return None
        faults = []
        for member in fitting:
            wrong = self.misfit(member, arguments, element)
            if not wrong:
                return member
            faults.append(wrong)
        self.fault(f"{text}: {'; or '.join(faults)}")
        return None

    def misfit(self, member, arguments, element):
        """Which argument does not fit a method, "" when all do."""
        for parameter, value in zip(member.parameters, arguments):
            kind = parameter.type
            if element and kind.name == "Element":
                kind = Type(element)
            if value.of_class or not self.world.fits(kind, value.type):
                given = "a class" if value.of_class else value.type or "nothing"
                return f"{parameter.name} is {kind}, and {value.text} is {given}"
        return ""

    def index(self, value, arguments):
        """value(arguments): an element of an array, or a cast to a class."""
        if value.of_class and not value.of_class.is_module:
            return self.cast(value, arguments)
        if value.type is None or not value.type.is_known:
            return Value(UNKNOWN, value.ours, text=value.text, kind="method")
        if not value.type.rank or len(arguments) != 1:
            self.fault(f"{value.text} is {value.type} and takes not {describe(len(arguments))}")
            return Value(UNKNOWN, value.ours, text=value.text)
        self.must_fit(INTEGER, arguments[0], "an index is")
        return Value(Type(value.type.name), value.ours, text=f"{value.text}(...)", kind="element")

    def cast(self, value, arguments):
        """Class(object): of the same family, either way."""
        if len(arguments) != 1:
            self.fault(f"{value.text}(...) converts one value, and not {len(arguments)}")
        elif not (self.world.fits(value.type, arguments[0].type)
                  or self.world.fits(arguments[0].type, value.type)):
            self.fault(f"{arguments[0].text} is {arguments[0].type} and never {value.type}")
        return Value(value.type, value.ours, "it is converted", text=f"{value.text}(...)")


# The whole.


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


def check(classes, paths):
    """A report on the code of `paths`."""
    report = Report()
    library = parse_classes(classes, "library")
    if not library:
        raise ValueError("the list of classes is empty")
    world = World(library)
    sources = read_sources(paths, report)
    world.project = [source for source in sources if not source.is_document]
    if not any(source.bodies for source in sources):
        raise ValueError("there is no code in " + ", ".join(map(str, paths)))
    for source in sources:
        variables = {}
        for lines in source.bodies:
            kept = variables if source.is_document else {}
            Body(world, source, report, kept).run(lines)
    return report


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("--classes", required=True, metavar="FILE", help="what zqv classes prints")
    parser.add_argument("--verbose", action="store_true", help="list what was not followed")
    parser.add_argument("--strict", action="store_true", help="what was not followed is a fault")
    parser.add_argument("paths", nargs="+", metavar="PATH")
    arguments = parser.parse_args()
    try:
        report = check(pathlib.Path(arguments.classes).read_text("utf-8"), arguments.paths)
    except (OSError, ValueError, Misunderstood) as error:
        print(f"check_usage.py: {error}", file=sys.stderr)
        return 1
    for text in report.faults:
        print(text)
    if arguments.verbose or arguments.strict:
        for text in report.notes:
            print(text)
    print(f"{report.uses} uses of our classes, {len(report.faults)} faults, "
          f"{len(report.notes)} not followed")
    return 1 if report.faults or (arguments.strict and report.notes) else 0


if __name__ == "__main__":
    sys.exit(main())
