"""The statements of a method or of a block of code."""

from usage.declarations import SCOPE_WORDS, declaration_of, property_of
from usage.expressions import COMPARISONS, Expressions
from usage.lines import Cursor
from usage.model import BOOLEAN, INTEGER, NUMBERS, UNKNOWN, Misunderstood, Type, Value

CLOSERS = {"next": "for", "wend": "while", "loop": "do"}
MIDDLES = {"else": {"if"}, "elseif": {"if"}, "case": {"select"}, "catch": {"try"},
           "finally": {"try"}}


class Body(Expressions):
    """Reads the lines of one method or block, with the types of its variables."""

    def __init__(self, world, source, report, variables):
        super().__init__(world, source, report, variables)
        self.blocks = []  # (word, line) of those that are open
        self.result = None  # the declared type of the function, None in a Sub
        self.in_method = False

    def run(self, lines):
        for self.line in lines:
            self.cursor = Cursor(self.line.tokens)
            depth = len(self.blocks)
            try:
                self.statement()
                self.cursor.end()
            except Misunderstood as error:
                self.misunderstood(str(error), depth)
        for word, line in self.blocks:
            self.report.fault(line, f"this {word} has no end")
        self.scopes[0].update(self.scopes[1])

    def misunderstood(self, text, depth):
        """A fault when the line has to do with our classes or opens a block, else a note."""
        names = (text for kind, text in self.line.tokens if kind == "word")
        kinds = [Type(name) for name in names]
        kinds += [self.variable(kind.name) for kind in kinds if self.variable(kind.name)]
        if any(self.world.is_ours(kind) for kind in kinds) or len(self.blocks) != depth:
            self.report.fault(self.line, f"not understood: {text}")
        else:
            self.report.note(self.line, text)

    # Variables and blocks.

    def declare(self, name, kind):
        """Gives the type, unknown when there is none of this name."""
        if not self.world.find(kind.name, self.source) and kind.key not in NUMBERS:
            if kind.key.endswith("zqv"):
                self.fault(f"there is no class {kind.name}")
            else:
                self.report.note(self.line, f"the type {kind.name}")
            kind = UNKNOWN
        if name.lower() in self.scopes[-1]:
            self.fault(f"{name} is declared a second time")
        self.scopes[-1][name.lower()] = kind
        return kind

    def open(self, word):
        self.blocks.append((word, self.line))
        self.scopes.append({})

    def middle(self, word):
        if not self.blocks or self.blocks[-1][0] not in MIDDLES[word]:
            self.fault(f"{word} stands outside of its block")
            return
        self.scopes[-1] = {}

    def close(self, word):
        """Ends a block; an End alone ends any."""
        if not self.blocks or word not in ("", self.blocks[-1][0]):
            self.fault(f"this ends no {word or 'block'}")
            return
        self.blocks.pop()
        self.scopes.pop()

    # Statements.

    def statement(self):
        cursor = self.cursor
        words = {"var": self.declare_variables, "dim": self.declare_variables,
                 "static": self.declare_variables, "const": self.constant, "for": self.loop,
                 "if": self.condition, "while": self.while_loop, "do": self.do_loop,
                 "select": self.select, "case": self.case, "try": lambda: self.open("try"),
                 "catch": self.catch, "return": self.give_back, "raise": self.expression,
                 "call": self.expression, "end": self.end, "elseif": self.else_if,
                 "addhandler": self.handler, "removehandler": self.handler}
        if cursor.kind() == "unknown" and cursor.peek("#"):
            cursor.at = len(cursor.tokens)  # for the compiler
        elif cursor.peek("else", "finally"):
            self.middle(cursor.take("else", "finally"))
        elif cursor.peek(*CLOSERS):
            self.closer()
        elif cursor.peek("exit", "continue", "break"):
            cursor.at = len(cursor.tokens)
        elif self.source.is_document and property_of(self.line):
            cursor.at = len(cursor.tokens)  # a member of the page already
        elif cursor.peek("function", "sub", "shared", *SCOPE_WORDS):
            self.method()
        elif cursor.peek("get", "set") and len(cursor.tokens) == 1:
            self.open(cursor.take("get", "set"))
        elif cursor.peek(*words) and not self.is_assigned_name():
            words[cursor.take(*words)]()
        else:
            self.assignment_or_call()

    def is_assigned_name(self):
        """Some words of the language are also names of members and variables."""
        return len(self.cursor.tokens) > 1 and self.cursor.tokens[1][1] in (".", "=")

    def method(self):
        member = declaration_of(self.line)
        self.cursor.at = len(self.cursor.tokens)
        if member is None:
            raise Misunderstood("a declaration of another kind")
        self.open("sub" if member.type is None else "function")
        self.result, self.in_method = member.type, True
        for parameter in member.parameters:
            self.declare(parameter.name, parameter.type)

    def handler(self):
        """AddHandler object.Event, AddressOf Method"""
        event = self.postfix()
        if event.type is not None and event.type.is_known:
            self.fault(f"{event.text} is no event")
        self.cursor.need(",")
        self.cursor.need("addressof")
        name = self.cursor.next("word")
        methods = self.world.members(self.source.itself, name)
        if not methods:
            self.report.note(self.line, f"the method {name}")
        elif methods[0].kind != "method" or not methods[0].parameters:
            self.fault(f"{name} is no method that takes the object whose event it handles")

    def declare_variables(self):
        """Var a, b() As T = value, c As New T(arguments)"""
        while True:
            names = [self.declared_name()]
            while self.cursor.take(","):
                names.append(self.declared_name())
            self.cursor.need("as")
            if self.cursor.peek("new"):
                kind = self.construct().type
                value = None
            else:
                kind = self.cursor.type_name()
                value = self.expression() if self.cursor.take("=") else None
            for name, rank in names:
                declared = self.declare(name, Type(kind.name, max(rank, kind.rank)))
                if value:
                    self.must_fit(declared, value, f"{name} is")
            if not self.cursor.take(","):
                return

    def declared_name(self):
        name, rank = self.cursor.next("word"), 0
        if self.cursor.take("("):
            rank = 1
            if not self.cursor.peek(")"):
                self.must_fit(INTEGER, self.expression(), "the bound is")
            self.cursor.need(")")
        return name, rank

    def constant(self):
        name = self.cursor.next("word")
        declared = self.cursor.type_name() if self.cursor.take("as") else None
        self.cursor.need("=")
        value = self.expression()
        kind = self.declare(name, declared or value.type)
        self.must_fit(kind, value, f"{name} is")

    def loop(self):
        self.open("for")
        if self.cursor.take("each"):
            self.each()
            return
        name = self.cursor.next("word")
        kind = self.variable(name) or UNKNOWN
        if self.cursor.take("as"):
            kind = self.declare(name, self.cursor.type_name())
        self.cursor.need("=")
        self.must_fit(kind, self.expression(), f"{name} is")
        self.cursor.need("to", "downto")
        self.must_fit(kind, self.expression(), f"{name} is")
        if self.cursor.take("step"):
            self.must_fit(kind, self.expression(), f"{name} is")

    def each(self):
        name = self.cursor.next("word")
        declared = self.cursor.type_name() if self.cursor.take("as") else None
        self.cursor.need("in")
        value = self.expression()
        element = self.element(value, f"For Each needs an array, and {value.text} is")
        kind = self.declare(name, declared) if declared else self.variable(name) or UNKNOWN
        self.must_fit(kind, Value(element, value.ours, text=f"an element of {value.text}"),
                      f"{name} is")

    def element(self, value, text):
        if value.type is None or (value.type.is_known and not value.type.rank):
            self.fault(f"{text} {value.type or 'nothing'}")
            return UNKNOWN
        return Type(value.type.name) if value.type.is_known else UNKNOWN

    def condition(self):
        self.truth()
        self.cursor.need("then")
        if self.cursor.at == len(self.cursor.tokens):
            self.open("if")
            return
        self.statement()
        if self.cursor.take("else"):
            self.statement()

    def else_if(self):
        self.middle("elseif")
        self.truth()
        self.cursor.need("then")

    def truth(self):
        self.must_fit(BOOLEAN, self.expression(), "the condition is")

    def while_loop(self):
        self.truth()
        self.open("while")

    def do_loop(self):
        self.open("do")
        if self.cursor.take("until"):
            self.truth()

    def closer(self):
        word = self.cursor.take(*CLOSERS)
        if word == "loop" and self.cursor.take("until"):
            self.truth()
        if word == "next" and self.cursor.kind() == "word":
            self.cursor.next("word")
        self.close(CLOSERS[word])

    def select(self):
        self.cursor.need("case")
        self.expression()
        self.open("select")

    def case(self):
        self.middle("case")
        if self.cursor.take("else"):
            return
        while True:
            if self.cursor.take("is"):
                self.cursor.need(*COMPARISONS)
            self.expression()
            if self.cursor.take("to"):
                self.expression()
            if not self.cursor.take(","):
                return

    def catch(self):
        self.middle("catch")
        if self.cursor.kind() == "word":
            name = self.cursor.next("word")
            self.cursor.need("as")
            self.declare(name, self.cursor.type_name())

    def end(self):
        word = self.cursor.take("if", "select", "try", "function", "sub", "get", "set")
        self.close(word)
        if word in ("function", "sub"):
            self.result, self.in_method = None, False

    def give_back(self):
        if self.cursor.at == len(self.cursor.tokens) or self.cursor.peek("else"):
            if self.result is not None:
                self.fault(f"this Return gives nothing, and the function {self.result}")
            return
        value = self.expression()
        if self.result is not None:
            self.must_fit(self.result, value, "the function gives")
        elif self.in_method:
            self.fault("a Sub gives nothing back")

    def assignment_or_call(self):
        value = self.postfix()
        operator = self.cursor.take("=", "+=", "-=", "*=", "/=")
        if operator:
            self.assign(value, operator)
        elif self.cursor.at < len(self.cursor.tokens) and not self.cursor.peek("else"):
            raise Misunderstood(self.cursor.rest())
        elif value.kind in ("property", "variable", "element") or value.of_class:
            self.fault(f"{value.text} alone is no statement")
        elif value.type is not None and value.type.is_known:
            self.fault(f"the result of {value.text} is not used: put Call before it, or take it")

    def assign(self, target, operator):
        value = self.expression()
        if target.assignable:
            self.fault(f"{target.text} cannot be assigned: {target.assignable}")
        elif operator != "=":
            self.operands(operator[0], target, value)
        elif target.type is not None:
            self.must_fit(target.type, value, f"{target.text} is")
