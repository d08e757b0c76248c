"""The output: where it goes, and the behaviour when it cannot be written."""

import os
import signal
import subprocess
import unittest

import program
from program import SAMPLES, TIMEOUT, ZQV, environment, zqv

PLAIN = SAMPLES / "plain.eml"


class OutputTest(program.TestCase):
    def shell(self, command, *arguments):
        """Runs a shell command line with redirections around the program, which is $0."""
        run = subprocess.run(["sh", "-c", command, ZQV, *arguments], env=environment(),
                             stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE, timeout=TIMEOUT, check=False)
        return program.Result(run.returncode, run.stdout, run.stderr)

    def test_closed_output_is_an_error(self):
        for verb in ("show", "classes", "--help"):
            with self.subTest(verb):
                files = [PLAIN] if verb == "show" else []
                self.expect(self.shell(f'"$0" {verb} "$@" >&-', *files), 1, "",
                            "zqv: standard output: Bad file descriptor\n")

    def test_closed_output_ends_up_in_no_file(self):
        target = self.folder / "out"
        result = self.shell('"$0" extract "$1" --dir "$2" <&- >&-', SAMPLES / "nested.eml", target)
        self.expect(result, 1, "", "zqv: standard output: Bad file descriptor\n")
        for file in target.iterdir():
            self.assertNotIn(str(target).encode(), file.read_bytes())
        self.assertTrue((target / "logo.gif").read_bytes().startswith(b"GIF89a"))

    def test_closed_error_output_loses_messages_only(self):
        self.expect(self.shell('"$0" headers --name Subject gone.eml "$1" 2>&-', PLAIN), 1,
                    f"==> {PLAIN} <==\nSubject: Keys\n")

    def test_full_device(self):
        self.expect(self.shell('"$0" show "$1" >/dev/full', PLAIN), 1, "",
                    "zqv: standard output: No space left on device\n")

    def check_closed_pipe(self, **options):
        path = self.write("long.eml", "Subject: x\n\n" + "line\n" * 1_000_000)
        read_end, write_end = os.pipe()
        with subprocess.Popen([ZQV, "show", path], stdin=subprocess.DEVNULL, stdout=write_end,
                              stderr=subprocess.PIPE, env=environment(), **options) as process:
            os.close(write_end)
            self.assertTrue(os.read(read_end, 10))
            os.close(read_end)
            _, err = process.communicate(timeout=TIMEOUT)
        self.assertEqual(err, b"")
        self.assertEqual(process.returncode, -signal.SIGPIPE)

    def test_closed_pipe_ends_quietly(self):
        self.check_closed_pipe()

    def test_closed_pipe_ends_quietly_where_the_signal_was_ignored(self):
        before = signal.signal(signal.SIGPIPE, signal.SIG_IGN)
        self.addCleanup(signal.signal, signal.SIGPIPE, before)
        self.check_closed_pipe(restore_signals=False)

    def test_messages_on_standard_error_follow_the_output(self):
        result = self.shell('"$0" headers --name X "$1" "$1" 2>&1', PLAIN)
        self.expect(result, 1,
                    f"==> {PLAIN} <==\nzqv: {PLAIN}: there is no field X\n"
                    f"\n==> {PLAIN} <==\nzqv: {PLAIN}: there is no field X\n")

    def test_names_that_are_no_text(self):
        name = os.fsencode(self.folder) + b"/caf\xE9.eml"
        with open(name, "wb") as file:
            file.write(b"Subject: x\n\nx\n")
        self.expect(zqv("headers", name, name), 0,
                    f"==> {self.folder}/caf\\xE9.eml <==\nSubject: x\n"
                    f"\n==> {self.folder}/caf\\xE9.eml <==\nSubject: x\n")


class DebugTest(program.TestCase):
    def test_log_goes_to_the_error_output(self):
        quiet = self.expect(zqv("show", PLAIN))
        loud = self.expect(zqv("show", PLAIN, "--debug"), 0, quiet.out, None)
        self.assertIn("ZQV Debug: Set email plainText\n", loud.err)


if __name__ == "__main__":
    unittest.main()
