"""Runs the zqv program. The environment variable ZQV names it, and ZQV_SAMPLES the samples."""

import os
import pathlib
import pty
import resource
import shutil
import subprocess
import tempfile
import unittest

ZQV = pathlib.Path(os.environ["ZQV"])
SAMPLES = pathlib.Path(os.environ["ZQV_SAMPLES"])
LIBRARY = ZQV.parent / "MimeEmailZQV.so"
NOBODY = 65534
TIMEOUT = 60  # seconds; builds with sanitizers are slow


class Result:
    """The result of a run: exit code, standard output and standard error."""

    def __init__(self, code, out, err):
        self.code = code
        self.out_bytes = out
        self.err = err.decode("utf-8")

    @property
    def out(self):
        return self.out_bytes.decode("utf-8")

    def __repr__(self):
        out = self.out_bytes.decode("utf-8", "backslashreplace")
        return f"exit code {self.code}\n-- out\n{out}\n-- err\n{self.err}"


def environment():
    """The environment of a run. Dates are shown in the machine's zone, so the zone is set."""
    return {**os.environ, "TZ": "UTC", "LC_ALL": "C"}


def as_nobody():
    """Options of `zqv` to run without root's rights; no options when the test does not run as
    root."""
    if os.getuid() != 0:
        return {}
    return {"user": NOBODY, "group": NOBODY, "extra_groups": []}


def limit_memory(megabytes):
    """Limits the address space of a process before the program starts."""
    resource.setrlimit(resource.RLIMIT_AS, (megabytes << 20, megabytes << 20))


def zqv(*arguments, stdin=b"", program=ZQV, **options):
    """Runs the program until it ends."""
    if isinstance(stdin, bytes):
        options["input"] = stdin
    else:
        options["stdin"] = stdin
    run = subprocess.run([program, *arguments], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                         env=environment(), timeout=TIMEOUT, check=False, **options)
    return Result(run.returncode, run.stdout, run.stderr)


def on_terminal(*arguments, columns=None, **variables):
    """The output of the program on a terminal that does not change the bytes."""
    primary, secondary = pty.openpty()
    width = ["cols", str(columns)] if columns else []
    subprocess.run(["stty", "-F", os.ttyname(secondary), "raw", *width], check=True)
    with subprocess.Popen([ZQV, *arguments], stdin=subprocess.DEVNULL, stdout=secondary,
                          stderr=subprocess.PIPE, env={**environment(), **variables}) as process:
        os.close(secondary)
        out = b""
        try:
            while chunk := os.read(primary, 65536):
                out += chunk
        except OSError:  # the end of a terminal's output
            pass
        process.communicate(timeout=TIMEOUT)
    os.close(primary)
    return out.decode("utf-8")


class TestCase(unittest.TestCase):
    """A test with a folder of its own, `self.folder`."""

    maxDiff = None

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def write(self, name, data):
        """Writes a file in the test's folder and returns its path."""
        path = self.folder / name
        path.write_bytes(data if isinstance(data, bytes) else data.encode("utf-8"))
        return path

    def copy_program(self):
        """Copies the program and its library to a folder that every user can read."""
        self.folder.chmod(0o755)
        for file in (ZQV, LIBRARY):
            shutil.copy(file, self.folder)
            (self.folder / file.name).chmod(0o755)
        return self.folder / ZQV.name

    def expect(self, result, code=0, out=None, err=""):
        """Compares a run with the expected result; a stream with None is not compared."""
        self.assertEqual(result.code, code, result)
        if out is not None:
            self.assertEqual(result.out, out, result)
        if err is not None:
            self.assertEqual(result.err, err, result)
        return result
