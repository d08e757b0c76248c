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
with --verbose, and a fault with --strict. Of the host's own classes usage/host_classes.txt tells
what the code here needs; add to it as the need grows.
"""

import argparse
import pathlib
import sys

from usage.declarations import parse_classes
from usage.model import Misunderstood, Report
from usage.sources import read_sources
from usage.statements import Body
from usage.world import World


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
