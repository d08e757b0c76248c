"""zqv json: one document for each message, with all that the classes give."""

import base64
import json
import unittest

import program
from program import SAMPLES, zqv

MESSAGE = b"""\
From: Ada <ada@example.com>
To: Crew:ben@example.org;
Subject: =?utf-8?Q?Caf=C3=A9?=
MIME-Version: 1.0
Content-Type: multipart/mixed; boundary=b

before
--b
Content-Type: text/plain; charset=iso-8859-1

caf\xE9
--b
Content-Type: text/plain; charset=utf-8; name=bad.txt

\\\xE9
--b--
after
"""

MAILBOX = {"string_value": "Ada <ada@example.com>", "mailbox": "ada", "domain": "example.com",
           "label": "Ada", "label_decoded": "Ada", "sourceroute": None, "email": "ada@example.com"}
BAD = {"bytes": "\\\\\\xE9", "encoding": 0x08000100}


def documents(text):
    """The JSON documents in a text, one after the other."""
    decoder = json.JSONDecoder()
    found, position = [], 0
    while position < len(text):
        document, position = decoder.raw_decode(text, position)
        found.append(document)
        position += len(text[position:]) - len(text[position:].lstrip())
    return found


class JsonTest(program.TestCase):
    def read(self, path, *options):
        """The message in the one document that is printed."""
        document, = documents(self.expect(zqv("json", *options, path)).out)
        self.assertEqual(list(document), ["format_version", "file", "message"])
        self.assertEqual(document["format_version"], 1)
        self.assertEqual(document["file"], str(path))
        return document["message"]

    def test_texts_and_lists(self):
        message = self.read(self.write("a.eml", MESSAGE))
        self.assertEqual(list(message), ["subject", "date", "received_date", "plain_text",
                                         "html_text", "source", "attachments", "inlines", "parts"])
        self.assertEqual(message["subject"], "Caf\u00E9")
        self.assertIsNone(message["date"])
        self.assertEqual(message["plain_text"], "caf\u00E9")
        self.assertIsNone(message["html_text"])
        self.assertEqual(message["inlines"], [])
        self.assertEqual(message["attachments"], [{
            "part": "2", "filename": "bad.txt", "mime_type": "text/plain", "mime_version": "0.0",
            "content_type": "text/plain; charset=\"utf-8\"; name=\"bad.txt\"",
            "content_transfer_encoding": None, "content_disposition": None,
            "content_description": None, "content_id": None, "data": BAD}])

    def test_parts(self):
        parts = self.read(self.write("a.eml", MESSAGE))["parts"]
        self.assertEqual([part["number"] for part in parts], ["0", "1", "2"])
        self.assertEqual(parts[0]["body"],
                         {"preamble": "before", "epilogue": "after\n", "string_value": None})
        self.assertEqual([part["body_decoded"] for part in parts], [None, "caf\u00E9", BAD])

    def test_header(self):
        header = self.read(self.write("a.eml", MESSAGE))["parts"][0]["header"]
        self.assertEqual(header["mime_version"], "1.0")
        self.assertEqual(header["subject"], "=?utf-8?Q?Caf=C3=A9?=")
        self.assertEqual(header["subject_decoded"], "Caf\u00E9")
        self.assertIsNone(header["sender"])
        self.assertEqual(header["from"], {"string_value": "Ada <ada@example.com>", "count": 1,
                                          "mailboxes": [MAILBOX]})
        address, = header["to"]["addresses"]
        self.assertIs(address["is_group"], True)
        self.assertIsNone(address["mailbox"])
        self.assertEqual(address["group"]["name"], "Crew")
        self.assertEqual([m["email"] for m in address["group"]["mailboxes"]], ["ben@example.org"])
        self.assertEqual([field["name"] for field in header["fields"]],
                         ["From", "To", "Subject", "MIME-Version", "Content-Type"])

    def test_raw(self):
        message = self.read(self.write("a.eml", MESSAGE), "--raw")
        self.assertEqual(base64.b64decode(message["source"]["base64"]), MESSAGE)
        self.assertEqual(message["source"]["encoding"], 0xFFFF)
        self.assertEqual(message["plain_text"],
                         {"base64": base64.b64encode(b"caf\xE9").decode(), "encoding": 0x0201})
        self.assertEqual(message["attachments"][0]["data"],
                         {"base64": base64.b64encode(b"\\\xE9").decode(), "encoding": 0x08000100})

    def test_source_of_no_encoding(self):
        self.assertEqual(self.read(self.write("a.eml", b"Subject: \xE9\n\n\\"))["source"],
                         {"bytes": "Subject: \\xE9\\x0A\\x0A\\\\", "encoding": 0xFFFF})
        source = "Subject: \u00E9\n\nx"
        self.assertEqual(self.read(self.write("b.eml", source))["source"], source)

    def test_characters_that_steer_terminals_are_escaped(self):
        body = "a\x1B[2J\x7F\u009B\u202E\u2066b"
        path = self.write("a.eml", "Content-Type: text/plain; charset=utf-8\n\n" + body)
        out = self.expect(zqv("json", path)).out
        self.assertEqual([c for c in out if c != "\n" and not c.isprintable()], [])
        self.assertEqual(documents(out)[0]["message"]["plain_text"], body)

    def test_every_key_comes_in_the_same_order_for_every_message(self):
        def keys(value):
            if isinstance(value, dict):
                return {name: keys(member) for name, member in value.items()
                        if name not in ("from", "sender", "to", "reply_to", "cc", "bcc")}
            return None
        seen = []
        for sample in ("plain.eml", "nested.eml", "html-only.eml"):
            message = self.read(SAMPLES / sample)
            for part in message["parts"]:
                seen.append(json.dumps(keys({**part, "body_decoded": None})))
        self.assertEqual(len(set(seen)), 1)

    def test_several_files(self):
        good = self.write("a.eml", "Subject: first\n\nx\n")
        other = self.write("b.eml", "Subject: second\n\nx\n")
        result = zqv("json", good, "gone.eml", other)
        self.assertEqual(result.code, 1)
        self.assertEqual([d["message"]["subject"] for d in documents(result.out)],
                         ["first", "second"])
        self.assertRegex(result.err, r"\Azqv: gone.eml: IOException: .*\n\Z")

    def test_deep_nesting(self):
        depth = 300  # of which every build is sure
        lines = []
        for level in range(depth):
            lines += [f"Content-Type: multipart/mixed; boundary=b{level}", "", f"--b{level}"]
        path = self.write("deep.eml", "\n".join([*lines, "Subject: inside", "", "x", ""]))
        parts = self.read(path)["parts"]
        self.assertEqual(len(parts), depth + 1)
        self.assertEqual(parts[-1]["number"], ".".join(["1"] * depth))


if __name__ == "__main__":
    unittest.main()
