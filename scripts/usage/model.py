"""Types, members, classes and values, and what is found out about their use."""

import dataclasses

NUMBERS = {"integer", "double", "single", "int8", "int16", "int32", "int64", "uint8", "uint16",
           "uint32", "uint64", "byte"}


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
