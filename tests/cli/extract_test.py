"""`zqv extract`: the bytes of attachments, and that no name and no link leads out of the folder."""

import base64
import email
import os
import pathlib
import resource
import signal
import unittest

import program
from program import SAMPLES, zqv

RIGHT_TO_LEFT = "\u202E"


def encoded_word(text):
    return "=?utf-8?B?" + base64.b64encode(text.encode("utf-8")).decode("ascii") + "?="


def message(*names, data=b"data"):
    """A message with one attachment for each file name (text or bytes), which is written
    unchanged."""
    body = b""
    for name in names:
        name = name if isinstance(name, bytes) else name.encode("utf-8")
        body += (b"--b\nContent-Type: application/x-any\n"
                 b'Content-Disposition: attachment; filename="' + name + b'"\n'
                 b"Content-Transfer-Encoding: base64\n\n" + base64.b64encode(data) + b"\n")
    return b"Subject: x\nContent-Type: multipart/mixed; boundary=b\n\n" + body + b"--b--\n"


class ExtractTest(program.TestCase):
    def setUp(self):
        super().setUp()
        # A deep folder, so that a name that leads upwards stays inside the test's folder, where it
        # is found.
        self.target = self.folder / "1" / "2" / "3"
        self.bystander = self.write("bystander", b"untouched")

    def extract(self, data, *options):
        path = self.write("message.eml", data)
        return zqv("extract", path, "--dir", self.target, *options)

    def files(self):
        """All files in the test's folder except those that the test created."""
        own = {self.bystander, self.folder / "message.eml"}
        found = {path for path in self.folder.rglob("*") if not path.is_dir() or path.is_symlink()}
        return {str(path.relative_to(self.target)) if self.target in path.parents else str(path)
                for path in found - own}

    def check_names(self, data, names, *options):
        """Requires exactly these files, in this order, all of them in the folder."""
        result = self.extract(data, *options)
        self.expect(result, 0, "".join(f"{self.target}/{name}\n" for name in names))
        self.assertEqual(self.files(), set(names))
        self.assertEqual(self.bystander.read_bytes(), b"untouched")
        return result


class DataTest(ExtractTest):
    def test_every_byte_as_it_is(self):
        data = bytes(range(256)) * 500 + b"\r\n\n\r"
        self.check_names(message("all.bin", data=data), ["all.bin"])
        self.assertEqual((self.target / "all.bin").read_bytes(), data)

    def test_samples(self):
        self.expect(zqv("extract", SAMPLES / "nested.eml", "--dir", self.target), 0, "".join(
            f"{self.target}/{name}\n"
            for name in ("logo.gif", "your message.eml", "pages.csv")))
        self.assertEqual((self.target / "pages.csv").read_bytes(),
                         b"page,printed\n1,yes\n2,no\n3,yes\n4,no")
        source = (SAMPLES / "nested.eml").read_bytes()
        attached = source.partition(b'filename="your message.eml"\n\n')[2]
        self.assertEqual((self.target / "your message.eml").read_bytes(),
                         attached.partition(b"\n--level-1--")[0])
        gif = (self.target / "logo.gif").read_bytes()
        self.assertEqual((gif[:6], gif[-1:], len(gif)), (b"GIF89a", b";", 121))

    def test_standard_input(self):
        self.expect(zqv("extract", "-", "--dir", self.target, stdin=message("a.txt")), 0,
                    f"{self.target}/a.txt\n")

    def test_nothing_attached(self):
        self.expect(zqv("extract", SAMPLES / "plain.eml", "--dir", self.target), 0, "")
        self.assertEqual(list(self.target.iterdir()), [])

    def test_files_get_the_usual_rights(self):
        self.check_names(message("a.txt"), ["a.txt"])
        usual = self.write("usual", b"").stat().st_mode
        self.assertEqual((self.target / "a.txt").stat().st_mode, usual)


class HostileNamesTest(ExtractTest):
    def test_names_that_lead_out_of_the_folder(self):
        names = {
            "../../x": "x",
            "/etc/passwd": "passwd",
            "..": "attachment",
            "../": "attachment",
            "a/../../b": "b",
            "..\\..\\y": "y",
            "C:\\z": "z",
            "d:e": "e",
            "\\\\server\\share\\f": "f",
        }
        self.check_names(message(*names),
                         ["x", "passwd", "attachment", "attachment (2)", "b", "y", "z", "e", "f"])

    def test_absolute_name_of_a_file_in_the_folder(self):
        self.check_names(message(str(self.bystander)), ["bystander"])

    def test_devices(self):
        self.check_names(message("con", "NUL.txt", "com1.tar.gz", "lpt9", "console"),
                         ["_con", "_NUL.txt", "_com1.tar.gz", "_lpt9", "console"])

    def test_no_name(self):
        self.check_names(message("", encoded_word(" . ")), ["attachment", "attachment (2)"])

    def test_very_long_name(self):
        self.check_names(message("a" * 3996 + ".pdf", "ä" * 2000 + ".txt"),
                         ["a" * 196 + ".pdf", "ä" * 98 + ".txt"])

    def test_very_long_equal_names(self):
        self.check_names(message("b" * 4000, "b" * 4000), ["b" * 200, "b" * 200 + " (2)"])

    def test_control_characters(self):
        self.check_names(message(encoded_word("a\x1B[2J\n\r\x07\x7F\x9Bb.txt")), ["a[2Jb.txt"])

    def test_control_characters_that_hide_a_way_out(self):
        self.check_names(message(encoded_word(".\x01./.\x02./x"), encoded_word("c\x7Fon")),
                         ["x", "_con"])

    def test_right_to_left_marks(self):
        self.check_names(message(encoded_word(f"annexe{RIGHT_TO_LEFT}gpj.exe"),
                                 encoded_word("\u200F\u061C\u2066q.txt\u2069")),
                         ["annexegpj.exe", "q.txt"])

    def test_high_bytes_without_charset_are_windows_1252(self):
        self.check_names(message(b"caf\xE9 \x80.txt"), ["café €.txt"])

    def test_invisible_characters(self):
        self.check_names(message("a\u200Bb\uFEFFc\u2028d\U000E0001e\u200Df\u00ADg.txt"),
                         ["abcdefg.txt"])

    def test_equal_names(self):
        self.check_names(message("a.txt", "a.txt", "A.TXT", "a (2).txt", "b"),
                         ["a.txt", "a (2).txt", "A (3).TXT", "a (2) (2).txt", "b"])

    def test_equal_names_with_force(self):
        self.check_names(message("a.txt", "a.txt"), ["a.txt", "a (2).txt"], "--force")


class FolderTest(ExtractTest):
    def refuse(self, data, name, reason, *options, others=""):
        self.expect(self.extract(data, *options), 1, others,
                    f"zqv: {self.target}/{name}: {reason}\n")

    def setUp(self):
        super().setUp()
        self.target.mkdir(parents=True)

    def test_existing_file_stays(self):
        (self.target / "a.txt").write_bytes(b"older")
        self.refuse(message("a.txt", "b.txt"), "a.txt", "File exists",
                    others=f"{self.target}/b.txt\n")
        self.assertEqual((self.target / "a.txt").read_bytes(), b"older")
        self.assertEqual((self.target / "b.txt").read_bytes(), b"data")

    def test_force_replaces_it(self):
        (self.target / "a.txt").write_bytes(b"older and longer")
        self.check_names(message("a.txt"), ["a.txt"], "--force")
        self.assertEqual((self.target / "a.txt").read_bytes(), b"data")

    def test_links_are_not_followed(self):
        for options in ([], ["--force"]):
            for goal in (self.bystander, self.folder / "made", pathlib.Path("nowhere")):
                with self.subTest(options=options, goal=goal):
                    link = self.target / "a.txt"
                    link.symlink_to(goal)
                    reason = "in the way, and not a plain file" if options else "File exists"
                    self.refuse(message("a.txt"), "a.txt", reason, *options)
                    self.assertEqual(os.readlink(link), str(goal))
                    link.unlink()
                    self.assertEqual(self.files(), set())
                    self.assertEqual(self.bystander.read_bytes(), b"untouched")

    def test_link_to_a_folder_is_not_followed_out(self):
        (self.target / "away").symlink_to(self.folder)
        self.expect(self.extract(message("away/a.txt")), 0, f"{self.target}/a.txt\n")
        self.assertEqual(self.files(), {"a.txt", "away"})

    def test_other_names_of_a_replaced_file_keep_their_bytes(self):
        os.link(self.bystander, self.target / "a.txt")
        self.check_names(message("a.txt"), ["a.txt"], "--force")
        self.assertEqual((self.target / "a.txt").read_bytes(), b"data")

    def test_only_files_are_replaced(self):
        (self.target / "a.txt").mkdir()
        os.mkfifo(self.target / "b.txt")
        for name in ("a.txt", "b.txt"):
            self.refuse(message(name), name, "File exists")
            self.refuse(message(name), name, "in the way, and not a plain file", "--force")

    def test_folder_may_be_a_link(self):
        self.target.rmdir()
        real = self.folder / "real"
        real.mkdir()
        self.target.symlink_to(real)
        self.expect(self.extract(message("a.txt")), 0, f"{self.target}/a.txt\n")
        self.assertEqual((real / "a.txt").read_bytes(), b"data")

    def test_folder_is_a_file(self):
        path = self.write("message.eml", message("a.txt"))
        self.expect(zqv("extract", path, "--dir", self.bystander), 1, "",
                    f"zqv: {path}: {self.bystander}: Not a directory\n")
        self.assertEqual(self.bystander.read_bytes(), b"untouched")

    def test_full_disk_leaves_no_half_file(self):
        def limit():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000))

        path = self.write("message.eml", message("a.txt", data=b"x" * 5000))
        self.expect(zqv("extract", path, "--dir", self.target, preexec_fn=limit), 1, "",
                    f"zqv: {self.target}/a.txt: File too large\n")
        self.assertEqual(self.files(), set())


class PartTest(program.TestCase):
    """The bytes of one part on standard output."""

    def test_bytes_of_a_file(self):
        result = self.expect(zqv("extract", SAMPLES / "attachments.eml", "--stdout", "2"), 0, None)
        message = email.message_from_bytes((SAMPLES / "attachments.eml").read_bytes())
        self.assertEqual(result.out_bytes, message.get_payload(1).get_payload(decode=True))

    def test_bytes_of_a_text_in_its_own_encoding(self):
        path = self.write("a.eml", b"Content-Type: text/plain; charset=iso-8859-1\n"
                                   b"Content-Transfer-Encoding: quoted-printable\n\ncaf=E9\n")
        result = self.expect(zqv("extract", path, "--stdout", "0"), 0, None)
        self.assertEqual(result.out_bytes, b"caf\xE9\n")

    def test_part_of_an_attached_message(self):
        result = self.expect(zqv("extract", SAMPLES / "nested.eml", "--stdout", "2.1.2"))
        self.assertEqual(len(result.out_bytes), 34)

    def test_a_multipart_has_no_bytes(self):
        self.expect(zqv("extract", SAMPLES / "attachments.eml", "--stdout", "1"), 0, "")

    def test_attached_message(self):
        result = self.expect(zqv("extract", SAMPLES / "nested.eml", "--stdout", "2"))
        self.assertTrue(result.out.startswith("Date: Fri, 13 Sep 2024 09:12:00 +0200\nFrom: Petra"))
        self.assertTrue(result.out.endswith("4,no\n--inside--\n"))

    def test_no_such_part(self):
        path = SAMPLES / "attachments.eml"
        for part in ("4", "1.3", "2.1", "0.1"):
            self.expect(zqv("extract", path, "--stdout", part), 1, "",
                        f"zqv: {path}: there is no part {part}\n")


if __name__ == "__main__":
    unittest.main()
