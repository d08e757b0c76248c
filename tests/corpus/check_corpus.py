#!/usr/bin/env python3
"""Checks the message corpus: every message has its expected results, in the format of README.md.

Prints one line per fault and ends with 1 if there is any, also when there is no message at all.
It knows the format and what any result must satisfy; it parses no mail.

Usage: check_corpus.py [folder]     (the folder of this file when none is given)
"""

import base64
import json
import pathlib
import re
import sys

ASCII = 0x0600
UTF8 = 0x08000100
UNKNOWN = 0xFFFF
# Give way to ASCII when every byte is low: Mac Roman, Latin-1, Windows Latin-1, unknown.
BECOME_ASCII = {0x0000, 0x0201, 0x0500, UNKNOWN}
# Encodings in which a string can be built; UTF-16 is not among them, it is handed over as UTF-8.
ENCODINGS = (
    BECOME_ASCII
    | {ASCII, UTF8, 0x04000100, 0x0007, 0x0400, 0x0405, 0x0406, 0x0510, 0x0630, 0x0631}
    | {0x0830, 0x0831, 0x0840, 0x0920, 0x0930, 0x0931, 0x0940}
    | set(range(0x0202, 0x0211)) | set(range(0x0410, 0x041E)) | set(range(0x0420, 0x0424))
    | set(range(0x0501, 0x0509)) | set(range(0x0820, 0x0824)) | set(range(0x0A01, 0x0A0A))
)
EXCEPTION_CLASSES = {
    "IOException", "OutOfBoundsException", "OutOfMemoryException", "RuntimeException",
    "UnsupportedFormatException", "UnsupportedOperationException",
}
REFUSED = "UnsupportedOperationException"  # raised before parsing: nothing but the source is filled
REQUIRED = ("about", "rule", "source", "message")
OPTIONAL = ("crlf", "raise_unknown_formats", "exception")

# The objects of a message and their keys: those of `zqv json`. Whatever is nil, false or empty is
# left out.
SHAPES = json.loads((pathlib.Path(__file__).resolve().parents[2] / "docs/schema.json")
                    .read_text(encoding="utf-8"))["$defs"]
# Keys of a message that stand beside "message" (the source), or that no class gives.
NO_KEYS = {"message": ("source", "date_utc")}
COMMON = "common.json"
PATTERNS = {
    "date": re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d"),
    "part_number": re.compile(r"0|[1-9]\d*(\.[1-9]\d*)*"),
}
NAME = re.compile(r"[a-z0-9]+(-[a-z0-9]+)*")


def kind_of(held):
    """What the schema says of a value, in words: "text", "integer", "array of mailbox"."""
    held = held.get("anyOf", [held])[0]
    if held.get("type") == "array":
        return "array of " + kind_of(held["items"])
    return held["type"] if "type" in held else held["$ref"].removeprefix("#/$defs/")


def objects_below(kind, found=()):
    """The kinds of objects that one of this kind holds, itself included."""
    if kind in found or "properties" not in SHAPES.get(kind, {}):
        return found
    found = (*found, kind)
    for held in SHAPES[kind]["properties"].values():
        found = objects_below(kind_of(held).removeprefix("array of "), found)
    return found


def is_never_empty(key, kind):
    """Whether every object has this key. Each attachment describes a part of its message."""
    return kind in ("integer", "part_number") or key == "parts"


class Checker:
    """Collects the faults of one expected-results file."""

    def __init__(self, label, common):
        self.label = label
        self.common = common
        self.faults = []

    def fault(self, where, what):
        self.faults.append(f"{self.label}: {where}: {what}")

    def expect(self, condition, where, what):
        if not condition:
            self.fault(where, what)
        return condition

    def keys(self, value, where, required, optional=()):
        """True when `value` is an object with all required keys and no unknown ones."""
        if not self.expect(isinstance(value, dict), where, "must be an object"):
            return False
        missing = [key for key in required if key not in value]
        unknown = [key for key in value if key not in required and key not in optional]
        for key in missing:
            self.fault(where, f"lacks {key!r}")
        for key in unknown:
            self.fault(where, f"unknown key {key!r}")
        return not missing

    def sentence(self, value, where):
        self.expect(isinstance(value, str) and len(value) > 10 and value.endswith("."), where,
                    "must be a sentence that ends in a full stop")

    def string_bytes(self, value, where):
        """The bytes of a host string value, or None when it states them wrongly."""
        if ("text" in value) == ("bytes_base64" in value):
            self.fault(where, "needs exactly one of 'text' and 'bytes_base64'")
            return None
        name = "text" if "text" in value else "bytes_base64"
        if not self.expect(isinstance(value[name], str), where, f"{name!r} must be a string"):
            return None
        if name == "text":
            return value["text"].encode("utf-8")
        try:
            return base64.b64decode(value["bytes_base64"], validate=True)
        except ValueError as error:
            self.fault(where, f"bad base64: {error}")
            return None

    def host_string(self, value, where):
        """A host string: a text, or bytes with the encoding number they are built in."""
        if isinstance(value, str):
            self.expect(value and not value.startswith("@"), where,
                        "a text form is not empty and does not begin with @")
            self.expect("\n" not in value, where, "holds a line end: needs 'line_ends'")
            return
        if not self.keys(value, where, (), ("encoding", "text", "bytes_base64", "line_ends")):
            return
        data = self.string_bytes(value, where)
        if data is None:
            return
        self.expect(data, where, "a string of no bytes is nil: leave it out")
        self.encoding(value, data, where)
        self.line_ends(value, data, where)

    def encoding(self, value, data, where):
        usual = ASCII if data.isascii() else UTF8
        encoding = value.get("encoding", usual if "text" in value else None)
        if not self.expect(type(encoding) is int and encoding in ENCODINGS, where,
                           f"no encoding of a host string: {encoding!r}"):
            return
        if data.isascii():
            self.expect(encoding not in BECOME_ASCII, where,
                        f"low bytes only, so encoding {encoding} becomes {ASCII}")
        elif "text" in value:
            self.expect(encoding == UTF8, where,
                        "high bytes in another encoding than UTF-8: use 'bytes_base64'")

    def line_ends(self, value, data, where):
        if b"\n" not in data:
            self.expect("line_ends" not in value, where, "'line_ends' without a line end")
            return
        ends = value.get("line_ends")
        self.expect(ends in ("message", "decoder"), where,
                    "holds a line end: 'line_ends' must be 'message' or 'decoder'")
        self.expect(ends != "message" or b"\r" not in data, where,
                    "line ends of the message are LF in the file")

    def fields(self, value, where):
        if not self.expect(isinstance(value, list) and value, where, "must be a list with entries"):
            return
        for number, pair in enumerate(value):
            at = f"{where}[{number}]"
            if self.expect(isinstance(pair, list) and len(pair) in (1, 2), at,
                           "must be [name] or [name, value]"):
                for element in pair:
                    self.host_string(element, at)

    def value(self, value, kind, where):
        """One value of the kind that the schema names."""
        if kind == "array of field":
            self.fields(value, where)
        elif kind.startswith("array of "):
            if self.expect(isinstance(value, list) and value, where,
                           "must be a list with entries"):
                for number, element in enumerate(value):
                    self.value(element, kind.removeprefix("array of "), f"{where}[{number}]")
        elif kind == "text":
            self.host_string(value, where)
        elif kind == "boolean":
            self.expect(value is True, where, "false is left out")
        elif kind == "integer":
            self.expect(type(value) is int and value >= 0, where, "must be a count")
        elif kind in PATTERNS:
            self.expect(isinstance(value, str) and PATTERNS[kind].fullmatch(value), where,
                        f"must be a {kind}")
        else:
            self.shaped(value, kind, where)

    def shaped(self, value, kind, where):
        if isinstance(value, str):
            self.expect(value[:1] == "@" and value[1:] in self.common, where,
                        f"no object and no name in {COMMON}: {value!r}")
            return
        shape = {key: kind_of(held) for key, held in SHAPES[kind]["properties"].items()
                 if key not in NO_KEYS.get(kind, ())}
        required = [key for key in shape if is_never_empty(key, shape[key])]
        if not self.keys(value, where, required, tuple(shape)):
            return
        for key, member in value.items():
            if key in shape:
                self.value(member, shape[key], f"{where}.{key}")

    def source(self, value, message):
        if value is None:
            self.expect(not message, "source", "only the source of no bytes is null")
            return
        if self.keys(value, "source", ("encoding",)):
            wanted = ASCII if message.isascii() else UNKNOWN
            self.expect(message, "source", "the source of no bytes is null")
            self.expect(value["encoding"] == wanted, "source",
                        f"encoding must be {wanted} for these bytes")

    def parts(self, message):
        """Numbers depth-first, each part with header and body, attachments of parts there are."""
        parts = [part for part in message["parts"] if isinstance(part, dict)]
        numbers = [part.get("number") for part in parts]
        self.expect(numbers[:1] == ["0"], "parts", "begin with the message, number 0")
        seen = {"0": 0}
        for number in numbers[1:]:
            parent, _, ordinal = str(number).rpartition(".")
            parent = parent or "0"
            self.expect(seen.get(parent, -1) + 1 == int(ordinal or 0), "parts",
                        f"{number} is out of order")
            seen[parent] = seen.get(parent, 0) + 1
            seen[str(number)] = 0
        for key in ("attachments", "inlines"):
            for record in message.get(key, []):
                self.expect(record.get("part") in numbers, key, "describes no part of the message")
        for part in parts:
            self.expect(len(parts) == 1 or ("header" in part and "body" in part),
                        f"part {part.get('number')}", "has a header and a body, be they {}")

    def exception(self, expected):
        """The exception, and that a refused message has nothing filled."""
        refused = False
        if "exception" in expected:
            value = expected["exception"]
            if self.keys(value, "exception", ("class", "message")):
                self.expect(str(value["class"]) in EXCEPTION_CLASSES, "exception.class",
                            "unknown class")
                self.expect(isinstance(value["message"], str) and value["message"],
                            "exception.message", "must be a text that is not empty")
                refused = value["class"] == REFUSED
        top = expected["message"]["parts"][0]
        self.expect(("header" in top) != refused and ("body" in top) != refused, "parts",
                    "a message without header and body is one that was refused")
        if refused:
            self.expect(expected["message"] == {"parts": [{"number": "0"}]}, "message",
                        "is empty: it was refused")

    def expected(self, value, message):
        if not self.keys(value, "top level", REQUIRED, OPTIONAL):
            return
        self.sentence(value["about"], "about")
        self.sentence(value["rule"], "rule")
        for key, wanted in (("crlf", False), ("raise_unknown_formats", True)):
            self.expect(value.get(key, wanted) is wanted, key, f"can only be {wanted}")
        self.source(value["source"], message)
        before = len(self.faults)
        self.value(value["message"], "message", "message")
        if len(self.faults) == before:
            self.parts(value["message"])
            self.exception(value)


def unique_keys(pairs):
    keys = [key for key, _ in pairs]
    for key in keys:
        if keys.count(key) > 1:
            raise ValueError(f"key {key!r} occurs twice")
    return dict(pairs)


def load(path):
    return json.loads(path.read_text(encoding="utf-8"), object_pairs_hook=unique_keys)


def check_message(path, label, common):
    """The faults of one message and its results file, and the results' 'about' text."""
    checker = Checker(label, common)
    message = path.read_bytes()
    checker.expect(b"\r" not in message, "message", "has a carriage return: lines end in LF")
    try:
        value = load(path.with_suffix(".json"))
    except (OSError, ValueError) as error:
        checker.fault("expected results", str(error))
        return checker.faults, None
    checker.expected(value, message)
    about = value.get("about") if isinstance(value, dict) else None
    return checker.faults, about if isinstance(about, str) else None


def check_common(root):
    """The named objects, and their faults: each must be of one of the shapes."""
    try:
        common = load(root / COMMON)
    except (OSError, ValueError) as error:
        return {}, [f"{COMMON}: {error}"]
    faults = []
    for name, value in common.items():
        kinds = objects_below("message")
        checkers = [Checker(COMMON, common) for _ in kinds]
        for checker, kind in zip(checkers, kinds):
            checker.shaped(value, kind, name)
        if not any(checker.faults == [] for checker in checkers):
            faults.append(f"{COMMON}: {name}: is no object of any kind")
    return common, faults


def check_folder(root):
    """All faults below `root`, and the number of messages seen."""
    common, faults = check_common(root)
    seen, count = {}, 0
    for path in sorted(p for p in root.glob("*/*")):
        label = str(path.relative_to(root))
        if not path.is_file() or path.suffix not in (".eml", ".json"):
            faults.append(f"{label}: only <origin>/<what-is-odd>.eml and .json belong here")
            continue
        if not NAME.fullmatch(path.stem) or not NAME.fullmatch(path.parent.name):
            faults.append(f"{label}: names are lower-case words joined by dashes")
        if path.suffix == ".json":
            if not path.with_suffix(".eml").exists():
                faults.append(f"{label}: has no message")
            continue
        count += 1
        found, about = check_message(path, label, common)
        faults += found
        if about is not None and seen.setdefault(about, label) != label:
            faults.append(f"{label}: same 'about' as {seen[about]}")
    if count == 0:
        faults.append(f"{root}: no message found")
    return faults, count


def main(arguments):
    if len(arguments) > 1:
        print(__doc__, file=sys.stderr)
        return 2
    root = pathlib.Path(arguments[0]) if arguments else pathlib.Path(__file__).parent
    faults, count = check_folder(root)
    for fault in faults:
        print(fault, file=sys.stderr)
    print(f"{count} messages, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
