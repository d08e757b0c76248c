#!/usr/bin/env python3
"""Checks the message corpus: every message has its expected results, in the format of README.md.

Prints one line per fault and ends with 1 if there is any, also when there is no message at all.
It knows the format and what any result must satisfy; it parses no mail.

Usage: check_data.py [folder]     (the folder messages/ beside this file when none is given)
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
REQUIRED = ("about", "rule", "source", "html_text", "body_decoded", "attachments", "inlines",
            "parts")
OPTIONAL = ("crlf", "raise_unknown_formats", "exception", "subject", "sent_date", "received_date",
            "plain_text", "child_bodies")
NAME = re.compile(r"[a-z0-9]+(-[a-z0-9]+)*")


class Checker:
    """Collects the faults of one expected-results file."""

    def __init__(self, label):
        self.label = label
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

    def text_or_null(self, value, where):
        self.expect(value is None or (isinstance(value, str) and value), where,
                    "must be null or a text that is not empty")

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
        """A host string: null, or bytes with the encoding number they are built in."""
        if value is None:
            return
        if not self.keys(value, where, ("encoding",), ("text", "bytes_base64", "line_ends")):
            return
        data = self.string_bytes(value, where)
        encoding = value["encoding"]
        if not self.expect(type(encoding) is int and encoding in ENCODINGS, where,
                           f"no encoding of a host string: {encoding!r}") or data is None:
            return
        self.expect(data, where, "a string of no bytes is nil: use null")
        if data.isascii():
            self.expect(encoding not in BECOME_ASCII, where,
                        f"low bytes only, so encoding {encoding} becomes {ASCII}")
        elif "text" in value:
            self.expect(encoding == UTF8, where,
                        "high bytes in another encoding than UTF-8: use 'bytes_base64'")
        self.line_ends(value, data, where)

    def line_ends(self, value, data, where):
        if b"\n" not in data:
            self.expect("line_ends" not in value, where, "'line_ends' without a line end")
            return
        ends = value.get("line_ends")
        self.expect(ends in ("message", "decoder"), where,
                    "holds a line end: 'line_ends' must be 'message' or 'decoder'")
        self.expect(ends != "message" or b"\r" not in data, where,
                    "line ends of the message are LF in the file")

    def attachments(self, value, where):
        if not self.expect(isinstance(value, list), where, "must be an array"):
            return
        for number, record in enumerate(value):
            at = f"{where}[{number}]"
            if not self.keys(record, at, ("mime_type", "content_disposition_type", "data"),
                             ("filename",)):
                continue
            self.text_or_null(record["mime_type"], f"{at}.mime_type")
            self.text_or_null(record["content_disposition_type"], f"{at}.content_disposition_type")
            if "filename" in record:
                self.text_or_null(record["filename"], f"{at}.filename")
            self.host_string(record["data"], f"{at}.data")

    def source(self, value, message):
        if value is None:
            self.expect(not message, "source", "only the source of no bytes is null")
            return
        if self.keys(value, "source", ("encoding",)):
            wanted = ASCII if message.isascii() else UNKNOWN
            self.expect(message, "source", "the source of no bytes is null")
            self.expect(value["encoding"] == wanted, "source",
                        f"encoding must be {wanted} for these bytes")

    def parts(self, expected):
        parts = expected["parts"]
        if parts is None:
            return
        if not self.expect(type(parts) is int and parts >= 0, "parts", "must be null or a count"):
            return
        self.expect(parts == 0 or expected["body_decoded"] is None, "body_decoded",
                    "an entity with parts has no body of its own: must be null")
        if "child_bodies" in expected:
            bodies = expected["child_bodies"]
            if self.expect(isinstance(bodies, list) and parts > 0 and len(bodies) == parts,
                           "child_bodies", "must have one entry for each of the parts"):
                for number, body in enumerate(bodies):
                    self.host_string(body, f"child_bodies[{number}]")

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
        self.expect((expected["parts"] is None) == refused, "parts",
                    "is null exactly when the message is refused")
        if refused:
            for key in ("subject", "plain_text", "html_text", "body_decoded"):
                self.expect(expected.get(key) is None, key, "must be null: the message is refused")
            for key in ("attachments", "inlines"):
                self.expect(expected[key] == [], key, "must be empty: the message is refused")

    def expected(self, value, message):
        if not self.keys(value, "top level", REQUIRED, OPTIONAL):
            return
        self.sentence(value["about"], "about")
        self.sentence(value["rule"], "rule")
        for key, wanted in (("crlf", False), ("raise_unknown_formats", True)):
            self.expect(value.get(key, wanted) is wanted, key, f"can only be {wanted}")
        for key in ("sent_date", "received_date"):
            self.expect(isinstance(value.get(key, True), bool), key, "must be true or false")
        if "subject" in value:
            self.text_or_null(value["subject"], "subject")
        for key in ("plain_text", "html_text", "body_decoded"):
            self.host_string(value.get(key), key)
        self.expect("plain_text" in value or value["html_text"] is not None, "plain_text",
                    "may be left out only where it is made from the HTML")
        self.attachments(value["attachments"], "attachments")
        self.attachments(value["inlines"], "inlines")
        self.source(value["source"], message)
        self.parts(value)
        self.exception(value)


def unique_keys(pairs):
    keys = [key for key, _ in pairs]
    for key in keys:
        if keys.count(key) > 1:
            raise ValueError(f"key {key!r} occurs twice")
    return dict(pairs)


def check_message(path, label):
    """The faults of one message and its results file, and the results' 'about' text."""
    checker = Checker(label)
    message = path.read_bytes()
    checker.expect(b"\r" not in message, "message", "has a carriage return: lines end in LF")
    try:
        text = path.with_suffix(".json").read_text(encoding="utf-8")
        value = json.loads(text, object_pairs_hook=unique_keys)
    except (OSError, ValueError) as error:
        checker.fault("expected results", str(error))
        return checker.faults, None
    checker.expected(value, message)
    about = value.get("about") if isinstance(value, dict) else None
    return checker.faults, about if isinstance(about, str) else None


def check_folder(root):
    """All faults below `root`, and the number of messages seen."""
    faults, seen, count = [], {}, 0
    for path in sorted(p for p in root.rglob("*") if not p.is_dir()):
        label = str(path.relative_to(root))
        if len(path.relative_to(root).parts) != 2 or path.suffix not in (".eml", ".json"):
            faults.append(f"{label}: only <origin>/<what-is-odd>.eml and .json belong here")
            continue
        if not NAME.fullmatch(path.stem) or not NAME.fullmatch(path.parent.name):
            faults.append(f"{label}: names are lower-case words joined by dashes")
        if path.suffix == ".json":
            if not path.with_suffix(".eml").exists():
                faults.append(f"{label}: has no message")
            continue
        count += 1
        found, about = check_message(path, label)
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
    root = pathlib.Path(arguments[0]) if arguments else pathlib.Path(__file__).parent / "messages"
    faults, count = check_folder(root)
    for fault in faults:
        print(fault, file=sys.stderr)
    print(f"{count} messages, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
