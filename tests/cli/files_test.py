"""The files that a person would find in a message: `list` shows them and `extract` writes them."""

import base64
import json
import shutil
import unittest

import program
from packing import tnef, uuencoded, yenc
from program import SAMPLES, zqv

EMPTY = "zqv: {{}}: {}: has no bytes and is not written; --all writes it\n"
DATA = b"\x00\x01binary \xFF\r\n\n" * 20


def multipart(*parts):
    """A message with a text and these parts, each of which begins with its header."""
    body = b"".join(b"--b\n" + part + b"\n" for part in (b"\nhello", *parts))
    return b"Subject: x\nContent-Type: multipart/mixed; boundary=b\n\n" + body + b"--b--\n"


def file_part(disposition=b'attachment; filename="a.bin"', transfer=b"base64", body=None):
    """A part that is a file."""
    return (b"Content-Type: application/x-any\nContent-Disposition: " + disposition +
            b"\nContent-Transfer-Encoding: " + transfer + b"\n\n" +
            (base64.encodebytes(DATA) if body is None else body))


class FilesCase(program.TestCase):
    def extract(self, data, *options, code=0, err=""):
        """Extracts the files and returns their bytes by name."""
        path = self.write("a.eml", data)
        target = self.folder / "out"
        shutil.rmtree(target, ignore_errors=True)
        err = err and err.replace("{}", str(path))
        self.expect(zqv("extract", path, "--dir", target, *options), code, None, err)
        return {file.name: file.read_bytes() for file in target.iterdir()}

    def list(self, data, *options):
        result = self.expect(zqv("list", "--json", *options, "-", stdin=data))
        return [(row["part"], row["kind"], row["mime_type"], row["filename"], row["packed_in"])
                for row in json.loads(result.out)["attached"]]


class TransferTest(FilesCase):
    def test_sloppy_names_of_encodings(self):
        for name in (b"base64 ", b"Base64;", b"(x) BASE64 (y)", b"base-64", b'"base64"'):
            with self.subTest(name):
                self.assertEqual(self.extract(multipart(file_part(transfer=name))),
                                 {"a.bin": DATA})
        part = file_part(transfer=b"quoted/printable", body=b"a=00=FFb")
        self.assertEqual(self.extract(multipart(part)), {"a.bin": b"a\0\xFFb"})

    def test_uuencode(self):
        for name in (b"x-uuencode", b"uuencode", b"X-UUE"):
            with self.subTest(name):
                part = file_part(transfer=name, body=uuencoded(DATA, b"other.bin"))
                self.assertEqual(self.extract(multipart(part)), {"a.bin": DATA})

    def test_uuencode_names_the_file(self):
        part = (b"Content-Type: application/x-any\nContent-Transfer-Encoding: x-uuencode\n\n" +
                uuencoded(DATA, b"inside.bin"))
        self.assertEqual(self.extract(multipart(part)), {"inside.bin": DATA})

    def test_unknown_encodings_are_written_as_they_stand(self):
        part = file_part(transfer=b"x-secret", body=b"what it is\n")
        problem = 'unknown transfer encoding "x-secret": the bytes are as they stand\n'
        self.assertEqual(self.extract(multipart(part), code=1,
                                      err="zqv: {}: part 2, a.bin: " + problem),
                         {"a.bin": b"what it is\n"})
        self.assertEqual(self.list(multipart(part)),
                         [("2", "attachment", "application/x-any", "a.bin", None)])
        path = self.write("a.eml", multipart(part))
        result = self.expect(zqv("extract", path, "--stdout", "2"), 1, "what it is\n",
                             f"zqv: {path}: part 2: {problem}")
        self.assertEqual(result.out_bytes, b"what it is\n")

    def test_base_64_ends_where_other_text_begins(self):
        code = base64.b64encode(b"hello")
        footer = b"\n-- \nFrom the list of all who are here\n"
        for body, data in ((code, b"hello"), (code + footer, b"hello"),
                           (code + b"\n\n" + code, b"hellohello"),
                           (code + code + footer, b"hellohello"),
                           (code + b" \n" + code + b"\r\n" + footer, b"hellohello")):
            with self.subTest(body):
                self.assertEqual(self.extract(multipart(file_part(body=body))),
                                 {"a.bin": data})

    def test_lines_of_quoted_printable_end_as_they_are_sent(self):
        for body, data in ((b"a=0D=0A\r\nb\nc\rd", b"a\r\n\r\nb\nc\rd"),
                           (b"soft =\r\nbreak= \t\nhere", b"soft breakhere"),
                           (b"blanks \t\r\nbehind  \n", b"blanks\r\nbehind\n"),
                           (b"=3d=3D=zz=4", b"===zz=4"), (b"=", None), (b"=E4=\r\n=FC", b"\xE4\xFC")):
            with self.subTest(body):
                part = file_part(transfer=b"quoted-printable", body=body)
                err = EMPTY.format("part 2, a.bin") if data is None else ""
                self.assertEqual(self.extract(multipart(part), err=err).get("a.bin"), data)

    def test_no_line_end_is_added(self):
        for end in (b"", b"\n", b"\r\n"):
            data = b"Content-Type: image/png; name=a.png\n\nx" + end
            self.assertEqual(self.extract(data), {"a.png": b"x" + end})
            self.assertEqual(self.extract(
                b"Content-Type: message/rfc822; name=a.eml\n\nSubject: x\n\nx" + end),
                {"a.eml": b"Subject: x\n\nx" + end})

    def test_export_reports_it_too(self):
        path = self.write("a.eml", multipart(file_part(transfer=b"x-secret", body=b"raw")))
        for jobs in ("1", "2"):
            result = zqv("export", path, "--to", self.folder / jobs, "--form", "attachments",
                         "--jobs", jobs)
            self.assertEqual(result.code, 1, result)
            self.assertIn(f'zqv: {path}: part 2, a.bin: unknown transfer encoding "x-secret"',
                          result.err)
            self.assertEqual((self.folder / jobs / "a.eml.files/a.bin").read_bytes(), b"raw")


class MessagesTest(FilesCase):
    INNER = b"Subject: The =?utf-8?q?caf=C3=A9?=\n\nhi\n"

    def test_name_is_made_from_the_subject(self):
        part = b"Content-Type: message/rfc822\n\n" + self.INNER
        self.assertEqual(self.extract(multipart(part)), {"The café.eml": self.INNER})

    def test_in_base64(self):
        inner = multipart(file_part())
        part = (b"Content-Type: message/rfc822\nContent-Transfer-Encoding: base64\n\n" +
                base64.encodebytes(inner))
        self.assertEqual(self.extract(multipart(part)), {"x.eml": inner, "a.bin": DATA})

    def test_after_an_envelope_line(self):
        inner = (b"From a@b.c Tue May 10 11:28:07 2005\nContent-Type: multipart/mixed; "
                 b"boundary=i\n\n--i\n" + file_part() + b"--i--\n")
        part = b"Content-Type: message/rfc822; name=m.eml\n\n" + inner
        self.assertEqual(self.extract(multipart(part)), {"m.eml": inner, "a.bin": DATA})

    def test_in_a_digest(self):
        digest = (b"Content-Type: multipart/digest; boundary=d\n\n--d\n\n" + self.INNER +
                  b"\n--d\n\nSubject: two\n\n2\n--d--\n")
        self.assertEqual(self.extract(digest),
                         {"The café.eml": self.INNER, "two.eml": b"Subject: two\n\n2"})

    def test_many_messages_in_one_another(self):
        layers = [multipart(file_part())]
        for _ in range(12):
            layers.append(b"Content-Type: message/rfc822\nContent-Transfer-Encoding: base64\n\n" +
                          base64.encodebytes(layers[-1]))
        files = self.extract(layers[-1])
        self.assertEqual(files["message.eml"], layers[-2])
        self.assertEqual(files["message (9).eml"], layers[-10])

    def test_files_after_an_unclosed_multipart(self):
        data = (b"Content-Type: multipart/mixed; boundary=o\n\n--o\n"
                b"Content-Type: multipart/related; boundary=i\n\n--i\n\ntext\n--o\n" + file_part() +
                b"--o--\n")
        self.assertEqual(self.extract(data), {"a.bin": DATA})


    def test_files_after_a_header_without_end(self):
        """A boundary line ends a header too (RFC 2046, section 5.1.2)."""
        file = file_part(b"attachment; filename=b.bin")
        letter = b"Content-Type: text/plain\n"
        for first, expected in ((letter, {}), (b"Content-Type: image/png; name=a.png\n", {}),
                                (b"Content-Type: message/rfc822; name=a.eml\n\nFrom: a@b.c\n"
                                 b"Subject: cut short\n",
                                 {"a.eml": b"From: a@b.c\nSubject: cut short"}),
                                (b"Content-Type: message/rfc822; name=a.eml\n\n"
                                 b"Content-Type: multipart/mixed; boundary=in\n",
                                 {"a.eml": b"Content-Type: multipart/mixed; boundary=in"}),
                                (b"Content-Type: multipart/mixed; boundary=in\n", {})):
            with self.subTest(first):
                data = b"Content-Type: multipart/mixed; boundary=b\n\n--b\n" + first + b"--b\n"
                data += file + b"\n--b\n" + file_part(b"attachment; filename=c.bin") + b"\n--b--\n"
                for end in (b"\n", b"\r\n"):
                    files = self.extract(data.replace(b"\n", end), err=None)
                    wanted = {name: data.replace(b"\n", end) for name, data in expected.items()}
                    self.assertEqual(files, {**wanted, "b.bin": DATA, "c.bin": DATA})

    def test_parts_after_a_header_without_end_have_its_number(self):
        data = (b"Content-Type: multipart/mixed; boundary=b\n\n--b\n"
                b"Content-Type: message/rfc822; name=a.eml\n\nSubject: cut short\n--b\n" +
                file_part(b"attachment; filename=b.bin") + b"\n--b\n" +
                file_part(b"attachment; filename=c.bin") + b"\n--b--\n")
        self.assertEqual([(row[0], row[3]) for row in self.list(data)],
                         [("1", "a.eml"), ("1", "b.bin"), ("2", "c.bin")])
        path = self.write("a.eml", data)
        self.expect(zqv("extract", path, "--stdout", "1"), 0, "Subject: cut short")

    def test_a_boundary_in_the_last_header_closes(self):
        data = (b"Content-Type: multipart/mixed; boundary=b\n\n--b\n"
                b"Content-Type: message/rfc822; name=a.eml\n\nSubject: cut short\n--b--\nBye\n")
        self.assertEqual(self.extract(data), {"a.eml": b"Subject: cut short"})

    def test_boundaries_that_look_like_fields(self):
        """The library takes a boundary line with a colon for a header field."""
        data = multipart(b"Content-Type: image/png; name=a.png\n--b", file_part()).replace(
            b"=b\n", b'="b:c"\n').replace(b"--b", b"--b:c")
        self.assertEqual([(row[0], row[3]) for row in self.list(data)],
                         [("2", "a.png"), ("2", "a.bin")])
        self.assertEqual(self.extract(data, err=EMPTY.format("part 2, a.png")), {"a.bin": DATA})

    def test_a_boundary_without_its_closing_quote(self):
        data = multipart(file_part(), b"Content-Type: message/rfc822\n\nSubject: in\n\nhi").replace(
            b"boundary=b", b'boundary="b')
        self.assertEqual(self.extract(data), {"a.bin": DATA, "in.eml": b"Subject: in\n\nhi"})
        self.assertEqual([(row[0], row[3]) for row in self.list(data)],
                         [("0", "a.bin"), ("0", "in.eml")])
        # The number of parts is limited as in the library.
        head = b'Content-Type: multipart/mixed; boundary="b\n\n'
        self.assertEqual(len(self.list(head + b"--b\nContent-Type: a/b; name=a\n\nx\n" * 10_000)),
                         10_000)
        problem = "no boundary divides the multipart: the bytes are as they stand"
        self.assertEqual(set(self.extract(head + b"--b\n" * 10_001, code=1,
                                          err="zqv: {}: part 0, attachment: " + problem + "\n")),
                         {"attachment"})


class PackedTest(FilesCase):
    def test_uuencoded_block_in_a_text(self):
        data = b"Subject: x\n\nSee:\n\n" + uuencoded(DATA, b"my file.bin") + b"\nBye\nbegin here\n"
        self.assertEqual(self.list(data), [("0", "attachment", None, "my file.bin", "uuencode")])
        self.assertEqual(self.extract(data), {"my file.bin": DATA})

    def test_lines_without_their_last_blanks(self):
        data = uuencoded(b"abc" + bytes(42)).replace(b"`", b" ").replace(b" \nend", b"\nend")
        stripped = b"\n".join(line.rstrip() for line in data.split(b"\n"))
        self.assertEqual(self.extract(b"Subject: x\n\n" + stripped), {"a.bin": b"abc" + bytes(42)})

    def test_several_of_several_kinds(self):
        text = uuencoded(b"one", b"1") + yenc(DATA, b"2 b.bin") + uuencoded(b"", b"3")
        text += b"begin-base64 644 4\n" + base64.b64encode(b"four") + b"\n====\n"
        data = b"Content-Transfer-Encoding: 8bit\n\n" + text
        self.assertEqual([row[3] for row in self.list(data)], ["1", "2 b.bin", "3", "4"])
        self.assertEqual(self.extract(data, err=EMPTY.format("part 0, 3")),
                         {"1": b"one", "2 b.bin": DATA, "4": b"four"})

    def test_blocks_that_are_cut_off(self):
        cut = uuencoded(DATA)[:-6]
        self.assertEqual(self.extract(
            b"Subject: x\n\n" + cut, code=1,
            err="zqv: {}: part 0, a.bin: the file in uuencode is not whole\n"), {"a.bin": DATA})
        self.assertEqual(self.extract(
            b"Subject: x\n\n" + yenc(b"abc", size=4), code=1,
            err="zqv: {}: part 0, a.bin: the file in yenc is not whole\n"), {"a.bin": b"abc"})

    def test_text_that_only_looks_like_it(self):
        for text in (b"begin 644 of these\nThis is what they said to us on the day when it was.\n",
                     b"begin 9999 x\n", b"=ybegin nothing\n", b" begin 644 a\n#0V%T\nend\n"):
            self.assertEqual(self.list(b"Subject: x\n\n" + text), [], text)

    def test_tnef(self):
        data = tnef(("Übersicht.bin", DATA), ("b.txt", b""), ("c.txt", b"see"))
        part = (b"Content-Type: application/ms-tnef; name=winmail.dat\n"
                b"Content-Transfer-Encoding: base64\n\n" + base64.encodebytes(data))
        self.assertEqual(self.extract(multipart(part), err=EMPTY.format("part 2, b.txt")),
                         {"winmail.dat": data, "Übersicht.bin": DATA, "c.txt": b"see"})
        self.assertEqual([row[-1] for row in self.list(multipart(part))],
                         [None, "tnef", "tnef", "tnef"])

    def test_tnef_that_is_cut_off(self):
        data = tnef(("a.bin", DATA), ("b.bin", DATA))[:-100]
        part = (b"Content-Type: application/octet-stream\n"
                b"Content-Transfer-Encoding: base64\n\n" + base64.encodebytes(data))
        problem = "the TNEF that holds it is cut off\n"
        files = self.extract(multipart(part), code=1, err="zqv: {}: part 2, a.bin: " + problem +
                             "zqv: {}: part 2, SHORT~1.BIN: " + problem)
        self.assertEqual(files["a.bin"], DATA)

    def test_tnef_in_tnef(self):
        inner = tnef(("deep.bin", DATA))
        for _ in range(3):
            inner = tnef(("message", inner))
        part = (b"Content-Type: application/vnd.ms-tnef\nContent-Transfer-Encoding: base64\n\n" +
                base64.encodebytes(inner))
        self.assertEqual(self.extract(multipart(part))["deep.bin"], DATA)


class FrameTest(FilesCase):
    SIGNED = (b"Content-Type: multipart/signed; boundary=b\n\n--b\n\nhello\n--b\n"
              b"Content-Type: application/pgp-signature; name=s.asc\n\nsign\n--b--\n")

    def test_multiparts(self):
        self.assertEqual(self.extract(self.SIGNED), {"s.asc": b"sign"})
        files = self.extract(self.SIGNED, "--all")
        self.assertEqual(set(files), {"attachment", "attachment (2)", "s.asc"})
        self.assertEqual(files["attachment"], self.SIGNED.partition(b"\n\n")[2])
        self.assertEqual(files["attachment (2)"], b"hello")

    def test_mail_without_a_type(self):
        data = b"Subject: x\n\nhello\n"
        self.assertEqual(self.list(data), [])
        self.assertEqual(self.list(data, "--all"), [("0", "inline", None, "attachment", None)])

    def test_empty_parts_without_a_name(self):
        self.assertEqual(self.extract(multipart(b"Content-Type: image/png\n\n")), {})

    def test_empty_files_are_reported_and_not_written(self):
        """Most files without bytes are pictures that were removed from the message."""
        data = multipart(file_part(body=b""), file_part(body=b"\n\n"))
        self.assertEqual([row[3] for row in self.list(data)], ["a.bin", "a.bin"])
        lines = EMPTY.format("part 2, a.bin") + EMPTY.format("part 3, a.bin")
        self.assertEqual(self.extract(data, err=lines), {})
        self.assertEqual(self.extract(data, "--all"), {"a.bin": b"", "a (2).bin": b"",
                                                                 "attachment": b"hello"})
        source = self.write("b.eml", multipart(file_part(body=b""), file_part()))
        for jobs in ("1", "2"):
            target = self.folder / jobs
            result = self.expect(zqv("export", self.folder / "a.eml", source, "--to", target,
                                     "--form", "attachments", "--jobs", jobs), 0, "", None)
            self.assertRegex(result.err, r"^zqv: exported 2 messages, without 3 files that have no "
                                         r"bytes, in .*\n$")
            self.assertEqual([path.name for path in target.rglob("*") if path.is_file()], ["a.bin"])

    def test_the_texts_of_an_attached_message(self):
        rows = [(row[0], row[3]) for row in self.list((SAMPLES / "nested.eml").read_bytes())]
        self.assertEqual(rows, [("1.2", "logo.gif"), ("2", "your message.eml"), ("2.1.2", "pages.csv")])

    def test_json_keeps_them(self):
        message = json.loads(zqv("json", "-", stdin=self.SIGNED).out)["message"]
        self.assertEqual(len(message["attachments"]), 3)

    def test_multipart_without_boundary_lines(self):
        data = b"Content-Type: multipart/mixed; boundary=b\n\nall that there is\n"
        self.assertEqual(
            self.extract(data, code=1, err="zqv: {}: part 0, attachment: no boundary divides the "
                                           "multipart: the bytes are as they stand\n"),
            {"attachment": b"all that there is\n"})

    def test_named_text_is_a_file_although_it_is_shown(self):
        part = b'Content-Type: text/plain; name="notes.txt"\n\nread me'
        data = b"Content-Type: multipart/mixed; boundary=b\n\n--b\n" + part + b"\n--b--\n"
        self.assertEqual(self.list(data), [("1", "inline", "text/plain", "notes.txt", None)])
        self.assertEqual(self.extract(data), {"notes.txt": b"read me"})


class NamesTest(FilesCase):
    def check(self, parameter, name):
        with self.subTest(parameter):
            rows = self.list(multipart(file_part(b"attachment; " + parameter)))
            self.assertEqual([row[3] for row in rows], [name])

    def test_extended(self):
        self.check(b"filename*=UTF-8'en'%C3%9Cber%20uns.txt", "Über uns.txt")
        self.check(b"filename*=iso-8859-1''caf%E9.txt", "café.txt")
        self.check(b"filename*=utf-8''%e2%82%ac; filename=\"EUR.txt\"", "€")
        self.check(b"filename*=x-nobody''caf%C3%A9.txt", "café.txt")
        self.check(b"filename*=plain%20name.txt", "plain name.txt")

    def test_in_pieces(self):
        self.check(b"filename*0*=utf-8''%C3%9C; filename*1=\"ber; \"; filename*2*=%C3%A4.txt",
                   "Über; ä.txt")
        self.check(b"filename*1=b.txt; filename*0=a", "ab.txt")
        self.check(b"filename*0=a; filename*2=c", "a")

    def test_encoded_words(self):
        self.check(b'filename="=?utf-8?q?caf=C3=A9?=.txt"', "café.txt")
        self.check(b"filename==?iso-8859-1?b?Y2Fm6S50eHQ=?=", "café.txt")
        self.check(b'filename="=?utf-8?B?w5xiZXJz?=\n =?utf-8?B?aWNodC50eHQ=?="', "Übersicht.txt")

    def test_semicolons_quotes_and_comments(self):
        self.check(b'(a;b) filename="a;b.txt"', "a;b.txt")
        self.check(b'filename="a \\"b\\".txt"', 'a "b".txt')
        self.check(b"filename=my file (1).txt ; x=y", "my file (1).txt")
        self.check(b'filename="C:\\dir\\a.txt"', "C:\\dir\\a.txt")
        self.check(b'filename="not closed.txt', "not closed.txt")

    def test_of_the_type(self):
        part = b"Content-Type: application/x-any; name*=utf-8''%C3%A9.bin\n\nx"
        self.assertEqual(self.list(multipart(part))[0][3], "é.bin")


if __name__ == "__main__":
    unittest.main()
