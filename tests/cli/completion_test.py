"""The completions that the three shells offer for an incomplete command line."""

import os
import pty
import re
import select
import shutil
import subprocess
import time
import unittest

import program
from program import TIMEOUT, ZQV, environment, zqv

VERBS = set(re.findall(r"(?m)^  ([a-z0-9]+) ", zqv("--help").out.split("\nVerbs", 1)[1]))


def options_of(verb):
    """The long options in the help of a verb, or of the program."""
    arguments = [verb, "--help"] if verb else ["--help"]
    return set(re.findall(r"(?m)^  (?:-\w,)?(--[a-z-]+)", zqv(*arguments).out))


class CompletionCase(program.TestCase):
    shell = None

    def setUp(self):
        super().setUp()
        if shutil.which(self.shell) is None:
            self.skipTest(f"{self.shell} is not installed")
        self.script = self.write(f"script.{self.shell}", zqv("completion", self.shell).out)
        self.write("letter.eml", "Subject: x\n\nx\n")
        (self.folder / "letters").mkdir()

    def run_shell(self, *arguments):
        run = subprocess.run([self.shell, *arguments], stdin=subprocess.DEVNULL,
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE, cwd=self.folder,
                             env={**environment(), "HOME": str(self.folder),
                                  "LC_ALL": "C.UTF-8"}, timeout=TIMEOUT, check=False)
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        return run.stdout.decode()


class BashTest(CompletionCase):
    shell = "bash"

    def offered(self, line):
        words = line.split(" ")
        array = " ".join(f"'{word}'" for word in words)
        return set(self.run_shell(
            "--norc", "-c", f"source '{self.script}'; COMP_WORDS=({array}); "
            f"COMP_CWORD={len(words) - 1}; _zqv; printf '%s\\n' \"${{COMPREPLY[@]}}\"").split())

    def test_is_registered(self):
        out = self.run_shell("--norc", "-c", f"source '{self.script}'; complete -p zqv")
        self.assertEqual(out, "complete -o filenames -F _zqv zqv\n")

    def test_verbs(self):
        self.assertEqual(self.offered("zqv "), VERBS)
        self.assertEqual(self.offered("zqv h"), {"headers", "html", "html2text"})

    def test_options_of_each_verb_and_of_all(self):
        for verb in VERBS:
            with self.subTest(verb):
                self.assertEqual(self.offered(f"zqv {verb} --"),
                                 options_of(verb) | options_of(None))
        self.assertEqual(self.offered("zqv --"), options_of(None))

    def test_words(self):
        self.assertEqual(self.offered("zqv --color "), {"auto", "always", "never"})
        self.assertEqual(self.offered("zqv show --input m"), {"message", "mbox"})
        self.assertEqual(self.offered("zqv completion "), {"bash", "zsh", "fish"})
        self.assertEqual(self.offered("zqv export --form "),
                         {"json", "text", "html", "attachments"})

    def test_files_and_folders(self):
        self.assertEqual(self.offered("zqv show l"), {"letter.eml", "letters"})
        self.assertEqual(self.offered("zqv extract letter.eml --dir l"), {"letters"})

    def test_letters(self):
        self.assertLessEqual({"-r", "-h"}, self.offered("zqv show -"))

    def test_nothing_for_numbers(self):
        self.assertEqual(self.offered("zqv export --jobs "), set())


class FishTest(CompletionCase):
    shell = "fish"

    def offered(self, line):
        out = self.run_shell("--no-config", "-c",
                             f"source '{self.script}'; complete -C '{line}'")
        return {offer.split("\t")[0] for offer in out.splitlines()}

    def test_verbs(self):
        self.assertEqual(self.offered("zqv "), VERBS)

    def test_options_of_each_verb_and_of_all(self):
        for verb in VERBS:
            with self.subTest(verb):
                self.assertEqual(self.offered(f"zqv {verb} --"),
                                 options_of(verb) | options_of(None))

    def test_words(self):
        self.assertEqual(self.offered("zqv --color "), {"auto", "always", "never"})
        self.assertEqual(self.offered("zqv show --input m"), {"message", "mbox"})
        self.assertEqual(self.offered("zqv completion "), {"bash", "zsh", "fish"})

    def test_files_and_folders(self):
        self.assertEqual(self.offered("zqv show l"), {"letter.eml", "letters/"})
        self.assertEqual(self.offered("zqv extract letter.eml --dir l"), {"letters/"})


    def test_letters(self):
        self.assertLessEqual({"-r", "-h"}, self.offered("zqv show -"))


class ZshTest(CompletionCase):
    """zsh completes in its line editor only, so these tests run one in a terminal."""

    shell = "zsh"

    def completed(self, line):
        """The text of the line after the tab key was pressed."""
        os.rename(self.script, self.folder / "_zqv")
        self.write(".zshrc", f"fpath=('{self.folder}' $fpath)\nautoload -Uz compinit\n"
                             "compinit -u -D\nPROMPT='ready> '\nunsetopt PROMPT_CR PROMPT_SP\n"
                             "zle -N show-line; show-line() { print -r -- \"=$BUFFER=\" }\n"
                             "bindkey '^X' show-line\n")
        pid, terminal = pty.fork()
        if pid == 0:
            os.chdir(self.folder)
            os.execvpe("zsh", ["zsh", "-i"], {**environment(), "HOME": str(self.folder),
                                              "ZDOTDIR": str(self.folder), "TERM": "dumb",
                                              "LC_ALL": "C.UTF-8"})
        self.addCleanup(os.waitpid, pid, 0)
        self.addCleanup(os.close, terminal)
        self.addCleanup(os.kill, pid, 9)
        self.read_until(terminal, b"ready> ")
        os.write(terminal, line.encode() + b"\t\x18")
        return self.read_until(terminal, b"=\r\n").decode().split("=")[-2]

    def read_until(self, terminal, end):
        text = b""
        deadline = time.monotonic() + TIMEOUT
        while not text.endswith(end):
            ready, _, _ = select.select([terminal], [], [], max(0, deadline - time.monotonic()))
            self.assertTrue(ready, text)
            text += os.read(terminal, 1)
        return text

    def test_verbs(self):
        self.assertEqual(self.completed("zqv che"), "zqv check ")

    def test_options_of_a_verb(self):
        self.assertEqual(self.completed("zqv export --skip"), "zqv export --skip-existing ")

    def test_options_of_all_verbs(self):
        self.assertEqual(self.completed("zqv show --host"), "zqv show --host-version ")

    def test_words(self):
        self.assertEqual(self.completed("zqv show --input mb"), "zqv show --input mbox ")

    def test_files(self):
        self.assertEqual(self.completed("zqv show letter."), "zqv show letter.eml ")

    def test_every_option_is_there(self):
        text = self.script.read_text()
        for verb in VERBS:
            for option in options_of(verb):
                self.assertIn(f"'{option}[", text)


if __name__ == "__main__":
    unittest.main()
