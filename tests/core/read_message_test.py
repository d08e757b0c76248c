#!/usr/bin/env python3
"""Runs the core alone on the corpus: the output of core_reader must agree with the expected values.

  read_message_test.py CORE_READER CORPUS

Compared are the parts, the destination and order of each, file names, decoded bodies, the subject
and the dates. Values that only a host makes, such as plain text from HTML, are not compared.
"""

import base64
import datetime
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

MARK = b"\xef\xbb\xbf"
ASCII, UTF8, UTF16 = 1536, 134217984, 256
# A host string in one of these encodings is labelled ASCII when no byte is above 0x7F.
SINGLE_BYTE = {0, 513, 1280, 65535}
TEXTS = {"plain text", "HTML"}
LISTS = {"attachments": "attachment", "inlines": "inline"}


def unescape(text):
    return text.encode("ascii").decode("unicode_escape").encode("latin-1")


def as_host_string(encoding, data):
    """The encoding and bytes of the host string; None for an empty one."""
    if not data:
        return None
    if encoding == UTF16:
        return UTF8, data.decode("utf-16-le").encode("utf-8")
    if encoding in SINGLE_BYTE and all(byte < 0x80 for byte in data):
        return ASCII, data
    return encoding, data


def expected_string(value, crlf):
    """The same for an expected string of the corpus."""
    if value is None:
        return None
    if isinstance(value, str):
        return ASCII if value.isascii() else UTF8, value.encode("utf-8")
    if "text" in value:
        data = value["text"].encode("utf-8")
        encoding = value.get("encoding", ASCII if value["text"].isascii() else UTF8)
    else:
        data = base64.b64decode(value["bytes_base64"])
        encoding = value["encoding"]
    if crlf and value.get("line_ends") == "message":
        data = data.replace(b"\n", b"\r\n")
    return encoding, data


def local_time(fields):
    """The date in UTC, where fields that are too large roll over; None when the year is not in 1 to
    9999."""
    year, month, day, hour, minute, second, zone = map(int, fields.split())
    year, month = year + (month - 1) // 12, (month - 1) % 12 + 1
    if not 1 <= year <= 9998:
        return None
    time = datetime.datetime(year, month, 1)
    time += datetime.timedelta(days=day - 1, hours=hour, minutes=minute, seconds=second)
    offset = abs(zone) // 100 * 60 + abs(zone) % 100
    time -= datetime.timedelta(minutes=offset if zone >= 0 else -offset)
    return time.isoformat()


class Part:
    def __init__(self, lines):
        self.values = dict(line.split(": ", 1) for line in lines.split("\n"))

    def __getitem__(self, name):
        return self.values.get(name)

    def string(self, name):
        if name not in self.values:
            return None
        encoding, text = self.values[name].split(" ", 1)
        return as_host_string(int(encoding), unescape(text))

    def decoded(self):
        if "decoded" not in self.values:
            return None
        encoding, size, text = self.values["decoded"].split(" ", 2)
        data = unescape(text)
        assert len(data) == int(size), (len(data), size)
        return as_host_string(int(encoding), data)


class Reader(unittest.TestCase):
    program = None
    corpus = None
    compared = 0

    def run_program(self, data, *options):
        with tempfile.NamedTemporaryFile(suffix=".eml") as file:
            file.write(data)
            file.flush()
            run = subprocess.run([self.program, *options, file.name], capture_output=True,
                                 timeout=60, check=True)
        return run.stdout

    def read(self, data):
        output = self.run_program(data).decode("ascii")
        return [Part(block) for block in output.rstrip("\n").split("\n\n")]

    def compare(self, data, expected, crlf):
        parts = self.read(data)
        message = expected["message"]
        self.assertEqual([part["part"] for part in parts],
                         [part["number"] for part in message["parts"]])
        self.compare_lists(parts, message, crlf)
        for part, wanted in zip(parts, message["parts"]):
            self.assertEqual(part.decoded(), expected_string(wanted.get("body_decoded"), crlf))
        self.compare_texts(parts, message, crlf)
        self.assertEqual(parts[0].string("subject"),
                         expected_string(message.get("subject"), crlf))
        for ours, theirs in (("sent", "date"), ("received", "received_date")):
            time = local_time(parts[0][ours]) if parts[0][ours] else None
            if time or not parts[0][ours]:
                self.assertEqual(time, message.get(theirs))

    def compare_lists(self, parts, message, crlf):
        in_order = sorted(parts, key=lambda part: int(part["place"]))
        for name, destination in LISTS.items():
            listed = [part for part in in_order if part["destination"] == destination]
            wanted = message.get(name, [])
            self.assertEqual([part["part"] for part in listed], [entry["part"] for entry in wanted])
            for part, entry in zip(listed, wanted):
                self.assertEqual(part.string("file name"),
                                 expected_string(entry.get("filename"), crlf))
                self.assertEqual(part.decoded(), expected_string(entry.get("data"), crlf))
                self.assertEqual(part["type"], entry.get("mime_type", ""))

    def compare_texts(self, parts, message, crlf):
        for name, destination in (("plain_text", "plain text"), ("html_text", "HTML")):
            texts = [part.decoded() for part in parts
                     if part["destination"] == destination and part.decoded()]
            self.assertLessEqual(len(texts), 1)
            if texts:
                self.assertEqual(texts[0], expected_string(message.get(name), crlf))
            elif name in message and len(parts) == 1 and "html_text" not in message:
                self.assertEqual(parts[0].decoded(), expected_string(message[name], crlf))

    def test_every_message_of_the_corpus(self):
        for file in sorted(self.corpus.rglob("*.eml")):
            expected = json.loads(file.with_suffix(".json").read_text("utf-8"))
            if "header" not in expected["message"]["parts"][0]:
                continue  # refused before it is parsed
            data = file.read_bytes().removeprefix(MARK)
            for crlf in (False, True) if expected.get("crlf", True) else (False,):
                with self.subTest(file=file.relative_to(self.corpus), crlf=crlf):
                    self.compare(data.replace(b"\n", b"\r\n") if crlf else data, expected, crlf)
                    self.compared += 1
        self.assertGreater(self.compared, 390)

    def test_kinds(self):
        parts = self.read(b"Content-Type: multipart/mixed; boundary=b\n\n--b\n"
                          b"Content-Type: message/rfc822\n\nSubject: x\n\ny\n--b\n"
                          b"Content-Transfer-Encoding: x-uuencode\n\nz\n--b--\n")
        self.assertEqual([(part["part"], part["kind"], part["destination"]) for part in parts],
                         [("0", "multipart", "container"), ("1", "message", "attachment"),
                          ("1.1", "leaf", "attachment"), ("2", "leaf", "unknown encoding")])

    def test_strip(self):
        stripped = self.run_program(
            b"Content-Type: multipart/mixed; boundary=b\n\n--b\nContent-Type: text/plain\n\ntext\n"
            b"--b\nContent-Disposition: attachment; filename=a\n\nfile\n--b--\n", "--strip")
        self.assertEqual(stripped, b"Content-Type: multipart/mixed; boundary=\"b\"\r\r--b\r"
                                   b"Content-Type: text/plain\r\rtext\r--b--\r")

    def test_message_beyond_the_limits_is_refused(self):
        data = b"Content-Type: multipart/mixed\n\n" + b"--\n\n" * 200_000
        with tempfile.NamedTemporaryFile(suffix=".eml") as file:
            file.write(data)
            file.flush()
            run = subprocess.run([self.program, file.name], capture_output=True, check=False)
        self.assertEqual(run.returncode, 1)
        self.assertEqual(run.stderr, b"core_reader: the message has too many parts\n")


if __name__ == "__main__":
    Reader.program, Reader.corpus = sys.argv[1], pathlib.Path(sys.argv[2])
    unittest.main(argv=sys.argv[:1])
