"""Wine in a folder of its own, with one server for many programs."""

import contextlib
import os
import pathlib
import shutil
import subprocess
import tempfile
import time

TOO_LATE = 124  # the exit code for a program that took too long


def environment(prefix=None, **more):
    """The environment of a program. Wine's folder is in it once `server` was called."""
    values = dict(os.environ, WINEDEBUG="-all", LC_ALL="C.UTF-8", **more)
    if prefix is not None:
        values["WINEPREFIX"] = str(prefix)
    return values


def run(command, variables, seconds):
    """Runs a program. Returns its exit code and output. A program that takes longer is ended, and
    its exit code is TOO_LATE. The output goes to a file: Wine starts other processes, which would
    keep a pipe open after the program ended."""
    with tempfile.TemporaryFile() as output:
        late = ""
        try:
            code = subprocess.run(command, env=variables, timeout=seconds, check=False,
                                  stdout=output, stderr=subprocess.STDOUT,
                                  stdin=subprocess.DEVNULL).returncode
        except subprocess.TimeoutExpired:
            code, late = TOO_LATE, f"\nended after {seconds} seconds\n"
        output.seek(0)
        return code, output.read().decode("utf-8", "replace") + late


def find_server(prefix):
    """The process id of the server for this folder, or nothing."""
    for process in pathlib.Path("/proc").iterdir():
        try:
            name = (process / "comm").read_text()
            variables = (process / "environ").read_bytes().split(b"\0")
        except OSError:
            continue
        if name.startswith("wineserver") and f"WINEPREFIX={prefix}".encode() in variables:
            return int(process.name)
    return None


@contextlib.contextmanager
def server(prefix):
    """Creates the folder if it does not exist, and keeps its server running, so that programs start
    fast."""
    prefix = pathlib.Path(prefix).resolve()
    os.environ["WINEPREFIX"] = str(prefix)
    if not (prefix / "system.reg").exists():
        prefix.parent.mkdir(parents=True, exist_ok=True)
        run(["wineboot", "--init"], environment(), 600)
        wait_for_end(prefix)
    remove_left_files(prefix)
    run(["wineserver", "--persistent"], environment(), 60)
    try:
        yield
    finally:
        stop(prefix)


def remove_left_files(prefix):
    """Deletes temporary folders of processes that ended during a test."""
    for folder in prefix.glob("drive_c/users/*/Temp/zqv-*"):
        shutil.rmtree(folder, ignore_errors=True)


def wait_for_end(prefix):
    """Waits for the first server, which ends by itself when it has written all its data."""
    for _ in range(300):
        if find_server(prefix) is None:
            return
        time.sleep(0.1)


def stop(prefix):
    found = find_server(prefix)
    if found is not None:
        os.kill(found, 15)
        wait_for_end(prefix)
