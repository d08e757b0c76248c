#!/usr/bin/env python3
"""Checks that words in the documents have British spelling, or are listed words of the project.

  spelling.py FOLDER       lists every other word; fails when there is one, or when a word of
                           words.txt is in no document
  spelling.py --self-test  plants faults in a scratch project and requires that they are found

Checked are all Markdown files but docs/reference.md, which is made of the texts of
help/reference.toml; those texts; and packaging/zqv.1. Code, targets of links, file names and
identifiers are skipped. words.txt in this folder has one word a line, sorted; a word in lower case
may also be written with a capital. The exit status is 77 where aspell
or its dictionary is missing.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import tomllib

import documents

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
import planted

WORDS = "tests/docs/words.txt"
HELP = "help/reference.toml"
MANUAL = "packaging/zqv.1"
MADE_OF_HELP = "docs/reference.md"
DICTIONARY = "en_GB-ise"
SKIPPED = 77
CODE_KEYS = {"id", "example", "words"}  # keys of the help's texts whose values are not prose

URL = re.compile(r"\b[a-z]+://\S+")
# A piece of a line without blanks and punctuation; and pieces that are not words, because they
# contain a digit, underscore, slash, inner dot or similar, or a capital after a small letter.
PIECE = re.compile(r"[^\s()\[\]{}|\"“”<>,;:!?*=+~…–—]+")
NO_WORD = re.compile(r"[\d_/\\@#$%&^]|\w\.\w|^\.\w|[a-z][A-Z]|[A-Z]{2}[a-z]{2}|^-")
WORD = re.compile(r"[^\W\d_]+(?:['’][^\W\d_]+)*")


def words_of(line):
    """The words of one line of text."""
    found = []
    for piece in PIECE.findall(URL.sub(" ", line)):
        if not NO_WORD.search(piece):
            found += [word.replace("’", "'") for word in WORD.findall(piece)]
    return [word[:-2] if word.endswith("'s") else word for word in found]


def markdown_lines(text):
    """The text with line numbers, without code, targets of links and tags."""
    prose, _ = documents.split(text)
    text = documents.DEFINED_LINK.sub(documents.blank, documents.without_code(prose))
    text = documents.IMAGE.sub(r"\1", text)
    text = documents.LINK.sub(r"\1", text)
    text = documents.TAG.sub(documents.blank, text)
    return list(enumerate(text.splitlines(), 1))


def strings(value, key=""):
    """All texts in the values of a TOML file."""
    if isinstance(value, str):
        return [] if key in CODE_KEYS else [value]
    if isinstance(value, dict):
        return [text for name, inner in value.items() for text in strings(inner, name)]
    if key == "raises":  # rows of exception, message and condition
        return [row[2] for row in value]
    return [text for inner in value for text in strings(inner, key)]


def help_lines(text):
    """The lines of the help's texts. Each has the number of the line of the file that contains
    it."""
    lines = text.splitlines()
    found = []
    for string in strings(tomllib.loads(text)):
        for _, line in markdown_lines(string):
            start = line.strip().split("  ")[0]
            number = next((n for n, held in enumerate(lines, 1) if start and start in held), 0)
            found.append((number, line))
    return found


def manual_lines(text):
    """The lines of a manual page, without its macros and their arguments."""
    shown = (".Nd ", ".Sh ", ".Ss ", ".Pq ", ".%T ")
    found = []
    for number, line in enumerate(text.splitlines(), 1):
        if line.startswith(shown):
            found.append((number, line.split(" ", 1)[1]))
        elif not line.startswith("."):
            found.append((number, re.sub(r"\\&", "", line)))
    return found


def used_words(top):
    """The first place of each word: word -> "file:line"."""
    places = {}
    readers = [(name, markdown_lines) for name in documents.documents(top)
               if name != MADE_OF_HELP]
    readers += [(name, reader) for name, reader in ((HELP, help_lines), (MANUAL, manual_lines))
                if (top / name).is_file()]
    for name, reader in readers:
        for number, line in reader(documents.read(top, name)):
            for word in words_of(line):
                places.setdefault(word, f"{name}:{number}")
    return places


def aspell(*arguments, text=""):
    """The output of aspell with fixed settings; None when it is not installed."""
    with tempfile.TemporaryDirectory() as home:
        environment = {"PATH": os.environ["PATH"], "HOME": home, "LC_ALL": "C.UTF-8"}
        try:
            run = subprocess.run(["aspell", *arguments], input=text, capture_output=True,
                                 encoding="utf-8", env=environment, check=False)
        except FileNotFoundError:
            return None
    return run.stdout if run.returncode == 0 else None


def unknown_words(words):
    """The words that the dictionary lacks."""
    listed = aspell("list", f"--lang={DICTIONARY}", "--encoding=utf-8", "--ignore=1",
                    text="\n".join(sorted(words)) + "\n")
    found = set((listed or "").split())
    # For a word with an apostrophe aspell may report a part of it only.
    return {word for word in words if word in found or found & set(word.split("'"))}


def own_words(top):
    path = top / WORDS
    return path.read_text("utf-8").splitlines() if path.is_file() else []


def own_spellings(word):
    """The forms in which words.txt may list a word: as written, or without a capital at its
    start."""
    return {word, word[0].lower() + word[1:]}


def check(top):
    """All faults of the project at `top`, one text each."""
    places, own = used_words(top), own_words(top)
    used = {name for word in places for name in own_spellings(word)}
    unknown = [word for word in unknown_words(places) if not own_spellings(word) & set(own)]
    faults = [f"{places[word]}: {word}" for word in sorted(unknown)]
    # aspell's dictionary depends on its version, so words.txt is compared with the documents only.
    faults += [f"{WORDS}: {word} is in no document" for word in own if word not in used]
    if own != sorted(set(own)):
        faults.append(f"{WORDS}: not sorted, or a word stands there twice")
    if not places:
        faults.append("no words found at all")
    return faults


GOOD = {
    "a.md": "# A colour\n\nOf zqv, Zqv and [the centre](centrr.md#x) `cod` https://exampl.com/x\n"
            "A fileName, file_nam, fil.txt, x86, docs/fil, isn't; host's.\n\n    indentd code\n"
            "```sh\nfencd code\n```\n<a id=\"tagg\"></a>\n",
    HELP: "[[guides]]\nid = \"guid\"\ntext = '''\nA text `cod`.\n\n```vb\ncodd\n```\n'''\n"
          "[classes.Klass]\ngives = \"A behaviour.\"\nexample = '''\ncoddd\n'''\n"
          "raises = [[\"Onee\", \"twwo\", \"three\"]]\n",
    MANUAL: ".\\\" A commment\n.Nm zqvv\n.Nd show messages\nSome text \\&- here.\n.Ar fil\n",
    WORDS: "zqv\n",
}


def plus(name, text):
    """The good project with more text in one file."""
    return {name: GOOD[name] + text + "\n"}


PLANTED = [
    ({}, ""),
    (plus("a.md", "A mistaek."), "a.md:11: mistaek"),
    (plus("a.md", "A color."), "a.md:11: color"),
    (plus("a.md", "To organize."), "a.md:11: organize"),
    (plus("a.md", "A [linkk](a.md)."), "a.md:11: linkk"),
    (plus("a.md", "![pictur](a.svg)"), "a.md:11: pictur"),
    (plus("a.md", "| cel | other |"), "a.md:11: cel"),
    (plus("a.md", "*emphasiss*, \"quotess\"."), "a.md:11: quotess"),
    (plus("a.md", "half-opeen"), "a.md:11: opeen"),
    (plus("a.md", "Doesnt"), "a.md:11: Doesnt"),
    (plus("a.md", "- an item\n    that goess on"), "a.md:12: goess"),
    ({"docs/b.md": "Anothher."}, "docs/b.md:1: Anothher"),
    ({HELP: GOOD[HELP].replace("A text", "A texxt")}, "help/reference.toml:4: texxt"),
    ({HELP: GOOD[HELP].replace("A beh", "A bbeh")}, "bbehaviour"),
    ({HELP: GOOD[HELP].replace("three", "thrree")}, "thrree"),
    (plus(MANUAL, "Moree text."), "packaging/zqv.1:6: Moree"),
    (plus(MANUAL, ".Sh NAMEE"), "packaging/zqv.1:6: NAMEE"),
    ({WORDS: "zqv\nzqx\n"}, "zqx is in no document"),
    ({WORDS: "Of\nZqv\nzqv\n"}, ""),
    ({WORDS: "zqv\nzqv\n"}, "not sorted"),
    ({WORDS: ""}, "a.md:3: "),
    ({**{name: "" for name in GOOD}}, "no words found at all"),
]


def main():
    if DICTIONARY not in (aspell("dicts") or "").split():
        print(f"skipped: aspell with the dictionary {DICTIONARY} is missing (Debian: aspell-en)")
        return SKIPPED
    return planted.main(check, GOOD, PLANTED)


if __name__ == "__main__":
    sys.exit(main())
