"""The registered classes, read from what `zqv classes` prints."""

import re

CLASS = re.compile(r"class (\w+)(?: of (\w+))?, version .*")
PROPERTY = re.compile(r"  (shared )?property (\w+) as (\w+), flags (.*)")
METHOD = re.compile(r'  (shared )?method "([^"]+)", flags (.*)')
DECLARATION = re.compile(r"(\w+)(?:\(([^)]*)\))?(?: as (\w+(?:\(\))?))?")
PARAMETER = re.compile(r"(\w+) as (\w+)")
PRIVATE = 0x80  # the flag of what an application cannot call
SPELLINGS = {"string": "String", "boolean": "Boolean"}


class Problem(Exception):
    """What keeps the help from being made; its text is for the reader of the terminal."""


class Member:
    """One property, method or constructor as it is registered."""

    def __init__(self, shared, kind, declaration, flags):
        match = DECLARATION.fullmatch(declaration)
        if not match:
            raise Problem(f"not a declaration: {declaration}")
        self.name, parameters, result = match.groups()
        self.shared = shared
        self.is_method = kind == "method"
        self.key = ("shared " if shared else "") + f"{kind} {declaration}"
        self.parameters = [read_parameter(text) for text in (parameters or "").split(",") if text]
        self.type = spelled(result) if result else None
        self.writable = ", setter" in flags
        self.hidden = "attribute Hidden" in flags
        self.private = bool(int(flags.split(",")[0], 16) & PRIVATE)

    @property
    def is_constructor(self):
        return self.name == "Constructor"

    def declaration(self):
        """As an application developer reads it, in pieces: (text, whether it names a type)."""
        scope = "Private " if self.private else "Shared " if self.shared else ""
        pieces = [(f"{scope}{self.word()} {self.name}", False)]
        if self.is_method:
            pieces.append(("(", False))
            for index, (name, kind) in enumerate(self.parameters):
                pieces.append((f"{', ' if index else ''}{name} As ", False))
                pieces.append((kind, True))
            pieces.append((")", False))
        if self.type:
            pieces += [(" As ", False), (self.type, True)]
        return pieces

    def word(self):
        if not self.is_method:
            return "Property"
        return "Function" if self.type else "Sub"


class Class:
    """One registered class with its members, in the order of registration."""

    def __init__(self, name, superclass):
        self.name = name
        self.superclass = superclass
        self.members = []

    def anchors(self):
        """The anchor of each member: stable, so made of names and types alone."""
        found = {}
        for member in self.members:
            anchor = f"{self.name}.{member.name}"
            if member.parameters and self.is_overloaded(member):
                anchor += "-" + "-".join(kind for _, kind in member.parameters)
            if anchor in found.values():
                raise Problem(f"two members would share the anchor #{anchor}")
            found[member.key] = anchor
        return found

    def is_overloaded(self, member):
        return sum(other.name == member.name for other in self.members) > 1


def spelled(kind):
    """A type as Xojo spells it; declarations say string and boolean, too."""
    return SPELLINGS.get(kind, kind)


def read_parameter(text):
    match = PARAMETER.fullmatch(text.strip())
    if not match:
        raise Problem(f"not a parameter: {text}")
    return match[1], spelled(match[2])


def read_member(line):
    """The member that a line of the listing tells."""
    if match := PROPERTY.fullmatch(line):
        return Member(bool(match[1]), "property", f"{match[2]} as {match[3]}", match[4])
    if match := METHOD.fullmatch(line):
        return Member(bool(match[1]), "method", match[2], match[3])
    raise Problem(f"the list of classes has a line that is neither class nor member: {line}")


def read(text):
    """All classes of a listing, by name."""
    classes = {}
    for line in filter(None, text.splitlines()):
        if match := CLASS.fullmatch(line):
            if match[1] in classes:
                raise Problem(f"the class {match[1]} is listed twice")
            current = classes[match[1]] = Class(match[1], match[2])
        elif not classes:
            raise Problem(f"the list of classes does not begin with a class: {line}")
        else:
            current.members.append(read_member(line))
    if not classes:
        raise Problem("the list of classes is empty")
    return classes
