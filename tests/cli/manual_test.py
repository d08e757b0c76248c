"""The manual page describes every verb and option of the program, and no others."""

import os
import pathlib
import re
import unittest

import program
from program import zqv

MANUAL = (pathlib.Path(os.environ["ZQV_SOURCE"]) / "packaging/zqv.1").read_text()
VERBS = re.findall(r"(?m)^  ([a-z0-9]+) ", zqv("--help").out.split("\nVerbs", 1)[1])


def section_at(begin):
    """The text from a verb's item to the next item or heading."""
    end = re.search(r"(?m)^\.(Ss|Sh) |^\.It Cm [a-z0-9]+ (Oo|Fl|Ar)", MANUAL[begin + 1:])
    return MANUAL[begin:begin + 1 + end.start()]


def section_of(verb):
    """All text of the page about a verb; a verb can have several items."""
    return "".join(section_at(match.start())
                   for match in re.finditer(rf"(?m)^\.It Cm {verb} ", MANUAL))


class ManualTest(program.TestCase):
    def test_every_verb(self):
        self.assertGreater(len(VERBS), 15)
        for verb in VERBS:
            self.assertTrue(section_of(verb), verb)

    def test_no_other_verb(self):
        for verb in re.findall(r"(?m)^\.It Cm ([a-z0-9]+) (?:Oo|Fl|Ar)", MANUAL):
            self.assertIn(verb, VERBS)

    def test_every_option(self):
        shared = MANUAL[MANUAL.index(".Ss Options of all verbs"):MANUAL.index(".Sh ENVIRONMENT")]
        for verb in [None, *VERBS]:
            out = zqv(*([verb] if verb else []), "--help").out
            options = re.findall(r"(?m)^  (?:-\w,)?--([a-z-]+)", out)
            self.assertIn("help", options)
            for option in options:
                with self.subTest(verb=verb, option=option):
                    own = section_of(verb) if verb else ""
                    # Options of several verbs are below a list of these verbs.
                    common = {"json": "With\n.Fl -json\nthey print", "raw": ".Fl -raw\nprints"}
                    self.assertTrue(re.search(rf"(Fl|,) -{option}\b", own + shared)
                                    or common.get(option, "\0") in MANUAL)

    def test_no_other_option(self):
        known = set()
        for verb in [None, *VERBS]:
            known.update(re.findall(r"--([a-z-]+)", zqv(*([verb] if verb else []), "--help").out))
        for option in re.findall(r"(?:Fl|,|\|) -([a-z][a-z-]+)", MANUAL):
            self.assertIn(option, known)


if __name__ == "__main__":
    unittest.main()
