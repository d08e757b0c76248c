"""Lines of code as tokens, and a cursor that reads them."""

import pathlib
import re
import typing

from usage.types import Fault, Type

TOKEN = re.compile(r"""
    (?P<string>"(?:[^"]|"")*") | (?P<comment>(?:'|//).*) | (?P<number>&h[0-9A-Fa-f]+|\d+) |
    (?P<word>[^\W\d]\w*) | (?P<operator><>|<=|>=|[-+*/\\=<>().,]) | (?P<unknown>\S)""", re.VERBOSE)


class Line(typing.NamedTuple):
    """A line of code: where it begins and its tokens, pairs of kind and text."""
    file: pathlib.Path
    number: int
    tokens: list


def tokenize(text):
    """The tokens of one line of code, without its comment."""
    return [(match.lastgroup, match[0]) for match in TOKEN.finditer(text)
            if match.lastgroup != "comment"]


def code_lines(file, number, text):
    """The lines of a text that begins at a line of a file. An underscore joins it to the next."""
    lines, tokens, start = [], [], 0
    for number, each in enumerate(text.splitlines(), number):
        start = start if tokens else number
        tokens += tokenize(each)
        if tokens and tokens[-1][1] == "_":
            tokens.pop()
        elif tokens:
            lines.append(Line(file, start, tokens))
            tokens = []
    return lines


class Cursor:
    """A place in the tokens of a line. Texts are given and compared in lower case."""

    def __init__(self, tokens):
        self.tokens, self.at = tokens, 0

    def at_end(self):
        return self.at == len(self.tokens)

    def kind(self):
        return "" if self.at_end() else self.tokens[self.at][0]

    def next(self):
        self.at += 1
        return self.tokens[self.at - 1][1]

    def peek(self, *texts):
        return not self.at_end() and self.tokens[self.at][1].lower() in texts

    def take(self, *texts):
        """The next text if it is one of these, else an empty one."""
        return self.next().lower() if self.peek(*texts) else ""

    def need(self, text):
        if not self.take(text):
            self.refuse(text)

    def word(self):
        return self.next() if self.kind() == "word" else self.refuse("a name")

    def end(self):
        if not self.at_end():
            self.refuse("the end of the line")

    def refuse(self, expected):
        found = " ".join(text for _, text in self.tokens[self.at:]) or "the end of the line"
        raise Fault(f"not understood: expected {expected}, found {found}")

    def brackets(self):
        """1 behind the name of an array, else 0."""
        return 1 if self.take("(") and not self.need(")") else 0

    def type_name(self):
        name = self.word()
        while self.take("."):
            name += "." + self.word()
        return Type(name, self.brackets())
