"""What expressions are, and whether what is in them fits."""

import dataclasses

from usage.model import (BOOLEAN, DOUBLE, INTEGER, NIL, NUMBERS, STRING, UNKNOWN, Misunderstood,
                         Type, Value)

COMPARISONS = {"=", "<>", "<", ">", "<=", ">="}


def describe(count):
    return f"{count} argument" + ("" if count == 1 else "s")


class Expressions:
    """Reads the expressions of a line, loosest operators first."""

    def __init__(self, world, source, report, variables):
        self.world, self.source, self.report = world, source, report
        self.scopes = [variables, {}]  # what was known before, and what the body declares
        self.line = None
        self.cursor = None

    def fault(self, text):
        self.report.fault(self.line, text)

    def variable(self, name):
        for scope in reversed(self.scopes):
            if name.lower() in scope:
                return scope[name.lower()]
        return None

    def must_fit(self, kind, value, text):
        if value.of_class:
            self.fault(f"{value.text} is a class, and a value is asked for")
        elif not self.world.fits(kind, value.type):
            given = "nothing" if value.type is None else value.type
            self.fault(f"{text} {kind}, and {value.text} is {given}")

    def expression(self):
        value = self.conjunction()
        while self.cursor.peek("or", "xor"):
            value = self.logical(self.cursor.take("or", "xor"), value, self.conjunction())
        return value

    def conjunction(self):
        value = self.negation()
        while self.cursor.take("and"):
            value = self.logical("and", value, self.negation())
        return value

    def logical(self, operator, left, right):
        for side in (left, right):
            if self.known(side) and side.type.key not in NUMBERS | {"boolean", "variant"}:
                self.fault(f"{side.text} beside {operator} is {side.type}")
        return Value(left.type, text=f"{left.text} {operator} {right.text}")

    def negation(self):
        if self.cursor.take("not"):
            value = self.negation()
            self.must_fit(BOOLEAN, value, "Not needs")
            return Value(BOOLEAN, text=f"Not {value.text}")
        return self.comparison()

    def comparison(self):
        left = self.sum()
        while self.cursor.peek(*COMPARISONS, "is", "isa"):
            operator = self.cursor.take(*COMPARISONS, "is", "isa")
            right = self.sum()
            text = f"{left.text} {operator} {right.text}"
            if operator == "isa":
                if not right.of_class and right.type.is_known:
                    self.fault(f"{right.text} behind IsA is no class")
            elif not (self.comparable(left, right, operator)):
                self.fault(f"{text} compares {left.type} with {right.type}")
            left = Value(BOOLEAN, text=text)
        return left

    def comparable(self, left, right, operator):
        if not (self.known(left) and self.known(right)):
            return not (left.of_class or right.of_class)
        if operator == "is":
            for side in (left, right):
                if side.type not in (NIL, Type("Variant")) and not self.world.is_object(side.type):
                    return False
        return self.world.fits(left.type, right.type) or self.world.fits(right.type, left.type)

    def known(self, value):
        return not value.of_class and value.type is not None and value.type.is_known

    def sum(self):
        value = self.product()
        while self.cursor.peek("+", "-"):
            value = self.operands(self.cursor.take("+", "-"), value, self.product())
        return value

    def product(self):
        value = self.unary()
        while self.cursor.peek("*", "/", "\\", "mod", "^"):
            operator = self.cursor.take("*", "/", "\\", "mod", "^")
            value = self.operands(operator, value, self.unary())
        return value

    def operands(self, operator, left, right):
        text = f"{left.text} {operator} {right.text}"
        for side in (left, right):
            bad = side.of_class or side.type is None or side.type == NIL or side.type.rank
            strings = operator != "+" and not bad and side.type.key == "string"
            if bad or strings or (side.type.is_known and self.world.is_object(side.type)):
                self.fault(f"{side.text} beside {operator} is {side.type or 'nothing'}")
                return Value(UNKNOWN, text=text)
        if not (left.type.is_known and right.type.is_known):
            return Value(UNKNOWN, text=text)
        kinds = {left.type.key, right.type.key} - {"variant"}
        if "string" in kinds and len(kinds) > 1 and "endofline" not in kinds:
            self.fault(f"{text} adds {left.type} and {right.type}")
        if kinds & {"string", "endofline"}:
            return Value(STRING, text=text)
        return Value(DOUBLE if "double" in kinds or operator == "/" else INTEGER, text=text)

    def unary(self):
        if self.cursor.take("-", "+"):
            return self.unary()
        return self.postfix()

    def postfix(self):
        value = self.primary()
        while True:
            if self.cursor.take("."):
                value = self.member(value, self.cursor.next("word"))
            elif self.cursor.peek("("):
                value = self.index(value, self.arguments())
            else:
                return value

    def arguments(self):
        """The values in parentheses, or None where there are none."""
        if not self.cursor.take("("):
            return None
        values = []
        while not self.cursor.peek(")"):
            values.append(self.expression())
            if not self.cursor.take(","):
                break
        self.cursor.need(")")
        return values

    def primary(self):
        cursor = self.cursor
        if cursor.kind() == "string":
            return Value(STRING, text=cursor.next("string"))
        if cursor.kind() == "number":
            text = cursor.next("number")
            is_whole = text.startswith("&") or text.isdigit()
            return Value(INTEGER if is_whole else DOUBLE, text=text)
        if cursor.peek("("):
            values = self.arguments()
            if len(values) != 1:
                raise Misunderstood("parentheses with several values")
            return dataclasses.replace(values[0], kind="")
        if cursor.peek("new"):
            return self.construct()
        return self.name(cursor.next("word"))

    def name(self, text):
        literals = {"nil": NIL, "true": BOOLEAN, "false": BOOLEAN}
        key = text.lower()
        if key in literals:
            return Value(literals[key], text=text)
        if key in ("self", "me"):
            return Value(Type(self.source.itself.name), text=text)
        if key == "if":
            return self.choice()
        kind = self.variable(text)
        if kind is not None:
            ours = self.world.is_ours(kind)
            self.report.uses += ours
            return Value(kind, ours, text=text, kind="variable")
        return self.global_name(text)

    def choice(self):
        """If(condition, one, other)"""
        values = self.arguments()
        if values is None or len(values) != 3:
            raise Misunderstood("If without three values")
        self.must_fit(BOOLEAN, values[0], "the condition is")
        return Value(values[1].type, values[1].ours, text="If(...)")

    def global_name(self, text):
        """A member of this class, a global method of a module, of the host, or a class."""
        owners = [self.source.itself]
        owners += [other.itself for other in self.world.project if other.itself.is_module]
        owners.append(self.world.host["global"])
        for owner in owners:
            members = self.world.members(owner, text)
            if members:
                return self.use(members, text, False)
        cls = self.world.find(text, self.source)
        if cls:
            ours = cls.owner == "library"
            self.report.uses += ours
            return Value(Type(cls.name), ours, "it is a class", cls, text)
        self.report.note(self.line, f"the name {text}")
        arguments = self.arguments()
        return Value(UNKNOWN, text=text, kind="method" if arguments is not None else "")

    def construct(self):
        """New T(arguments)"""
        self.cursor.need("new")
        name = self.cursor.next("word")
        while self.cursor.take("."):
            name += "." + self.cursor.next("word")
        arguments = self.arguments() or []
        cls = self.world.find(name, self.source)
        if not cls:
            return Value(Type(name), text=f"New {name}")
        ours = cls.owner == "library"
        self.report.uses += ours
        constructors = self.world.members(cls, "Constructor")
        if any(each.private for each in constructors):
            self.fault(f"the constructor of {cls.name} is private")
        elif constructors:
            self.choose(constructors, f"New {cls.name}", arguments, ours)
        elif arguments and cls.owner != "host":
            self.fault(f"New {cls.name} takes no arguments")
        return Value(Type(cls.name), ours, "it is new", text=f"New {cls.name}")

    def member(self, value, name):
        """value.name, with its arguments."""
        text = f"{value.text}.{name}"
        if value.type is None:
            self.fault(f"{value.text} gives nothing that could have a member {name}")
            return self.lost(text)
        if not value.type.is_known:
            return self.lost(text)
        nested = self.world.find(f"{value.type.name}.{name}") if value.of_class else None
        if nested:
            return Value(Type(nested.name), value.ours, "it is a type", nested, text)
        cls = self.world.find(value.type.name, self.source)
        if value.type.rank:
            cls = self.world.host["array"]
        elif value.type.key in NUMBERS and not cls:
            cls = self.world.host["integer"]
        members = self.world.members(cls, name)
        self.report.uses += cls.owner == "library"
        if not members:
            self.no_member(value, cls, name)
            return self.lost(text)
        if not self.reachable(value, cls, members[0], text):
            return self.lost(text)
        element = value.type.name if value.type.rank else ""
        return self.use(members, text, value.ours or cls.owner == "library", element)

    def no_member(self, value, cls, name):
        owner = str(value.type)
        if cls.owner != "host" or value.ours:
            self.fault(f"{owner} has no member {name}")
        else:
            self.report.note(self.line, f"the member {name} of {owner}")

    def reachable(self, value, cls, member, text):
        """Shared members stand behind the class, others behind an object."""
        if cls.is_module:
            return True
        if value.of_class and not member.shared:
            self.fault(f"{text} needs an object, and {value.text} is the class")
            return False
        if not value.of_class and member.shared and cls.owner == "library":
            self.fault(f"{text} is shared: write {cls.name}.{member.name}")
            return False
        return True

    def lost(self, text):
        self.arguments()
        return Value(UNKNOWN, text=text)

    def use(self, members, text, ours, element=""):
        """Reads a property, or calls the method that fits the arguments."""
        arguments = self.arguments()
        first = members[0]
        if first.kind == "property":
            why = "" if first.writable else "it is read-only"
            value = Value(first.type, ours, why, text=text, kind="property")
            return value if arguments is None else self.index(value, arguments)
        chosen = self.choose(members, text, arguments or [], ours, element)
        if chosen is None:
            return Value(UNKNOWN, ours, text=text, kind="method")
        if arguments and not chosen.parameters:  # these index what the method gives
            value = Value(chosen.type, ours, text=text, kind="method")
            return self.index(value, arguments)
        kind = UNKNOWN if chosen.type == Type("Element") else chosen.type
        shown = text if arguments is None else f"{text}(...)"
        return Value(kind, ours, "it is a method", text=shown, kind="method")

    def choose(self, members, text, arguments, ours, element=""):
        """The method whose parameters fit, or None."""
        fitting = [member for member in members if member.takes(len(arguments))]
        if not fitting:
            if len(arguments) == 1 and any(m.type and m.type.rank for m in members):
                return next(m for m in members if m.type and m.type.rank)
            counts = " or ".join(sorted({str(len(m.parameters)) for m in members}))
            self.fault(f"{text} takes {counts}, and not {describe(len(arguments))}")
            return None
        faults = []
        for member in fitting:
            wrong = self.misfit(member, arguments, element)
            if not wrong:
                return member
            faults.append(wrong)
        self.fault(f"{text}: {'; or '.join(faults)}")
        return None

    def misfit(self, member, arguments, element):
        """Which argument does not fit a method, "" when all do."""
        for parameter, value in zip(member.parameters, arguments):
            kind = parameter.type
            if element and kind.name == "Element":
                kind = Type(element)
            if value.of_class or not self.world.fits(kind, value.type):
                given = "a class" if value.of_class else value.type or "nothing"
                return f"{parameter.name} is {kind}, and {value.text} is {given}"
        return ""

    def index(self, value, arguments):
        """value(arguments): an element of an array, or a cast to a class."""
        if value.of_class and not value.of_class.is_module:
            return self.cast(value, arguments)
        if value.type is None or not value.type.is_known:
            return Value(UNKNOWN, value.ours, text=value.text, kind="method")
        if not value.type.rank or len(arguments) != 1:
            self.fault(f"{value.text} is {value.type} and takes not {describe(len(arguments))}")
            return Value(UNKNOWN, value.ours, text=value.text)
        self.must_fit(INTEGER, arguments[0], "an index is")
        return Value(Type(value.type.name), value.ours, text=f"{value.text}(...)", kind="element")

    def cast(self, value, arguments):
        """Class(object): of the same family, either way."""
        if len(arguments) != 1:
            self.fault(f"{value.text}(...) converts one value, and not {len(arguments)}")
        elif not (self.world.fits(value.type, arguments[0].type)
                  or self.world.fits(arguments[0].type, value.type)):
            self.fault(f"{arguments[0].text} is {arguments[0].type} and never {value.type}")
        return Value(value.type, value.ours, "it is converted", text=f"{value.text}(...)")
