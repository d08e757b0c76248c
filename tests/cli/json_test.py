"""`zqv json`: one document for each message, with all properties of the classes."""

import base64
import email
import json
import re
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
# The keys that version 1 has had since it was published, in their order. They may be joined by
# others, but none may go, move or be renamed; so nothing is added here.
PUBLISHED = {
    "message": "subject date received_date plain_text html_text source attachments inlines parts "
               "date_utc",
    "attachment": "part filename mime_type mime_version content_type content_transfer_encoding "
                  "content_disposition content_description content_id data",
    "part": "number header body body_decoded",
    "header": "mime_version content_type content_transfer_encoding "
              "content_transfer_encoding_mechanism content_disposition content_description "
              "content_id subject subject_decoded message_id sender from to reply_to cc bcc fields",
    "body": "preamble epilogue string_value",
    "mailbox_list": "string_value count mailboxes",
    "mailbox": "string_value mailbox domain label label_decoded sourceroute email",
    "address_list": "string_value count addresses",
    "address": "string_value is_group mailbox group",
    "group": "string_value name name_decoded count mailboxes",
    "field": "name value",
}
BAD = {"bytes": "\\\\\\xE9", "encoding": 0x08000100}


def documents(text):
    """The JSON documents in a text that has several, one after the other."""
    decoder = json.JSONDecoder()
    found, position = [], 0
    while position < len(text):
        document, position = decoder.raw_decode(text, position)
        found.append(document)
        position += len(text[position:]) - len(text[position:].lstrip())
    return found


class JsonTest(program.TestCase):
    def read(self, path, *options):
        """The message in the only document of the output."""
        document, = documents(self.expect(zqv("json", *options, path)).out)
        self.assertEqual(list(document), ["format_version", "file", "message"])
        self.assertEqual(document["format_version"], 1)
        self.assertEqual(document["file"], str(path))
        return document["message"]

    def expect_published(self, kind, value):
        published = PUBLISHED[kind].split()
        self.assertEqual([key for key in value if key in published], published)

    def test_published_keys_stay(self):
        message = self.read(self.write("a.eml", MESSAGE))
        header = message["parts"][0]["header"]
        address = header["to"]["addresses"][0]
        for kind, value in {
                "message": message, "attachment": message["attachments"][0],
                "part": message["parts"][0], "header": header, "body": message["parts"][0]["body"],
                "mailbox_list": header["from"], "mailbox": header["from"]["mailboxes"][0],
                "address_list": header["to"], "address": address, "group": address["group"],
                "field": header["fields"][0]}.items():
            with self.subTest(kind):
                self.expect_published(kind, value)

    def expect_part_of(self, expected, value):
        """The value has these keys, and maybe others."""
        self.assertEqual({key: value.get(key, "no such key") for key in expected}, expected)

    def test_texts_and_lists(self):
        message = self.read(self.write("a.eml", MESSAGE))
        self.assertEqual(message["subject"], "Caf\u00E9")
        self.assertIsNone(message["date"])
        self.assertEqual(message["plain_text"], "caf\u00E9")
        self.assertIsNone(message["html_text"])
        self.assertEqual(message["inlines"], [])
        attachment, = message["attachments"]
        self.expect_part_of({
            "part": "2", "filename": "bad.txt", "mime_type": "text/plain", "mime_version": "0.0",
            "content_type": "text/plain; charset=\"utf-8\"; name=\"bad.txt\"",
            "content_transfer_encoding": None, "content_disposition": None,
            "content_description": None, "content_id": None, "data": BAD}, attachment)

    def test_parts(self):
        parts = self.read(self.write("a.eml", MESSAGE))["parts"]
        self.assertEqual([part["number"] for part in parts], ["0", "1", "2"])
        self.expect_part_of({"preamble": "before", "epilogue": "after\n", "string_value": None},
                            parts[0]["body"])
        self.assertEqual([part["body_decoded"] for part in parts], [None, "caf\u00E9", BAD])

    def test_header(self):
        header = self.read(self.write("a.eml", MESSAGE))["parts"][0]["header"]
        self.assertEqual(header["mime_version"], "1.0")
        self.assertEqual(header["subject"], "=?utf-8?Q?Caf=C3=A9?=")
        self.assertEqual(header["subject_decoded"], "Caf\u00E9")
        self.assertIsNone(header["sender"])
        self.expect_part_of({"string_value": "Ada <ada@example.com>", "count": 1}, header["from"])
        mailbox, = header["from"]["mailboxes"]
        self.expect_part_of(MAILBOX, mailbox)
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
        depth = 300  # every build parses this depth
        lines = []
        for level in range(depth):
            lines += [f"Content-Type: multipart/mixed; boundary=b{level}", "", f"--b{level}"]
        path = self.write("deep.eml", "\n".join([*lines, "Subject: inside", "", "x", ""]))
        parts = self.read(path)["parts"]
        self.assertEqual(len(parts), depth + 1)
        self.assertEqual(parts[-1]["number"], ".".join(["1"] * depth))


class FilesTest(program.TestCase):
    """The representation of the bytes of files."""

    def read(self, *arguments):
        return json.loads(zqv("json", *arguments, SAMPLES / "attachments.eml").out)["message"]

    def test_none(self):
        message = self.read("--attachments", "none")
        self.assertEqual([file["data"] for file in message["attachments"]], [None, None])
        self.assertIsNone(message["source"])
        by_number = {part["number"]: part for part in message["parts"]}
        self.assertEqual((by_number["2"]["body_decoded"], by_number["2"]["body"]["string_value"]),
                         (None, None))
        self.assertTrue(by_number["1.1"]["body_decoded"].startswith("Dear all,"))

    def test_base64(self):
        source = (SAMPLES / "attachments.eml").read_bytes()
        parts = email.message_from_bytes(source).get_payload()
        message = self.read("--attachments", "base64")
        self.assertEqual([base64.b64decode(file["data"]["base64"])
                          for file in message["attachments"]],
                         [part.get_payload(decode=True) for part in parts[1:]])
        self.assertEqual(base64.b64decode(message["source"]["base64"]), source)
        self.assertEqual(message["subject"], "Quarterly figures and the chart")

    def test_text_is_the_classes_value(self):
        self.assertEqual(self.read("--attachments", "text"), self.read())

    def test_one_document_a_line(self):
        result = zqv("json", "--lines", SAMPLES / "plain.eml", SAMPLES / "nested.eml")
        lines = result.out.splitlines()
        self.assertEqual([json.loads(line)["message"]["subject"] for line in lines],
                         ["Keys", "Your ticket 881 was answered"])
        self.assertEqual(json.loads(lines[0]), json.loads(zqv("json", SAMPLES / "plain.eml").out))

    def test_the_instant_of_the_date_field(self):
        self.assertEqual(self.read()["date_utc"], "2024-04-16T14:02:05Z")
        for value, instant in {"Mon, 1 Jan 2024 00:30:00 +0100": "2023-12-31T23:30:00Z",
                               "1 Mar 2024 00:30:00 +0100": "2024-02-29T23:30:00Z",
                               "31 Dec 1969 23:00:00 -0100": "1970-01-01T00:00:00Z",
                               "1 Jan 1960 12:00 PST": "1960-01-01T20:00:00Z",
                               "soon": None}.items():
            with self.subTest(value):
                result = zqv("json", "-", stdin=f"Date: {value}\n\nx".encode())
                self.assertEqual(json.loads(result.out)["message"]["date_utc"], instant)


class VerbsTest(program.TestCase):
    """The option --json of verbs that otherwise print lines."""

    def read(self, *arguments, code=0):
        return json.loads(self.expect(zqv(*arguments, "--json"), code).out)

    def test_absent_values_are_null(self):
        self.assertEqual(self.read("tree", SAMPLES / "nested.eml")["parts"][:2], [
            {"number": "0", "mime_type": "multipart/mixed", "bytes": None, "filename": None},
            {"number": "1", "mime_type": "multipart/related", "bytes": None, "filename": None}])
        self.assertIsNone(self.read("list", SAMPLES / "attachments.eml")["attached"][0]["content_id"])
        path = self.write("a.eml", "From: ada@example.org\n\nx\n")
        self.assertEqual(self.read("addresses", path)["addresses"], [
            {"field": "From", "email": "ada@example.org", "name": None, "group": None}])

    def test_texts_are_not_changed_for_terminals(self):
        path = self.write("a.eml", "Subject: x\nX-A: a\x07b\n\nx\n")
        self.assertEqual(self.read("headers", "--name", "X-A", path)["fields"],
                         [{"name": "X-A", "value": "a\x07b"}])
        self.assertEqual(self.read("decode", "=?utf-8?Q?a=0A=1Bb?=")["texts"],
                         [{"text": "=?utf-8?Q?a=0A=1Bb?=", "decoded": "a\n\x1Bb"}])

    def test_missing_fields_are_an_empty_list(self):
        path = self.write("a.eml", "Subject: x\n\nx\n")
        result = zqv("headers", "--name", "X-A", "--json", path)
        self.assertEqual((result.code, json.loads(result.out)["fields"]), (1, []))

    def test_show(self):
        summary = self.read("show", SAMPLES / "nested.eml")["summary"]
        self.assertEqual(summary["subject"], "Your ticket 881 was answered")
        self.assertEqual(summary["date"], "2024-09-13 16:45:10")
        self.assertEqual(summary["sender"], ["Olu Banjo <olu@example.org>"])
        self.assertEqual((summary["cc"], summary["html_bytes"], summary["parts"]), ([], 206, 9))
        self.assertEqual([(file["part"], file["filename"]) for file in summary["attachments"]],
                         [("2", "your message.eml"), ("2.1.2", "pages.csv")])
        self.assertEqual(summary["inlines"], [{"part": "1.2", "filename": "logo.gif",
                                               "mime_type": "image/gif", "bytes": 121}])
        self.assertTrue(summary["plain_text"].startswith("Hello Petra,\n"))

    def test_several_messages_have_no_headings(self):
        out = self.expect(zqv("tree", "--json", SAMPLES / "plain.eml", SAMPLES / "nested.eml")).out
        self.assertEqual(out.count('"format_version": 1'), 2)
        self.assertNotIn("==>", out)

    def test_classes_are_those_of_the_listing(self):
        classes = self.read("classes")["classes"]
        lines = []
        for entry in classes:
            lines.append((entry["name"], entry["super"]))
            for member in entry["members"]:
                shared = "shared " if member["shared"] else ""
                lines.append(f"{shared}{member['kind']} {member['declaration']}")
        expected = []
        for line in zqv("classes").out.splitlines():
            match = re.match(r"class (\w+)(?: of (\w+))?,", line)
            if match:
                expected.append(match.groups())
            else:
                text = re.match(r"  ((?:shared )?(?:property [^,]+|method \".*\"))", line).group(1)
                expected.append(text.replace('"', ""))
        self.assertEqual(lines, expected)
        self.assertTrue(classes)

    def test_classes_name_the_member_behind_each_key(self):
        keys = {entry["name"]: entry["json_keys"] for entry in self.read("classes")["classes"]}
        for name, key, declaration in (
                ("MimeEmailZQV", "html_text", "HTMLText as String"),
                ("MimeEmailZQV", "attachments", "Attachments as MimeAttachmentZQV()"),
                ("MimeHeaderZQV", "to", "too as MimeAddressListZQV"),
                ("MimeAddressZQV", "is_group", "isGroup as Boolean"),
                ("MimeGroupZQV", "count", "Count as Integer")):
            self.assertEqual(keys[name][key], declaration)


if __name__ == "__main__":
    unittest.main()
