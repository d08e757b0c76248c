"""Lines of code as tokens."""

import dataclasses
import re

from usage.model import Misunderstood, Type

TOKEN = re.compile(r"""
    (?P<string>"(?:[^"]|"")*") | (?P<comment>'.*|//.*|(?i:rem)\b.*) |
    (?P<number>&[hHbBoO][0-9A-Fa-f]+|\d+(?:\.\d+)?(?:[eE][+-]?\d+)?) |
    (?P<word>[^\W\d]\w*) | (?P<operator><>|<=|>=|[-+*/]=|[-+*/\\^=<>().,:])""", re.VERBOSE)


@dataclasses.dataclass(frozen=True)
class Line:
    """A line of code: where it begins and its tokens, pairs of kind and text."""
    file: str
    number: int
    tokens: tuple


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
