"""What expressions are, and whether what is in them fits."""

import dataclasses

from usage.lines import Cursor
from usage.types import BOOLEAN, INTEGER, NIL, STRING, Fault, Type

COMPARISONS = ("=", "<>", "<", ">", "<=", ">=", "is")
LEVELS = (("or",), ("and",), COMPARISONS, ("+", "-"), ("*", "/", "\\"))  # loosest first


@dataclasses.dataclass(frozen=True)
class Value:
    """The type of an expression, its text, and what else it is."""
    type: Type
    text: str
    kind: str = ""  # "variable" for all that can be assigned, "method", "class" for a class itself


class Expressions:
    """Reads the expressions of a line. Raises Fault at the first one that is wrong."""

    def __init__(self, world, source, report, variables):
        self.world, self.source, self.report = world, source, report
        self.scopes = [variables, {}]  # the variables of each open block, by names in lower case
        self.cursor = Cursor([])

    def variable(self, name):
        return next((scope[name.lower()] for scope in reversed(self.scopes)
                     if name.lower() in scope), None)

    def must_fit(self, target, value, what):
        """`what` says what is of the type `target`."""
        if value.kind == "class":
            raise Fault(f"{what} {target}, and {value.text} is a class")
        if not self.world.fits(target, value.type):
            raise Fault(f"{what} {target}, and {value.text} is {value.type}")

    def condition(self):
        self.must_fit(BOOLEAN, self.expression(), "the condition is")

    def expression(self, level=0):
        if level == len(LEVELS):
            return self.sign()
        left = self.expression(level + 1)
        while operator := self.cursor.take(*LEVELS[level]):
            right = self.expression(level + 1)
            kind = self.operation(operator, left, right)
            left = Value(kind, f"{left.text} {operator} {right.text}")
        return left

    def operation(self, operator, left, right):
        """The type of what an operator makes of two values."""
        def are(kind):
            return self.world.fits(kind, left.type) and self.world.fits(kind, right.type)

        fit = self.world.fits(left.type, right.type) or self.world.fits(right.type, left.type)
        if "class" not in (left.kind, right.kind):
            if operator in COMPARISONS and fit or operator in ("and", "or") and are(BOOLEAN):
                return BOOLEAN
            if operator == "+" and are(STRING):
                return STRING
            if operator in "+-*/\\" and are(INTEGER):
                return left.type
        raise Fault(f"{left.text} {operator} {right.text}: "
                    f"{left.type} {operator} {right.type} makes no sense")

    def sign(self):
        if self.cursor.take("not"):
            value = self.sign()
            self.must_fit(BOOLEAN, value, "Not needs")
            return value
        self.cursor.take("-")
        return self.postfix()

    def postfix(self):
        value = self.primary()
        while self.cursor.peek(".", "("):
            if self.cursor.take("."):
                value = self.member(value, self.cursor.word())
            else:
                value = self.element(value, self.arguments())
        return value

    def arguments(self):
        """The values in parentheses, if there are any."""
        values = []
        if not self.cursor.take("(") or self.cursor.take(")"):
            return values
        while not values or self.cursor.take(","):
            values.append(self.expression())
        self.cursor.need(")")
        return values

    def primary(self):
        if self.cursor.kind() == "string":
            return Value(STRING, self.cursor.next())
        if self.cursor.kind() == "number":
            return Value(INTEGER, self.cursor.next())
        if self.cursor.take("("):
            value = self.expression()
            self.cursor.need(")")
            return dataclasses.replace(value, kind="")
        if self.cursor.take("new"):
            return self.construct()
        if self.cursor.take("if"):
            return self.choice()
        return self.name(self.cursor.word())

    def choice(self):
        """If(condition, one, other)"""
        values = self.arguments()
        if len(values) != 3:
            raise Fault("If(...) takes 3 values")
        self.must_fit(BOOLEAN, values[0], "the condition is")
        return Value(values[1].type, "If(...)")

    def name(self, name):
        """A literal, a variable, a member of this class or of the host, or a class."""
        literals = {"nil": NIL, "true": BOOLEAN, "false": BOOLEAN}
        if name.lower() in literals:
            return Value(literals[name.lower()], name)
        kind = self.variable(name)
        if kind:
            return Value(kind, name, "variable")
        members = self.world.members(self.source, name) or \
            self.world.members(self.world.find("Global"), name)
        if members:
            return self.use(members, name)
        found = self.world.find(name)
        if not found:
            raise Fault(f"there is nothing of the name {name}")
        return Value(Type(found.name), name, "class")

    def construct(self):
        """New Name(arguments)"""
        name = self.cursor.word()
        found, arguments = self.world.find(name), self.arguments()
        if not found:
            raise Fault(f"there is no class {name}")
        self.report.uses += found.is_ours
        constructors = self.world.members(found, "Constructor")
        if constructors or arguments or found.is_ours:
            self.choose(constructors, f"New {found.name}", arguments)
        return Value(Type(found.name), f"New {found.name}")

    def member(self, value, name):
        """value.name, with its arguments."""
        text = f"{value.text}.{name}"
        nested = self.world.find(f"{value.type.name}.{name}")
        if nested and value.kind == "class":
            return Value(Type(nested.name), text, "class")
        owner = self.world.find("Array" if value.type.rank else value.type.name)
        members = self.world.members(owner, name) if owner else []
        if not members:
            raise Fault(f"{value.type} has no member {name}")
        self.report.uses += owner.is_ours
        if value.kind == "class" and not members[0].is_shared:
            raise Fault(f"{text} needs an object, and {value.text} is the class")
        if value.kind != "class" and members[0].is_shared:
            raise Fault(f"{text} is shared: write {owner.name}.{name}")
        return self.use(members, text, value.type.name)

    def use(self, members, text, element=""):
        """Reads a property, or calls the method that fits the arguments."""
        if members[0].parameters is None:
            return Value(members[0].type, text, "variable" if members[0].is_writable else "")
        arguments = self.arguments()
        kind = self.choose(members, text, arguments, element).type
        return Value(Type(element) if kind.name == "Element" else kind, f"{text}(...)", "method")

    def choose(self, members, text, arguments, element=""):
        """The method that takes these arguments."""
        wrong = []
        for member in members:
            needed = sum(not each.is_optional for each in member.parameters)
            if not needed <= len(arguments) <= len(member.parameters):
                wrong.append(f"{len(member.parameters)} arguments, and not {len(arguments)}")
                continue
            try:
                for parameter, value in zip(member.parameters, arguments):
                    name = parameter.type.name
                    self.must_fit(Type(element) if name == "Element" else parameter.type, value,
                                  f"{parameter.name} as")
                return member
            except Fault as fault:
                wrong.append(str(fault))
        raise Fault(f"{text} takes {' or '.join(wrong)}" if wrong else f"{text} has no constructor")

    def element(self, value, arguments):
        """value(index)"""
        if value.kind == "class" or not value.type.rank or len(arguments) != 1:
            raise Fault(f"{value.text} is {value.type} and takes no index")
        self.must_fit(INTEGER, arguments[0], "an index is")
        return Value(Type(value.type.name), f"{value.text}(...)", "variable")
