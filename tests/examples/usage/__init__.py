"""Checks how Xojo code uses classes, against the list of classes that `zqv classes` prints.

Types are followed from declarations through members, calls, loops and blocks; names compare
without case. A fault is a class or member that does not exist, an argument or value that does not
fit, an assignment to what cannot be assigned, a result that is not used, a block without its end,
and a line that is not understood. Only what our examples and documents use of the language is
understood; only what they use of the host's own classes is in host_classes.txt. Add what a new
example needs.
"""

import pathlib

from usage.declarations import listed_classes, read_sources
from usage.statements import Body
from usage.types import World

# As `zqv classes` writes ours. Global has what stands alone; Array what every array has; Element is
# what it is an array of.
HOST_CLASSES = pathlib.Path(__file__).with_name("host_classes.txt")


class Report:
    """The faults, each with file and line, and the number of uses of our classes."""

    def __init__(self):
        self.faults, self.uses = [], 0

    def fault(self, line, text):
        self.faults.append(f"{line.file}:{line.number}: {text}")


def check(classes, paths):
    """A report on the code in files and folders: .xojo_code, and ```vb blocks of Markdown, whose
    variables live on in the later blocks of their file. `classes` is the list's text."""
    report = Report()
    sources = read_sources(paths)
    if not any(source.bodies for source in sources):
        raise ValueError("there is no code in " + ", ".join(map(str, paths)))
    world = World(listed_classes(HOST_CLASSES.read_text("utf-8"), False) +
                  listed_classes(classes, True) + sources)
    for source in sources:
        variables = {}
        for lines in source.bodies:
            Body(world, source, report, variables).run(lines)
    return report
