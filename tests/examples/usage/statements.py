"""The statements of a method or of a block of code."""

from usage.declarations import WORDS, declaration, variable
from usage.expressions import Expressions
from usage.lines import Cursor
from usage.types import NOTHING, STRING, Fault, Type

OPENERS = ("for", "while", "do", "select", "try")
CLOSERS = {"next": "for", "wend": "while", "loop": "do", "end": ""}  # End names its block
MIDDLES = {"else": "if", "elseif": "if", "case": "select", "catch": "try"}


class Body(Expressions):
    """Reads the lines of one method or block."""

    def __init__(self, world, source, report, variables):
        super().__init__(world, source, report, variables)
        self.blocks = []  # pairs of word and line of the open ones
        self.returned = NOTHING  # of the open function
        self.line = None

    def run(self, lines):
        for self.line in lines:
            self.cursor = Cursor(self.line.tokens)
            try:
                self.statement()
                self.cursor.end()
            except Fault as fault:
                self.report.fault(self.line, fault)
        for word, line in self.blocks:
            self.report.fault(line, f"this {word} has no end")
        self.scopes[0].update(self.scopes[1])

    def declare(self, name, kind):
        if not self.world.find(kind.name):
            raise Fault(f"there is no class {kind.name}")
        if name.lower() in self.scopes[-1]:
            raise Fault(f"{name} is declared a second time")
        self.scopes[-1][name.lower()] = kind

    def declare_typed(self):
        """Name As Type"""
        name, kind = variable(self.cursor)
        self.declare(name, kind)
        return name, kind

    # Blocks.

    def open(self, word):
        self.blocks.append((word, self.line))
        self.scopes.append({})

    def middle(self, word):
        if not self.blocks or self.blocks[-1][0] != MIDDLES[word]:
            raise Fault(f"{word} stands outside of its block")
        self.scopes[-1] = {}

    def close(self, word):
        if not self.blocks or self.blocks[-1][0] != word:
            raise Fault(f"this ends no {word}")
        self.blocks.pop()
        self.scopes.pop()

    # Statements.

    def statement(self):
        cursor = self.cursor
        rest = {"addhandler": self.handler, "case": self.case, "catch": self.declare_typed,
                "const": self.constant, "elseif": self.else_if, "exit": cursor.word,
                "for": self.loop, "if": self.choose_lines, "return": self.give_back,
                "select": self.select, "var": self.declare_variable, "while": self.condition}
        if cursor.peek(*WORDS):
            self.member_of_class()
        elif word := cursor.take(*CLOSERS):
            self.close(CLOSERS[word] or cursor.word().lower())
        elif word := cursor.take("continue", *MIDDLES, *OPENERS, *rest):
            if word in MIDDLES:
                self.middle(word)
            elif word in OPENERS:
                self.open(word)
            rest.get(word, lambda: None)()
        else:
            self.assignment_or_call()

    def member_of_class(self):
        self.cursor.at = len(self.cursor.tokens)
        member = declaration(self.line)
        if member.parameters is None:
            return
        self.open("sub" if member.type == NOTHING else "function")
        self.returned = member.type
        for parameter in member.parameters:
            self.declare(parameter.name, parameter.type)

    def declare_variable(self):
        """Var a() As T = value, Var a As New T(arguments)"""
        name, rank = self.cursor.word(), self.cursor.brackets()
        self.cursor.need("as")
        if self.cursor.take("new"):
            self.declare(name, self.construct().type)
            return
        kind = self.cursor.type_name()
        kind = Type(kind.name, max(rank, kind.rank))
        self.declare(name, kind)
        if self.cursor.take("="):
            self.must_fit(kind, self.expression(), f"{name} is")

    def constant(self):
        name = self.cursor.word()
        self.cursor.need("=")
        self.declare(name, self.expression().type)

    def loop(self):
        """For Each a As T In array, For i As T = first To last"""
        is_each = self.cursor.take("each")
        name, kind = self.declare_typed()
        self.cursor.need("in" if is_each else "=")
        value = self.expression()
        if is_each:
            self.must_fit(Type(kind.name, 1), value, f"{name} needs")
            return
        self.must_fit(kind, value, f"{name} is")
        self.cursor.need("to")
        self.must_fit(kind, self.expression(), f"{name} is")

    def choose_lines(self):
        """If condition Then, with lines or one statement behind it"""
        is_block = self.line.tokens[-1][1].lower() == "then"
        if is_block:
            self.open("if")
        self.else_if()
        if not is_block:
            self.statement()

    def else_if(self):
        self.condition()
        self.cursor.need("then")

    def select(self):
        self.cursor.need("case")
        self.case()

    def case(self):
        """Texts with commas between them"""
        self.must_fit(STRING, self.expression(), "a case is")
        while self.cursor.take(","):
            self.must_fit(STRING, self.expression(), "a case is")

    def give_back(self):
        if not self.cursor.at_end():
            self.must_fit(self.returned, self.expression(), "the result is")
        elif self.returned != NOTHING:
            raise Fault(f"this Return gives nothing, and the result is {self.returned}")

    def handler(self):
        """AddHandler object.Event, AddressOf Method"""
        self.postfix()
        self.cursor.need(",")
        self.cursor.need("addressof")
        name = self.cursor.word()
        if not self.world.members(self.source, name):
            raise Fault(f"there is no method {name}")

    def assignment_or_call(self):
        target = self.postfix()
        if self.cursor.take("="):
            if target.kind != "variable":
                raise Fault(f"{target.text} cannot be assigned")
            self.must_fit(target.type, self.expression(), f"{target.text} is")
        elif target.kind != "method":
            raise Fault(f"{target.text} alone is no statement")
        elif target.type != NOTHING:
            raise Fault(f"the result of {target.text} is not used")
