#!/usr/bin/env python3
"""Tests scripts/make_package.py: the package has the layout that the IDE expects, and equal content
gives equal bytes, independent of the time and of the order of the files."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest
import zipfile

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "make_package.py"
FILES = {
    "Build Resources/Mac Universal/MimeEmailZQV.dylib": b"mac",
    "Build Resources/Linux arm64/MimeEmailZQV.so": b"arm" * 1000,
    "IDE Resources/Help/index.html": "<p>é</p>".encode(),
}


class Package(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def make(self, name, files, age=0):
        """A package of these files, whose time stamps are `age` seconds old."""
        arguments = []
        for number, (inside, content) in enumerate(files.items()):
            path = self.folder / f"{name}{number}"
            path.write_bytes(content)
            os.utime(path, (1_000_000_000 - age, 1_000_000_000 - age))
            arguments.append(f"{inside}={path}")
        package = self.folder / name
        subprocess.run([sys.executable, "-B", SCRIPT, package, *arguments], check=True)
        return package

    def test_holds_every_file_in_the_plugins_folder(self):
        with zipfile.ZipFile(self.make("one", FILES)) as package:
            self.assertIsNone(package.testzip())
            content = {name: package.read(name) for name in package.namelist()}
            modes = {entry.external_attr >> 16 for entry in package.infolist()}
        self.assertEqual(content, {f"MimeEmailZQV/{name}": FILES[name] for name in FILES})
        self.assertEqual(modes, {0o100644})

    def test_is_the_same_for_the_same_content(self):
        backwards = dict(reversed(FILES.items()))
        first = self.make("first", FILES).read_bytes()
        self.assertEqual(first, self.make("second", backwards, age=99_999).read_bytes())
        other = {**FILES, "IDE Resources/Help/index.html": b"another page"}
        self.assertNotEqual(first, self.make("third", other).read_bytes())

    def test_refuses_missing_names_and_files(self):
        for arguments in ([], ["out.zip"], ["out.zip", "a file without a name"]):
            run = subprocess.run([sys.executable, "-B", SCRIPT, *arguments], cwd=self.folder,
                                 capture_output=True, text=True, check=False)
            self.assertEqual(run.returncode, 1)
            self.assertIn("make_package.py OUTPUT NAME=FILE", run.stderr)
        self.assertEqual(list(self.folder.iterdir()), [])


if __name__ == "__main__":
    unittest.main()
