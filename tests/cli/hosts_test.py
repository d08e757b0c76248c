"""Old hosts, hosts without some entry points, and the list of classes."""

import os
import pathlib
import re
import unittest

import program
from program import SAMPLES, zqv

PLAIN = SAMPLES / "plain.eml"


class HostsTest(program.TestCase):
    def test_old_hosts_show_the_same(self):
        for sample in ("plain.eml", "nested.eml", "japanese.eml"):
            expected = self.expect(zqv("show", SAMPLES / sample)).out
            for version in ("2012.1", "2013", "2019.1", "2021"):
                with self.subTest(sample=sample, version=version):
                    self.expect(zqv("show", SAMPLES / sample, "--host-version", version), 0,
                                expected)

    def test_old_hosts_are_asked_for_the_file_in_their_way(self):
        old = self.expect(zqv("show", PLAIN, "--debug", "--host-version", "2012.1"), err=None)
        new = self.expect(zqv("show", PLAIN, "--debug", "--host-version", "2013.0"), err=None)
        self.assertIn(f"url path: file://{PLAIN}\n", old.err)
        self.assertIn(f"native path: {PLAIN}\n", new.err)

    def test_relative_names_and_unusual_characters_in_both_kinds_of_host(self):
        self.write("ä b%20#?.eml", "Subject: x\n\nx\n")
        for version in ("2012.1", "2024.1"):
            with self.subTest(version):
                self.expect(zqv("headers", "ä b%20#?.eml", "--host-version", version,
                                cwd=self.folder), 0, "Subject: x\n")

    def test_host_without_properties_opens_no_file(self):
        without = ["--without", "REALGetPropValueString"]
        self.expect(zqv("show", PLAIN, *without), 1, "",
                    f"zqv: {PLAIN}: IOException: Failed to open file for reading.\n")
        self.expect(zqv("headers", "--name", "Subject", "-", *without, stdin=PLAIN.read_bytes()),
                    0, "Subject: Keys\n")

    def test_host_without_arrays_shows_everything_else(self):
        result = self.expect(zqv("show", SAMPLES / "attachments.eml", "--without",
                                 "RuntimeArrayCreateSingleDimBoundedArray"))
        self.assertRegex(result.out, "(?m)^Subject: +Quarterly figures and the chart$")
        self.assertNotRegex(result.out, "(?m)^Parts:")

    def test_host_without_several(self):
        result = self.expect(zqv("show", "--without", "REALSetPropValueDouble", "--without",
                                 "REALGetPropValueDouble", SAMPLES / "attachments.eml"))
        # Without entry points for dates, the fields of the Date line are shown as written, in their
        # own zone.
        self.assertRegex(result.out, r"(?m)^ +2024-04-16 16:02:05 as the classes give it$")

    def test_host_without_any_one_entry_point(self):
        source = (pathlib.Path(os.environ["ZQV_SOURCE"]) / "abi/entry_points.def").read_text()
        names = re.findall(r"(?m)^ZQV_ENTRY_POINT\((\w+)", source)
        self.assertGreater(len(names), 30)
        for name in names:
            for verb in ("show", "json", "check", "addresses"):
                with self.subTest(name=name, verb=verb):
                    result = zqv(verb, SAMPLES / "nested.eml", "--without", name)
                    self.assertIn(result.code, (0, 1), result)
                    self.assertNotIn("stand-in host", result.err)

    def test_host_that_registers_nothing(self):
        self.expect(zqv("show", PLAIN, "--without", "PluginRegisterClass"), 1, "",
                    f"zqv: {PLAIN}: there is no class MimeEmailZQV\n")
        self.expect(zqv("classes", "--without", "PluginRegisterClass"), 0, "")


class ClassesTest(program.TestCase):
    def test_classes(self):
        out = self.expect(zqv("classes")).out
        self.assertEqual(re.findall(r"(?m)^class (\w+)", out), [
            "MimeBodyZQV", "MimeHeaderZQV", "MimeEntityZQV", "MimeAddressZQV", "MimeGroupZQV",
            "MimeAddressListZQV", "MimeMailboxListZQV", "MimeMailboxZQV", "MimeFieldZQV",
            "MimeEmailZQV", "MimeAttachmentZQV"])
        self.assertRegex(out, r"(?m)^class MimeEmailZQV of MimeEntityZQV,")
        self.assertRegex(out, r"(?m)^  property PlainText as String,")


if __name__ == "__main__":
    unittest.main()
