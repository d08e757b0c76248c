"""A full disk: one error message, and no partly written file."""

import os
import re
import subprocess
import unittest

import program
from program import SAMPLES, TIMEOUT, ZQV, environment

# Mounts a small disk at $1 that only this process sees, and runs the other arguments in its folder.
MOUNT = 'mount -t tmpfs -o size=64k none "$1" && cd "$1" && shift && exec "$@"'
NAMESPACE = ["unshare", "--mount"] if os.getuid() == 0 else ["unshare", "--map-root-user", "--mount"]


def on_small_disk(disk, script):
    """Runs a shell script on a disk of 64 KB. $0 is the program, $1 a message with a too large
    attachment."""
    return subprocess.run([*NAMESPACE, "sh", "-c", MOUNT, "sh", disk, "sh", "-c", script, ZQV,
                           disk.parent / "large.eml"], stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=environment(),
                          timeout=TIMEOUT, check=False)


def can_mount():
    return subprocess.run([*NAMESPACE, "mount", "-t", "tmpfs", "none", "/mnt"], check=False,
                          stderr=subprocess.DEVNULL).returncode == 0


@unittest.skipUnless(can_mount(), "no disk can be mounted here, as containers may forbid it")
class DiskFullTest(program.TestCase):
    def setUp(self):
        super().setUp()
        self.disk = self.folder / "disk"
        self.disk.mkdir()
        data = "Subject: x\nMIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n"
        for name, size in (("small", 1000), ("large", 100_000)):
            data += (f"--b\nContent-Type: application/x-{name}\n"
                     f"Content-Disposition: attachment; filename={name}.bin\n\n" + "x" * size + "\n")
        self.write("large.eml", data + "--b--\n")

    def check(self, command, left, error):
        """Runs the command, and then lists the files on the disk with their sizes."""
        run = on_small_disk(self.disk, command + '; code=$?; find . -type f -printf "%p %s\\n" | sort; '
                                                 "exit $code")
        self.assertEqual(run.returncode, 1, run)
        self.assertEqual(run.stdout.decode(), left, run)
        self.assertRegex(run.stderr.decode(), error)

    def test_extract(self):
        self.check('"$0" extract "$1" --dir . >/dev/null', "./small.bin 1000\n",
                   r"\Azqv: \./large\.bin: No space left on device\n\Z")

    def test_export_of_json(self):
        self.check('"$0" export "$1" --to . --attachments base64', "",
                   r"\Azqv: .*/large\.eml: \./large\.eml\.json: No space left on device; "
                   r"exported 0 messages\n\Z")

    def test_export_of_attachments(self):
        self.check('"$0" export "$1" --to . --form attachments', "",
                   r"\Azqv: .*/large\.eml: \./\.large\.eml\.files\.unfinished/large\.bin: "
                   r"No space left on device; exported 0 messages\n\Z")

    def test_export_in_several_processes(self):
        self.check('"$0" export "$1" --to . --jobs 2 --attachments base64', "",
                   r"\Azqv: .*/large\.eml: \./large\.eml\.json: No space left on device; "
                   r"exported 0 messages\n\Z")

    def test_export_of_many_messages_ends_with_one_line(self):
        mail = self.folder / "mail"
        mail.mkdir()
        for i in range(100):
            (mail / f"{i:02}.eml").write_text("Subject: x\n\n" + "x" * 3000)
        for options in ("", "--jobs 2", "--form text,json", "--form text --jobs 2"):
            with self.subTest(options):
                run = on_small_disk(self.disk, f'"$0" export --recursive ../mail --to . {options}')
                self.assertEqual(run.returncode, 1, run)
                found = re.fullmatch(r"zqv: \.\./mail/\d+\.eml: \S+: No space left on device; "
                                     r"exported (\d+) messages\n", run.stderr.decode())
                self.assertTrue(found, run)
                self.assertIn(int(found[1]), range(3, 22))

    def test_extract_ends_at_the_first_file(self):
        self.check('head -c 65000 /dev/zero > filler; "$0" extract "$1" --dir .',
                   "./filler 65000\n", r"\Azqv: \./small\.bin: No space left on device\n\Z")

    def test_report(self):
        self.check('head -c 63000 /dev/zero > filler; "$0" report "$1" -o page.html',
                   "./filler 63000\n",
                   r"\Azqv: .*/large\.eml: \./page\.html: No space left on device\n\Z")

    def test_the_old_file_stays_when_the_new_one_does_not_fit(self):
        self.check('echo old > large.bin; "$0" extract "$1" --dir . --force >/dev/null',
                   "./large.bin 4\n./small.bin 1000\n",
                   r"\Azqv: \./large\.bin: No space left on device\n\Z")


class OutputFullTest(program.TestCase):
    def test_standard_output(self):
        run = subprocess.run(["sh", "-c", '"$0" json "$1" > /dev/full', ZQV, SAMPLES / "plain.eml"],
                             stderr=subprocess.PIPE, env=environment(), timeout=TIMEOUT,
                             check=False)
        self.assertEqual((run.returncode, run.stderr),
                         (1, b"zqv: standard output: No space left on device\n"))


if __name__ == "__main__":
    unittest.main()
