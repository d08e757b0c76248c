#!/usr/bin/env python3
"""Runs the zqv program with the shipped library under valgrind, on real messages.

  memcheck.py ZQV FOLDER json    everything of each message of samples/ and tests/corpus
  memcheck.py ZQV FOLDER verbs   the other verbs that call the library, one message each
  memcheck.py --self-test CXX    requires that planted faults are found with the same options

FOLDER is the project. A fault is an error that valgrind reports, or memory to which nothing points
at the end. The sanitizers find more kinds of errors, but only in code that was compiled for them.
This check runs the code that is shipped, including mimetic and the system's libraries. The exit
status is 77 without valgrind.
"""

import pathlib
import shutil
import subprocess
import sys
import tempfile

FAULTY = 99  # the exit code that valgrind gives the program when it has found an error
SKIPPED = 77
VALGRIND = ["valgrind", "--quiet", f"--error-exitcode={FAULTY}", "--leak-check=full",
            "--errors-for-leak-kinds=definite,indirect", "--show-leak-kinds=definite,indirect",
            f"--suppressions={pathlib.Path(__file__).with_name('memcheck.supp')}"]


def run(command):
    return subprocess.run(VALGRIND + command, capture_output=True, check=False)


def explain(finished):
    """The first lines of the output of valgrind and the program."""
    return finished.stderr.decode("utf-8", "replace")[:8000]


def check_json(zqv, top):
    """Runs one process for all messages, as in an application that reads a mailbox."""
    samples = sorted(top.glob("samples/*.eml"))
    corpus = sorted(top.glob("tests/corpus/*/*.eml"))
    if not samples or not corpus:
        return [f"no messages in {top}"]
    files = [str(path) for path in samples + corpus]
    finished = run([zqv, "json", *files])
    # A message that raises gives a line on standard error and the exit code 1.
    documents = finished.stdout.count(b'"format_version"')
    refused = finished.stderr.count(f"zqv: {top}/".encode())
    print(f"{len(files)} messages, {documents} documents, {refused} refused")
    faults = []
    if finished.returncode not in (0, 1):
        faults.append(f"ended with {finished.returncode}:\n{explain(finished)}")
    if documents + refused != len(files) or documents < len(samples):
        faults.append(f"not all messages were read:\n{explain(finished)}")
    return faults


# The arguments after the program's name, and a text that must be in its output.
VERBS = [
    (["show", "samples/nested.eml"], b"Subject"),
    (["tree", "samples/attachments.eml"], b"text/plain"),
    (["addresses", "samples/group-addresses.eml"], b"@"),
    (["text", "samples/html-only.eml"], b" "),
    (["text", "samples/japanese.eml"], b"\n"),
    (["strip", "samples/attachments.eml"], b"Dear all,"),
    (["strip", "samples/inline-images.eml"], b"Subject"),
    (["decode", "=?ISO-8859-1?Q?Caf=E9?="], "Café".encode()),
    (["classes"], b"MimeEmailZQV"),
    (["extract", "samples/attachments.eml", "--stdout", "2"], b"%PDF"),
    (["check", "samples/nested.eml"], b"no findings"),
    (["report", "samples/malformed.eml", "-o", "-"], b"<iframe"),
    (["show", "--json", "samples/nested.eml"], b"plain_text"),
    (["bench", "--rounds", "1", "samples/plain.eml"], b"MB/s"),
    (["completion", "bash"], b"_zqv"),
]


def check_verbs(zqv, top):
    faults = []
    for arguments, expected in VERBS:
        words = [str(top / word) if word.startswith("samples/") else word for word in arguments]
        finished = run([zqv, *words])
        if finished.returncode != 0:
            faults.append(f"{arguments}: ended with {finished.returncode}:\n{explain(finished)}")
        elif expected not in finished.stdout:
            faults.append(f"{arguments}: printed {finished.stdout[:200]}")
    print(f"{len(VERBS)} runs")
    return faults


PLANTED = r"""
#include <cstdlib>
#include <cstring>

struct Node { Node* next; };

__attribute__((noinline)) void Leak() {
  Node* volatile first = new Node{new Node{nullptr}};
  first = nullptr;
}

int main(int, char** values) {
  const char* const fault = values[1];
  volatile char* const memory = static_cast<char*>(std::malloc(16));
  int code = 0;
  if (std::strcmp(fault, "uninitialised") == 0 && memory[3] == 'x') code = 1;
  if (std::strcmp(fault, "overrun") == 0) memory[16] = 'x';
  if (std::strcmp(fault, "leak") == 0) Leak();
  std::free(const_cast<char*>(memory));
  if (std::strcmp(fault, "freed") == 0) code = memory[0] == 'x' ? 0 : 0;
  return code;
}
"""
# The argument of the planted program, and the text that valgrind must report; empty when it must
# report nothing.
EXPECTED = [
    ("none", None),
    ("uninitialised", "uninitialised"),
    ("overrun", "Invalid write of size 1"),
    ("leak", "definitely lost"),
    ("freed", "Invalid read of size 1"),
]


def self_test(compiler):
    faults = []
    with tempfile.TemporaryDirectory() as name:
        source = pathlib.Path(name) / "planted.cc"
        program = str(source.with_suffix(""))
        source.write_text(PLANTED)
        subprocess.run([compiler, "-O1", "-o", program, str(source)], check=True)
        for word, message in EXPECTED:
            finished = run([program, word])
            wanted = FAULTY if message else 0
            if finished.returncode != wanted or (message or "") not in explain(finished):
                faults.append(f"{word}: ended with {finished.returncode}:\n{explain(finished)}")
    return faults


def main():
    if not shutil.which("valgrind"):
        print("skipped: valgrind is not installed")
        return SKIPPED
    if sys.argv[1] == "--self-test":
        faults = self_test(sys.argv[2])
    else:
        zqv, top, what = sys.argv[1:4]
        faults = {"json": check_json, "verbs": check_verbs}[what](zqv, pathlib.Path(top))
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
