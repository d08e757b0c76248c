#!/usr/bin/env python3
"""Checks that the commands in the documents succeed, and print what the documents show.

  commands.py FOLDER ZQV   runs those of the project with the built program; fails when one fails
  commands.py --self-test  plants each fault in a scratch project and requires that it is found

Blocks marked `sh` in README.md and docs/ are run. Each block runs in a new folder with copies of
samples/, with `letter.eml`, and with the built program as ./run and as zqv; so nothing is
installed, built, or written into the project. Every command must succeed and print something. A
block without a language after it is the output of the block's last command, line by line; a line of
three dots stands for any lines. NOT_RUN lists commands that are not run.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

import documents

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
import planted

# The beginnings of commands that are not run, and the reasons. Each must occur in a document.
NOT_RUN = {
    "git clone ": "fetches the project",
    "apt ": "installs a package, as root",
    "man ": "shows the manual of an installed package",
    "sha256sum ": "checks the files of a release",
    "shasum ": "the same on a Mac",
}
# The least number of commands run for each document, and of outputs compared in total.
FEWEST_RUN = {"README.md": 15, "docs/install.md": 1, "docs/zqv.md": 10}
FEWEST_COMPARED = 1
LETTER = "attachments.eml"  # the sample copied as letter.eml; it has text, HTML and files
TIMEOUT = 60  # seconds for one command


class Shown:
    """A command of a document, and its output if the document shows it."""

    def __init__(self, line, text):
        self.line = line
        self.text = text
        self.output = None


def commands_of(block):
    """The commands of a block. A command is one line, or several lines joined by a backslash at
    their ends."""
    found, begun = [], ""
    for number, line in enumerate(block.lines, block.line):
        if line.endswith("\\"):
            begun += line[:-1]
            continue
        text = (begun + line).strip()
        begun = ""
        if text and not text.startswith("#"):
            found.append(Shown(number, text))
    return found


def shown_blocks(text):
    """The commands of each block of commands."""
    found, before = [], None
    for block in documents.split(text)[1]:
        if block.language == "sh":
            found.append(commands_of(block))
        elif not block.language and before == "sh" and found[-1]:
            found[-1][-1].output = block.lines
        before = block.language
    return found


def matches(shown, printed):
    """Whether the printed output matches the shown one."""
    pattern = "".join(r"(?:.*\n)*" if line == "..." else re.escape(line) + r"\n" for line in shown)
    return re.fullmatch(pattern, printed) is not None


def prepare(folder, top, program):
    """Prepares the folder in which commands run. Returns their environment."""
    shutil.copytree(top / "samples", folder / "samples")
    shutil.copy(top / "samples" / LETTER, folder / "letter.eml")
    (folder / "bin").mkdir()
    for name in ("run", "bin/zqv"):
        (folder / name).symlink_to(program)
    path = f"{folder / 'bin'}:{os.environ['PATH']}"
    return {"PATH": path, "HOME": str(folder), "TZ": "UTC", "LC_ALL": "C.UTF-8"}


def run(command, folder, environment):
    """The fault of a command, or nothing."""
    try:
        result = subprocess.run(["bash", "-e", "-o", "pipefail", "-c", command.text], cwd=folder,
                                env=environment, stdin=subprocess.DEVNULL, capture_output=True,
                                encoding="utf-8", errors="replace", timeout=TIMEOUT, check=False)
    except subprocess.TimeoutExpired:
        return f"did not end within {TIMEOUT} seconds"
    if result.returncode != 0:
        return f"ended with {result.returncode}: {result.stderr.strip()}"
    if not result.stdout and not result.stderr:
        return "printed nothing"
    if command.output is not None and not matches(command.output, result.stdout):
        return "printed something else than is shown:\n" + result.stdout
    return None


def check(top, program, fewest_run, not_run):
    """All faults of the project at `top`, one text each."""
    faults, compared, left_out = [], 0, set()
    names = [name for name in documents.documents(top)
             if name == "README.md" or re.fullmatch(r"docs/[^/]+", name)]
    for name in names:
        count = 0
        for commands in shown_blocks(documents.read(top, name)):
            with tempfile.TemporaryDirectory() as scratch:
                folder = pathlib.Path(scratch)
                environment = prepare(folder, top, program)
                for command in commands:
                    beginning = next((b for b in not_run if command.text.startswith(b)), None)
                    if beginning:
                        left_out.add(beginning)
                        continue
                    count += 1
                    compared += command.output is not None
                    fault = run(command, folder, environment)
                    if fault:
                        faults.append(f"{name}:{command.line}: {command.text}: {fault}")
        if count < fewest_run.get(name, 0):
            faults.append(f"{name}: only {count} commands were run")
    faults += [f"{name}: there is no such document" for name in fewest_run if name not in names]
    faults += [f"no command begins with '{beginning}'" for beginning in not_run.keys() - left_out]
    if compared < FEWEST_COMPARED:
        faults.append(f"only {compared} outputs were compared")
    return faults


# Replaces the program in the self-test: prints its arguments or a file's content, or fails on
# request.
PROGRAM = """#!/bin/sh
case $1 in
  cat) cat "$2" ;;
  lines) printf 'one\\ntwo\\nthree\\n' ;;
  nothing) ;;
  fail) echo "told to fail" >&2; exit 1 ;;
  write) echo new >"$2"; echo "$2" ;;
  *) echo "$@" ;;
esac
"""
GOOD = {
    "samples/attachments.eml": "A letter.\n",
    "README.md": "Text.\n\n```sh\ngit clone somewhere\n./run lines    # a comment\n```\n\n"
                 "```\none\n...\nthree\n```\n\n```sh\n# a comment\n./run write out | cat\n"
                 "./run cat out\n```\n\n```vb\nno.Command\n```\n\n```\nno output\n```\n",
    "docs/a.md": "```sh\nzqv cat letter.eml && \\\n  zqv two\n```\n\n```\nA letter.\ntwo\n```\n"
                 "\n```sh\n./run write out\n./run cat samples/attachments.eml > x; cat x\n```\n",
    "docs/b.txt": "```sh\nfalse\n```\n",
    "other.md": "```sh\nfalse\n```\n",
}
GOOD_FEWEST = {"README.md": 3, "docs/a.md": 3}
GOOD_NOT_RUN = {"git clone ": "for the test"}


def shell(text):
    """The good document with one more block of commands."""
    return {"docs/a.md": GOOD["docs/a.md"] + f"\n```sh\n{text}\n```\n"}


PLANTED = [
    ({}, ""),
    (shell("zqv fail"), "docs/a.md:17: zqv fail: ended with 1: told to fail"),
    (shell("zqv one\nzqv fail\nzqv two"), "docs/a.md:18: zqv fail: ended with 1"),
    (shell("zqv fail | cat"), "ended with 1: told to fail"),
    (shell("zqv nothing"), "printed nothing"),
    (shell("zqv cat out"), "ended with 1"),
    (shell("zqv cat missing.eml"), "ended with 1"),
    (shell("unknown-program"), "ended with 127"),
    (shell("zqv one \\\n  two\n```\n\n```\none two"), ""),
    (shell("zqv one \\\n  two\n```\n\n```\none two\nthree"), "printed something else"),
    (shell("zqv one\n```\n\n```\none"), ""),
    (shell("zqv one\n```\n\n```\nonE"), "printed something else than is shown:\none"),
    (shell("zqv lines\n```\n\n```\none\n..."), ""),
    (shell("zqv lines\n```\n\n```\n..."), ""),
    (shell("zqv lines\n```\n\n```\none\ntwo"), "printed something else than is shown"),
    (shell("zqv lines\n```\n\n```\none\n...\nfour"), "printed something else than is shown"),
    (shell("zqv lines\n```\n\n```\none\nt..\nthree"), "printed something else than is shown"),
    ({"README.md": "```sh\ngit clone x\n./run one\n```\n"}, "README.md: only 1 commands were run"),
    ({"README.md": "```vb\n./run one\n```\n"}, "README.md: only 0 commands were run"),
    ({"README.md": GOOD["README.md"].replace("git", "# git")}, "no command begins with 'git clone"),
    ({"README.md": "```sh\n./run 1\n./run 2\n./run 3\n```\n",
      "docs/a.md": "```sh\n./run 1\n./run 2\n./run 3\n```\n"}, "only 0 outputs were compared"),
    ({"docs/a.md": None}, "docs/a.md: there is no such document"),
]


def check_planted(top):
    """Checks a scratch project with the replaced program."""
    program = top / "program"
    program.write_text(PROGRAM)
    program.chmod(0o755)
    before = sorted(top.rglob("*"))
    found = check(top, program, GOOD_FEWEST, GOOD_NOT_RUN)
    if sorted(top.rglob("*")) != before:
        found.append("a command wrote into the project")
    return found


def main():
    if sys.argv[1] == "--self-test":
        return 1 if planted.self_test(check_planted, GOOD, PLANTED) else 0
    program = pathlib.Path(sys.argv[2]).resolve()
    return planted.report(check(pathlib.Path(sys.argv[1]), program, FEWEST_RUN, NOT_RUN))


if __name__ == "__main__":
    sys.exit(main())
