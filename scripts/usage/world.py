"""What there is: the classes of library, host and projects."""

import pathlib

from usage.declarations import parse_classes
from usage.model import NIL, NUMBERS

# As `zqv classes` writes ours. Global holds what stands alone; Array what every array has; Element
# is what it is an array of. A member's name may be followed by ", setter".
HOST = pathlib.Path(__file__).with_name("host_classes.txt")


class World:
    """The classes of library, host and project, and how their types fit."""

    def __init__(self, library):
        self.host = parse_classes(HOST.read_text("utf-8"), "host")
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
