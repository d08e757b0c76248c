"""Where messages come from: files, mailboxes, Maildirs, folders, pipes."""

import os
import subprocess
import threading
import unittest

import program
from program import TIMEOUT, ZQV, environment, zqv


def message(subject, body="x"):
    return f"Subject: {subject}\n\n{body}\n"


def from_line(date="Sat Jan  3 01:05:34 1996"):
    return f"From someone@example.com {date}\n"


class SourceTest(program.TestCase):
    def subjects(self, *arguments, **options):
        """The subjects that `headers` prints, with the names above them when there are several."""
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

    def test_messages_longer_than_what_is_read_at_once(self):
        body = "\n".join(f"{i:06} {'y' * 60}" for i in range(3000))
        self.write("a.mbox", from_line() + message("one", body) + "\n" + from_line() +
                   message("two", body[::-1]))
        self.expect(zqv("text", "a.mbox", "--message", "1", cwd=self.folder), out=body + "\n")
        self.expect(zqv("text", "a.mbox", "--message", "2", cwd=self.folder), out=body[::-1] + "\n")

    def test_one_that_cannot_be_parsed_keeps_no_other_back(self):
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

    def test_pipes_and_sockets_in_folders_are_left_alone(self):
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

    def test_folders_of_it_when_told(self):
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


if __name__ == "__main__":
    unittest.main()
