"""Types, members, classes, and which type fits where."""

import dataclasses


class Fault(Exception):
    """What is wrong with a line of code."""


@dataclasses.dataclass(frozen=True)
class Type:
    """A type by its name; an array has rank 1."""
    name: str
    rank: int = 0

    def __str__(self):
        return self.name + "()" * self.rank


NIL, NOTHING = Type("Nil"), Type("nothing")  # NOTHING is what a Sub returns
STRING, INTEGER, BOOLEAN = Type("String"), Type("Integer"), Type("Boolean")


@dataclasses.dataclass(frozen=True)
class Parameter:
    name: str
    type: Type
    is_optional: bool


@dataclasses.dataclass
class Member:
    """A property, or a method with its parameters."""
    name: str
    type: Type
    parameters: object = None  # None for a property
    is_shared: bool = False
    is_writable: bool = False


@dataclasses.dataclass
class Class:
    """A class or module, or a document that is read like one."""
    name: str
    base: str
    is_ours: bool = False
    members: dict = dataclasses.field(default_factory=dict)
    bodies: list = dataclasses.field(default_factory=list)  # of lines of code

    def add(self, member):
        self.members.setdefault(member.name.lower(), []).append(member)


class World:
    """All classes, by their names in lower case."""

    def __init__(self, classes):
        self.classes = {each.name.lower(): each for each in classes}

    def find(self, name):
        return self.classes.get(name.lower())

    def family(self, found):
        """A class, and those that it inherits from."""
        return [found, *self.family(self.find(found.base))] if found else []

    def members(self, owner, name):
        """The members of this name; methods may have several."""
        return next((each.members[name.lower()] for each in self.family(owner)
                     if name.lower() in each.members), [])

    def inherits(self, name, base):
        return any(each.name.lower() == base for each in self.family(self.find(name)))

    def fits(self, target, source):
        """Whether a value of the type `source` may go where `target` is asked for."""
        wanted, given = target.name.lower(), source.name.lower()
        if NOTHING in (target, source):
            return False
        if source == NIL:
            return target.rank == 1 or self.inherits(wanted, "object")
        if "variant" in (wanted, given):
            return True
        if target.rank or source.rank:
            return (wanted, target.rank) == (given, source.rank)
        return {wanted, given} in ({"integer", "double"}, {"string", "memoryblock"}) or \
            self.inherits(given, wanted)
