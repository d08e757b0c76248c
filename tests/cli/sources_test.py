"""The sources of messages: files, mailboxes, Maildirs, folders, pipes."""

import bz2
import gzip
import io
import json
import lzma
import os
import re
import subprocess
import tarfile
import threading
import unittest
import zipfile

import program
from program import TIMEOUT, ZQV, environment, zqv


def message(subject, body="x"):
    return f"Subject: {subject}\n\n{body}\n"


def from_line(date="Sat Jan  3 01:05:34 1996"):
    return f"From someone@example.com {date}\n"


class SourceTest(program.TestCase):
    def subjects(self, *arguments, **options):
        """The subjects that `headers` prints, with the message names above them when there are
        several."""
        result = self.expect(zqv("headers", "--name", "Subject", *arguments, cwd=self.folder,
                                 **options))
        lines = [line for line in result.out.splitlines() if line]
        return [line.replace("==> ", "").replace(" <==", "").replace("Subject: ", "")
                for line in lines]


class MailboxTest(SourceTest):
    def test_messages_are_split_and_numbered(self):
        self.write("a.mbox", from_line() + message("one") + "\n" + from_line() + message("two"))
        self.assertEqual(self.subjects("a.mbox"), ["a.mbox#1", "one", "a.mbox#2", "two"])

    def test_a_single_message_has_no_heading(self):
        self.write("a.mbox", from_line() + message("one"))
        self.assertEqual(self.subjects("a.mbox"), ["one"])

    def test_the_separator_and_the_empty_line_before_it_belong_to_no_message(self):
        self.write("a.mbox", from_line() + message("one", "a\n\nb") + "\n" + from_line() +
                   message("two"))
        self.expect(zqv("text", "a.mbox", "--message", "1", cwd=self.folder), out="a\n\nb\n")
        self.expect(zqv("headers", "a.mbox", "--message", "1", cwd=self.folder),
                    out="Subject: one\n")

    def test_quoted_lines_lose_one_sign(self):
        self.write("a.mbox", from_line() + message("one", ">From a\n>>From b\n> From c\n>Fromd"))
        self.expect(zqv("text", "a.mbox", cwd=self.folder),
                    out="From a\n>From b\n> From c\n>Fromd\n")

    def test_a_paragraph_that_begins_with_from_is_no_separator(self):
        body = "a\n\nFrom time to time\n\nFrom 9:30 on\n\nFrom May on\nFrom b Sat Jan  3 01:05:34 1996"
        self.write("a.mbox", from_line() + message("one", body))
        self.expect(zqv("text", "a.mbox", cwd=self.folder), out=body + "\n")

    def test_separators_of_many_programs(self):
        for date in ("Sat Jan  3 01:05:34 1996", "Sat Jan  3 01:05 1996",
                     "Sat Jan 3 01:05:34 +0100 1996", "Sat, 3 Jan 1996 1:05:34 GMT"):
            with self.subTest(date):
                self.write("a.mbox", from_line(date) + message("one") + "\n" + from_line(date) +
                           message("two"))
                self.assertEqual(self.subjects("a.mbox"), ["a.mbox#1", "one", "a.mbox#2", "two"])

    def test_crlf(self):
        text = from_line() + message("one", ">From a") + "\n" + from_line() + message("two")
        self.write("a.mbox", text.replace("\n", "\r\n"))
        self.assertEqual(self.subjects("a.mbox"), ["a.mbox#1", "one", "a.mbox#2", "two"])
        self.expect(zqv("text", "a.mbox", "--message", "1", cwd=self.folder), out="From a\n")

    def test_no_line_end_at_the_end(self):
        self.write("a.mbox", from_line() + "Subject: one\n\nx\n\n" + from_line() +
                   "Subject: two\n\nlast")
        self.expect(zqv("text", "a.mbox", "--message", "2", cwd=self.folder), out="last\n")

    def test_messages_longer_than_the_read_buffer(self):
        body = "\n".join(f"{i:06} {'y' * 60}" for i in range(3000))
        self.write("a.mbox", from_line() + message("one", body) + "\n" + from_line() +
                   message("two", body[::-1]))
        self.expect(zqv("text", "a.mbox", "--message", "1", cwd=self.folder), out=body + "\n")
        self.expect(zqv("text", "a.mbox", "--message", "2", cwd=self.folder), out=body[::-1] + "\n")

    def test_one_that_cannot_be_parsed_does_not_stop_others(self):
        self.write("a.mbox", from_line().encode() + b"\xC3x\n\n" + from_line().encode() +
                   message("two").encode())
        result = self.expect(zqv("headers", "a.mbox", cwd=self.folder), 1,
                             "==> a.mbox#2 <==\nSubject: two\n", None)
        self.assertRegex(result.err, r"\Azqv: a\.mbox#1: UnsupportedOperationException: .*\n\Z")

    def test_an_empty_message(self):
        self.write("a.mbox", from_line() + "\n" + from_line() + message("two"))
        self.expect(zqv("headers", "a.mbox", cwd=self.folder), 1,
                    "==> a.mbox#2 <==\nSubject: two\n",
                    "zqv: a.mbox#1: UnsupportedOperationException: Can't parse empty text.\n")

    def test_as_one_message(self):
        self.write("a.mbox", from_line() + message("one") + "\n" + from_line() + message("two"))
        result = self.expect(zqv("tree", "--input", "message", "a.mbox", cwd=self.folder))
        self.assertEqual(result.out.count("\n"), 1)

    def test_only_mailboxes_are_wanted(self):
        self.write("a.eml", message("one"))
        self.expect(zqv("show", "--input", "mbox", "a.eml", cwd=self.folder), 1, "",
                    "zqv: a.eml: does not begin with the From line of an mbox file\n")

    def test_from_standard_input(self):
        box = from_line() + message("one") + "\n" + from_line() + message("two")
        self.assertEqual(self.subjects("-", stdin=box.encode()), ["-#1", "one", "-#2", "two"])


class FolderTest(SourceTest):
    def fill(self):
        for name in ("b.eml", "a.eml", "sub/c.eml", "sub/deep/d.eml", ".hidden.eml",
                     ".hidden/e.eml"):
            path = self.folder / "mail" / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(message(name))

    def test_is_refused_without_the_option(self):
        self.fill()
        self.expect(zqv("show", "mail", cwd=self.folder), 1, "",
                    "zqv: mail: is a folder; --recursive reads what is in it\n")

    def test_names_in_order_files_first(self):
        self.fill()
        expected = []
        for name in ("a.eml", "b.eml", "sub/c.eml", "sub/deep/d.eml"):
            expected += ["mail/" + name, name]
        self.assertEqual(self.subjects("-r", "mail"), expected)
        self.assertEqual(self.subjects("-r", "mail/"), expected)

    def test_links_to_files_are_followed_and_to_folders_not(self):
        self.fill()
        (self.folder / "mail" / "sub" / "loop").symlink_to(self.folder / "mail")
        (self.folder / "mail" / "z.eml").symlink_to(self.folder / "mail" / "a.eml")
        (self.folder / "mail" / "nowhere.eml").symlink_to(self.folder / "none")
        self.assertEqual(self.subjects("-r", "mail")[4:6], ["mail/z.eml", "a.eml"])
        self.assertEqual(len(self.subjects("-r", "mail")), 10)

    def test_pipes_and_sockets_in_folders_are_skipped(self):
        self.fill()
        os.mkfifo(self.folder / "mail" / "pipe")
        self.assertEqual(len(self.subjects("-r", "mail")), 8)

    def test_empty(self):
        self.expect(zqv("show", "-r", self.folder), out="")

    def test_mailboxes_in_folders(self):
        self.write("a.mbox", from_line() + message("one") + "\n" + from_line() + message("two"))
        self.assertEqual(self.subjects("-r", "."), ["./a.mbox#1", "one", "./a.mbox#2", "two"])

    def test_unreadable(self):
        self.fill()
        (self.folder / "mail" / "sub").chmod(0)
        self.addCleanup((self.folder / "mail" / "sub").chmod, 0o755)
        result = zqv("headers", "--name", "Subject", "-r", "mail", program=self.copy_program(),
                     cwd=self.folder, **program.as_nobody())
        self.expect(result, 1, "==> mail/a.eml <==\nSubject: a.eml\n"
                    "\n==> mail/b.eml <==\nSubject: b.eml\n",
                    "zqv: mail/sub: Permission denied\n")


class MaildirTest(SourceTest):
    def fill(self, top="mail"):
        for name in ("new/1", "cur/2:2,S", "tmp/3"):
            path = self.folder / top / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(message(f"{top} {name}"))
        (self.folder / top / "index").write_text("no message")

    def test_new_then_cur(self):
        self.fill()
        self.assertEqual(self.subjects("mail"),
                         ["mail/new/1", "mail new/1", "mail/cur/2:2,S", "mail cur/2:2,S"])

    def test_folders_of_a_maildir_on_request(self):
        self.fill()
        self.fill("mail/.Sent")
        self.assertEqual(len(self.subjects("mail")), 4)
        self.assertEqual(self.subjects("-r", "mail")[4:6],
                         ["mail/.Sent/new/1", "mail/.Sent new/1"])


class PipeTest(SourceTest):
    def test_a_pipe_in_the_file_system(self):
        path = self.folder / "pipe"
        os.mkfifo(path)
        writer = threading.Thread(target=path.write_text, args=(message("piped"),))
        writer.start()
        self.assertEqual(self.subjects("pipe"), ["piped"])
        writer.join()

    def test_an_open_pipe(self):
        run = subprocess.run(["bash", "-c", '"$0" headers <(printf "Subject: x\\n\\ny\\n")', ZQV],
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=environment(),
                             timeout=TIMEOUT, check=False)
        self.assertEqual((run.returncode, run.stdout, run.stderr), (0, b"Subject: x\n", b""))


class ChoiceTest(SourceTest):
    def test_by_number_over_all_inputs(self):
        self.write("a.mbox", from_line() + message("one") + "\n" + from_line() + message("two"))
        self.write("b.eml", message("three"))
        for number, subject in (("1", "one"), ("2", "two"), ("3", "three")):
            self.assertEqual(self.subjects("a.mbox", "b.eml", "--message", number), [subject])

    def test_none_of_that_number(self):
        self.write("b.eml", message("one"))
        self.expect(zqv("show", "--message", "2", "b.eml", cwd=self.folder), 1, "",
                    "zqv: there is no message 2\n")

    def test_verbs_on_one_message_refuse_several(self):
        self.write("a.mbox", from_line() + message("one") + "\n" + from_line() + message("two"))
        for verb in (["strip"], ["extract", "--dir", "out"], ["extract", "--stdout", "0"],
                     ["report", "-o", "out"]):
            with self.subTest(verb):
                advice = "; export --form attachments writes the files of all"
                self.expect(zqv(*verb, "a.mbox", cwd=self.folder), 1, "",
                            "zqv: a.mbox#1: is not the only message; --message NUMBER chooses one" +
                            (advice if verb[0] == "extract" else "") + "\n")
        self.assertFalse((self.folder / "out").exists())
        result = self.expect(zqv("strip", "a.mbox", "--message", "2", cwd=self.folder))
        self.assertIn("Subject: two\n", result.out)


class ContainersTest(program.TestCase):
    """Compressed files and archives, which are recognised by their first bytes."""

    DATA = (b"From: a@example.com\nSubject: one\nContent-Type: text/plain\n\nhello\n")

    def texts(self, path, **options):
        return zqv("headers", "--name", "Subject", path, cwd=self.folder, **options)

    def test_compressed_messages(self):
        zstd = subprocess.run(["zstd", "-q"], input=self.DATA, stdout=subprocess.PIPE, check=True)
        for name, data in {"a.eml.gz": gzip.compress(self.DATA), "b": bz2.compress(self.DATA),
                           "c.xz": lzma.compress(self.DATA), "d": zstd.stdout}.items():
            with self.subTest(name):
                self.expect(self.texts(self.write(name, data)), out="Subject: one\n")
                self.expect(self.texts("-", stdin=data), out="Subject: one\n")

    def test_compressed_mailbox(self):
        mailbox = (from_line() + message("one") + "\n" + from_line() + message("two")).encode()
        self.write("a.mbox.gz", gzip.compress(mailbox))
        result = self.expect(self.texts("a.mbox.gz"))
        self.assertEqual(result.out, "==> a.mbox.gz#1 <==\nSubject: one\n\n"
                                     "==> a.mbox.gz#2 <==\nSubject: two\n")

    def archive(self):
        with zipfile.ZipFile(self.folder / "a.zip", "w") as archive:
            archive.writestr("../../up/1.eml", self.DATA)
            archive.writestr("d/2.eml", self.DATA.replace(b"one", b"two"))
            archive.writestr("d/3.mbox", from_line() + message("three"))
            archive.writestr("d/notes.txt", "no message at all\n")
            archive.writestr("d/.hidden", self.DATA)
            archive.writestr("__MACOSX/2.eml", self.DATA)

    def test_zip(self):
        self.archive()
        result = self.texts("a.zip")
        self.assertEqual(result.err,
                         "zqv: a.zip/d/notes.txt: is no message but a text without header fields\n")
        self.assertEqual(re.findall("==> (.*) <==\nSubject: (.*)", result.out),
                         [("a.zip/../../up/1.eml", "one"), ("a.zip/d/2.eml", "two"),
                          ("a.zip/d/3.mbox#1", "three")])

    def test_names_in_archives_are_not_used_as_paths(self):
        self.archive()
        result = zqv("export", "a.zip", "--to", "in/out", "--form", "text", cwd=self.folder)
        self.assertEqual(result.code, 0, result)
        files = sorted(str(path.relative_to(self.folder)) for path in self.folder.rglob("*.txt"))
        self.assertEqual(files, ["in/out/a.zip/d/2.eml.txt", "in/out/a.zip/d/3.mbox/000001.txt",
                                 "in/out/a.zip/up/1.eml.txt"])

    def test_tar(self):
        with tarfile.open(self.folder / "a.tgz", "w:gz") as archive:
            for name in ("1.eml", "2.eml"):
                entry = tarfile.TarInfo(name)
                entry.size = len(self.DATA)
                archive.addfile(entry, io.BytesIO(self.DATA))
            link = tarfile.TarInfo("link")
            link.type, link.linkname = tarfile.SYMTYPE, "/etc/passwd"
            archive.addfile(link)
        result = self.expect(self.texts("a.tgz"))
        self.assertEqual(result.out.count("Subject: one\n"), 2)

    def test_damaged(self):
        path = self.write("a.gz", gzip.compress(self.DATA * 1000)[:60])
        result = self.expect(self.texts(path), 1, "", None)
        self.assertRegex(result.err, "^zqv: .*a.gz: cannot be unpacked: ")

    def test_archive_in_an_archive(self):
        self.archive()
        with zipfile.ZipFile(self.folder / "b.zip", "w") as archive:
            archive.write(self.folder / "a.zip", "a.zip")
        self.expect(self.texts("b.zip"), 0, "",
                    "zqv: b.zip/a.zip: is no message but an archive within another file\n")

    def test_emlx(self):
        self.write("1.emlx", b"%-10d\n" % len(self.DATA) + self.DATA + b"<?xml version='1.0'?>")
        self.assertEqual(zqv("json", "1.emlx", cwd=self.folder).out.count("xml version"), 0)
        self.expect(self.texts("1.emlx"), out="Subject: one\n")

    def test_files_that_are_no_messages(self):
        folder = self.folder / "mail"
        folder.mkdir()
        rows = {b"\x7FELF\x02\x01": "a program", b"MZ\x90\0": "a program", b"#!/bin/sh\n": "a script",
                b"\xD0\xCF\x11\xE0": "an OLE file, such as .msg, .doc or Thumbs.db",
                b"%PDF-1.7\n": "a PDF document", b"hello\nworld: x y\n"[:6]: "a text without header fields",
                b"\0\1\2\n": "a file of bytes"}
        for i, (data, what) in enumerate(rows.items()):
            path = self.write(f"mail/{i}", data)
            with self.subTest(what):
                self.expect(self.texts(path), 1, "", f"zqv: {path}: is no message but {what}\n")
        self.write("mail/good.eml", self.DATA)
        result = self.expect(zqv("headers", "--name", "Subject", "-r", "mail", cwd=self.folder), 0,
                             "Subject: one\n", None)
        self.assertEqual(result.err.splitlines()[-1], f"zqv: {len(rows)} files are no messages")
        self.assertIn("hello", zqv("text", "--input", "message", "mail/5", cwd=self.folder).out)


class LengthTest(program.TestCase):
    """Mailboxes whose messages have a Content-Length."""

    def subjects(self, data):
        result = self.expect(zqv("json", "--lines", self.write("a.mbox", data)))
        return [(row["message"]["subject"], row["message"]["plain_text"])
                for row in map(json.loads, result.out.splitlines())]

    def mail(self, subject, body, length=None):
        length = len(body) if length is None else length
        return (from_line() + f"Subject: {subject}\nContent-Type: text/plain\n"
                f"Content-Length: {length}\n\n{body}")

    def test_separators_in_a_body(self):
        body = "first\n\n" + from_line() + "still\n>From the first\n"
        self.assertEqual(self.subjects(self.mail("1", body) + "\n" + self.mail("2", "x\n") + "\n"),
                         [("1", body), ("2", "x\n")])
        self.assertEqual(self.subjects(self.mail("1", body) + self.mail("2", body)),
                         [("1", body), ("2", body)])

    def test_lines_that_were_marked(self):
        self.assertEqual(self.subjects(self.mail("1", "a\n>From b\n") + "\n"), [("1", "a\nFrom b\n")])

    def test_lengths_that_are_wrong(self):
        for length in (1, 3, 7, 100, 100000, 99999999999999999999):
            with self.subTest(length):
                self.assertEqual(
                    self.subjects(self.mail("1", "a\nb\n", length) + "\n" + self.mail("2", "c\n")),
                    [("1", "a\nb\n"), ("2", "c\n")])


class PiecesTest(program.TestCase):
    """Messages that were sent in several parts (message/partial)."""

    BODY = "line one\nline two\nline three\nline four\n"

    def piece(self, number, body, total="; total=3"):
        return (f"From: a@example.com\nSubject: piece {number}\nMessage-ID: <{number}@x>\n"
                f"Content-Type: message/partial; id=\"abc\"; number={number}{total}\n\n{body}")

    def write_all(self, numbers=(1, 2, 3)):
        inner = "Subject: whole\nContent-Type: text/plain\nMessage-ID: <w@x>\nX-Lost: x\n\n"
        lines = self.BODY.splitlines(keepends=True)
        bodies = {1: inner + lines[0], 2: lines[1] + lines[2], 3: lines[3]}
        return [self.write(f"{number}.eml", self.piece(number, bodies[number],
                                                       "; total=3" if number == 3 else ""))
                for number in numbers]

    def test_joined_in_any_order(self):
        for order in ((1, 2, 3), (3, 1, 2)):
            result = self.expect(zqv("text", *self.write_all(order)))
            self.assertEqual(result.out.partition("\n")[2], self.BODY)
        result = self.expect(zqv("headers", *self.write_all()))
        self.assertEqual(result.out.splitlines()[1:],
                         ["From: a@example.com", "Subject: whole", "Content-Type: text/plain",
                          "Message-ID: <w@x>"])

    def test_pieces_that_are_missing(self):
        result = self.expect(zqv("headers", "--name", "Subject", *self.write_all((1, 3))))
        self.assertEqual(re.findall("Subject: (.*)", result.out), ["piece 1", "piece 3"])


if __name__ == "__main__":
    unittest.main()
