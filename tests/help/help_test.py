#!/usr/bin/env python3
"""The help describes the registered classes, is valid HTML, loads nothing, and is up to date.

  help_test.py --zqv build/release/zqv

The listing of the classes is parsed here in another way than in the generator, so that a mistake in
either is found. Each check is also run with a fault, which it must report.
"""

import itertools
import pathlib
import re
import shutil
import sys
import tempfile
import tomllib
import unittest

import making
from making import TOP, VERSION, Page, make, make_docs, make_page

OPTIONS, REST = making.options(__doc__)
LISTED = making.registered(OPTIONS.zqv)
TEXTS = TOP / "help" / "reference.toml"
SUBJECT = '[classes.MimeEmailZQV.members."property Subject as String"]'


def expected_members(listed):
    """(class, member) for each line of the listing."""
    found, current = [], ""
    for line in listed.splitlines():
        if line.startswith("class "):
            current = re.split(r"[ ,]", line)[1]
        else:
            found.append((current, line.split(", flags ")[0].strip().replace('"', "")))
    return found


def luminance(colour):
    """The relative luminance of a colour, as WCAG defines it."""
    parts = [int(colour[place:place + 2], 16) / 255 for place in (1, 3, 5)]
    linear = [part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4
              for part in parts]
    return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]


def contrast(one, other):
    low, high = sorted((luminance(one), luminance(other)))
    return (high + 0.05) / (low + 0.05)


def broken_links(page):
    """Links within the page that have no anchor, and links that lead out of the page."""
    return [link for link in page.links if link[:1] != "#" or link[1:] not in page.ids]


def skipped_levels(headings):
    """Headings that are more than one level below the previous one."""
    return [(before, level) for before, level in zip([0, *headings], headings)
            if level > before + 1]


def outside(text):
    """Texts that would load something: any with a scheme or a host, and imports of style sheets."""
    return re.findall(r"(?i)\b(?:https?|ftp|wss?):|(?:src|href|url)\s*[=(]\s*[\"']?//|@import",
                      text)


class Case(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def made(self, name="index.html", listed=LISTED):
        """The bytes of a newly made page."""
        path = self.folder / name
        self.assertEqual(make_page(listed, path), (0, ""))
        return path.read_bytes()

    def markdown(self):
        """The reference just made."""
        self.assertEqual(make_docs(OPTIONS.zqv, "--folder", self.folder), (0, ""))
        return (self.folder / "reference.md").read_text("utf-8")

    def page(self):
        return Page(self.made().decode("utf-8"))

    def expect_refused(self, *words, listed=LISTED, old=None, new=None):
        """Requires that the generator fails with a message that has these words. `old` in the texts
        is replaced by `new`."""
        arguments = []
        if old is not None:
            texts = TEXTS.read_text("utf-8")
            self.assertEqual(texts.count(old), 1, old)
            changed = self.folder / "changed.toml"
            changed.write_text(texts.replace(old, new), "utf-8")
            arguments = ["--texts", changed]
        code, said = make_page(listed, self.folder / "index.html", *arguments)
        self.assertEqual(code, 1)
        self.assertTrue(said.startswith("make_help: "), said)
        for word in words:
            self.assertIn(word, said)
        self.assertFalse((self.folder / "index.html").exists())


class MembersTest(Case):
    def test_every_registered_member_is_described_once(self):
        expected = expected_members(LISTED)
        self.assertEqual(len({name for name, _ in expected}), 11)
        self.assertEqual(sorted(self.page().members), sorted(expected))

    def test_every_class_has_its_section(self):
        ids = self.page().ids
        for name, _ in expected_members(LISTED):
            self.assertIn(name, ids)

    def test_plain_anchors_of_every_member(self):
        ids = self.page().ids
        for kind, key in expected_members(LISTED):
            name = re.match(r"(?:shared )?(?:property|method) (\w+)", key)[1]
            self.assertIn(f"{kind}.{name}", ids)

    def test_anchors_that_others_link_to(self):
        ids = self.page().ids
        for anchor in ("MimeEmailZQV.Subject", "MimeEmailZQV.Attachments",
                       "MimeEmailZQV.Attachments-Integer", "MimeEmailZQV.Constructor",
                       "MimeEmailZQV.Constructor-FolderItem", "MimeEmailZQV.Constructor-String",
                       "MimeHeaderZQV.hasField", "errors", "encodings", "saving-attachments",
                       "cookbook", "recipe-html", "recipe-date"):
            self.assertIn(anchor, ids)

    def test_declarations(self):
        text = self.made().decode("utf-8")
        for declaration in (
                "Property Subject As String", "Shared Property Debugging As Boolean",
                "Sub Constructor(Content As String)", "Private Sub Constructor()",
                'Function Parts(index As Integer) As <a href="#MimeEntityZQV">MimeEntityZQV</a>',
                'Function Parts() As <a href="#MimeEntityZQV">MimeEntityZQV</a>()',
                "Function SourceWithoutAttachments() As String",
                "Shared Function DecodeInline(Text As String) As String",
                "Function hasField(name As String) As Boolean"):
            self.assertIn(f'<p class="declaration"><code>{declaration}</code></p>', text)

    def test_access(self):
        text = self.made().decode("utf-8")
        badge = ' <span class="badge">'
        self.assertIn(f"<h4>RaiseUnknownFormatExceptions{badge}read and write<", text)
        self.assertIn(f"<h4>Subject{badge}read-only<", text)
        self.assertEqual(text.count("read and write</span>"), 2)
        self.assertEqual(text.count("hidden in the editor"), 1)

    def test_parent_class(self):
        text = self.made().decode("utf-8")
        self.assertIn('Inherits from <a href="#MimeEntityZQV">', text)
        self.assertIn('Parent of <a href="#MimeEmailZQV">', text)


class RefusalTest(Case):
    def test_member_without_text(self):
        line = "  property Subject as String"
        listed = LISTED.replace(line, "  property Novelty as String, flags 0x6, getter 0\n" + line)
        self.expect_refused("MimeEmailZQV: no text for: property Novelty as String", listed=listed)

    def test_the_skeleton_of_a_text_that_is_missing(self):
        first = LISTED.splitlines()[0]
        rows = ("  property Novelty as String, flags 0x6, record 0\n"
                "  property Number as Integer, flags 0x6, record 8")
        self.expect_refused("""
Paste into reference.toml and fill in:

[classes.MimeBodyZQV.members."property Novelty as String"]
gives = ""
nil = ""
example = '''
'''

[classes.MimeBodyZQV.members."property Number as Integer"]
gives = ""
example = '''
'''
""", listed=LISTED.replace(first, f"{first}\n{rows}"))

    def test_text_without_member(self):
        line = next(line for line in LISTED.splitlines() if "property Subject as" in line)
        self.expect_refused("not registered: property Subject as String",
                            listed=LISTED.replace(line + "\n", ""))

    def test_declaration_that_differs_in_a_type(self):
        listed = LISTED.replace('"HTMLToPlainText(HTMLText as String)',
                                '"HTMLToPlainText(HTMLText as Variant)')
        self.expect_refused("no text for: shared method HTMLToPlainText(HTMLText as Variant)",
                            "not registered: shared method HTMLToPlainText(HTMLText as String)",
                            listed=listed)

    def test_class_without_text(self):
        self.expect_refused("no text for the class MimeNewZQV", listed=LISTED
                            + "class MimeNewZQV, version 13, data size 16, flags 0x4\n")

    def test_text_without_class(self):
        listed = LISTED[:LISTED.index("class MimeAttachmentZQV")]
        self.expect_refused("not registered: MimeAttachmentZQV", listed=listed)

    def test_empty_and_strange_listings(self):
        self.expect_refused("the list of classes is empty", listed="")
        self.expect_refused("does not begin with a class", listed="  property A as B, flags 0x6\n")
        self.expect_refused("neither class nor member: what", listed=LISTED + "what\n")

    def test_missing_and_unknown_keys(self):
        self.expect_refused("property Subject as String: unknown key given",
                            "property Subject as String: needs gives",
                            old=SUBJECT + "\ngives", new=SUBJECT + "\ngiven")
        self.expect_refused("property Subject as String: needs nil", old='nil = "If the message '
                            'has no subject."\n', new="")

    def test_missing_and_unknown_keys_of_recipes(self):
        self.expect_refused("recipe recipe-mbox: needs words", old='words = "mbox mailbox batch '
                            'many archive export import Thunderbird bulk"\n', new="")
        self.expect_refused("guide dates: unknown key words", old='title = "Dates"\n',
                            new='title = "Dates"\nwords = "x"\n')

    def test_links_without_a_target(self):
        for gone, new in (("MimeEmailZQV.Subjekt", "`MimeEmailZQV.Subjekt`"),
                          ("MimeNobodyZQV", "`MimeNobodyZQV`"), ("nowhere", "[there](#nowhere)")):
            self.expect_refused(f"links to #{gone}, which is nowhere",
                                old=SUBJECT + '\ngives = "The', new=SUBJECT + f'\ngives = "{new}')

    def test_code_without_end(self):
        self.expect_refused("does not end", old='is the size."\nexample',
                            new='is the size.\\n\\n```vb\\n"\nexample')

    def test_notice_without_copyright(self):
        empty = self.folder / "notice.md"
        empty.write_text("# Title\n", "utf-8")
        code, said = make(LISTED, "--version", VERSION, "--notice", empty,
                          "--html", self.folder / "index.html")
        self.assertEqual((code, said), (1, "make_help: the notice names no copyright\n"))


class PageTest(Case):
    def test_is_well_formed(self):
        page = self.page()
        self.assertEqual(page.faults, [])
        self.assertEqual(len(page.ids), len(set(page.ids)), "an id stands twice")
        self.assertEqual(page.text["title"], f"MimeEmailZQV {VERSION} Help")

    def test_faults_of_form_are_seen(self):
        for text in ("<p><b>a</p></b>", "<p>", "</p>", '<p id="a" id="b"></p>', "<p></p></p>"):
            self.assertNotEqual(Page(text).faults, [], text)

    def test_every_link_has_its_anchor(self):
        page = self.page()
        self.assertGreater(len(page.links), 200)
        self.assertEqual(broken_links(page), [])

    def test_broken_links_are_seen(self):
        for link in ("#gone", "other.html", "//example.org", ""):
            self.assertEqual(broken_links(Page(f'<a id="a" href="#a"></a><a href="{link}"></a>')),
                             [link])

    def test_nothing_is_loaded_from_elsewhere(self):
        text = self.made().decode("utf-8")
        self.assertEqual(Page(text).loads, [])
        self.assertEqual(outside(text), [])
        self.assertIn("default-src 'none'", text)

    def test_loads_are_seen(self):
        for text in ('<script src="a.js"></script>', '<link href="a.css">', '<img src="a.png">'):
            self.assertEqual(len(Page(text).loads), 1, text)
        for text in ("url(//example.org/a)", "see http://example.org", "@import 'a'",
                     '<a href="//example.org">'):
            self.assertEqual(len(outside(text)), 1, text)

    def test_headings_are_in_order(self):
        headings = self.page().headings
        self.assertEqual(headings.count(1), 1)
        self.assertGreater(headings.count(4), 90)
        self.assertEqual(skipped_levels(headings), [])

    def test_headings_out_of_order_are_seen(self):
        self.assertEqual(skipped_levels([1, 2, 4, 3, 2]), [(2, 4)])
        self.assertEqual(skipped_levels([2]), [(0, 2)])

    def test_search_has_its_label(self):
        self.assertEqual(self.page().labels, ["query"])

    def test_notice_is_whole(self):
        notice = (TOP / "THIRD_PARTY.md").read_text("utf-8")
        quotes = [" ".join(line.lstrip("> ") for line in lines)
                  for is_quoted, lines in itertools.groupby(notice.splitlines(),
                                                            lambda line: line[:1] == ">")
                  if is_quoted]
        shown = re.sub(r"<[^>]+>|\s+", " ", self.made().decode("utf-8"))
        self.assertGreater(len(quotes[0]), 900)
        for quoted in quotes:
            self.assertIn(re.sub(r"\s+", " ", quoted), re.sub(r"\s+", " ", shown))

    def test_contrast(self):
        style = (TOP / "help" / "page.css").read_text("utf-8")
        palettes = [dict(re.findall(r"--(\w+): (#[0-9a-f]{6})", part))
                    for part in style.split("@media (prefers-color-scheme: dark)")[:2]]
        pairs = [("ink", "paper"), ("ink", "side"), ("soft", "paper"), ("soft", "side"),
                 ("link", "paper"), ("link", "side"), ("ink", "mark"), ("soft", "mark"),
                 ("soft", "badge"), ("link", "code"), *((name, "code") for name in
                 ("ink", "word", "class", "string", "number", "comment"))]
        for palette in palettes:
            for one, other in pairs:
                self.assertGreaterEqual(contrast(palette[one], palette[other]), 4.5, (one, other))

    def test_contrast_is_measured(self):
        self.assertAlmostEqual(contrast("#000000", "#ffffff"), 21)
        self.assertAlmostEqual(contrast("#777777", "#ffffff"), 4.48, 2)


class OutputTest(Case):
    def test_the_same_bytes_each_time(self):
        made = []
        for seed in ("1", "2"):
            path = self.folder / seed
            self.assertEqual(make_page(LISTED, path, PYTHONHASHSEED=seed, TZ=f"UTC{seed}"), (0, ""))
            made.append(path.read_bytes())
        self.assertEqual(made[0], made[1])

    def test_contains_nothing_about_the_machine(self):
        text = self.made().decode("utf-8") + self.markdown()
        for word in (str(TOP), str(self.folder), str(pathlib.Path.home()) + "/"):
            self.assertNotIn(word, text)

    def test_listing_from_a_file(self):
        listing = self.folder / "classes.txt"
        listing.write_text(LISTED, "utf-8")
        path = self.folder / "file.html"
        self.assertEqual(make_page("", path, "--classes", listing), (0, ""))
        self.assertEqual(path.read_bytes(), self.made())

    def test_documents_are_up_to_date(self):
        self.assertEqual(make_docs(OPTIONS.zqv, "--check"), (0, ""))

    def test_documents_out_of_date_are_seen(self):
        for name in ("reference.md", "schema.json"):
            for change in (lambda data: data + b"\n", lambda data: data.replace(b"mail", b"post", 1),
                           lambda data: None):
                shutil.copytree(TOP / "docs", self.folder / "docs", dirs_exist_ok=True)
                path = self.folder / "docs" / name
                changed = change(path.read_bytes())
                path.unlink()
                if changed is not None:
                    path.write_bytes(changed)
                self.assertEqual(make_docs(OPTIONS.zqv, "--check", "--folder", path.parent),
                                 (1, f"make_docs: out of date: docs/{name}. Write them by: python3 "
                                     "help/make_docs.py build/release/zqv\n"))

    def test_markdown_links_have_their_anchors(self):
        text = self.markdown()
        anchors = set(re.findall(r'<a id="([^"]+)"></a>', text))
        links = re.findall(r"\]\(#([^)]+)\)", text)
        self.assertGreater(len(links), 80)
        self.assertEqual([link for link in links if link not in anchors], [])

    def test_markdown_has_every_anchor(self):
        frame = {"search", "query", "status", "contents", "main", "intro", "third-party-notice"}
        anchors = re.findall(r'<a id="([^"]+)"></a>', self.markdown())
        self.assertEqual(sorted(anchors), sorted(set(self.page().ids) - frame))

    def test_recipes_stand_below_the_cookbook(self):
        text = self.markdown()
        cookbook = text[text.index("\n## Cookbook\n"):text.index("\n## MimeEmailZQV\n")]
        self.assertEqual(re.findall(r'<a id="([^"]+)"></a>\n\n### ', cookbook),
                         [recipe["id"] for recipe in tomllib.loads(TEXTS.read_text("utf-8"))
                          ["recipes"]])

    def test_markdown_has_every_example(self):
        text = self.markdown()
        self.assertEqual(text.count("\n```vb\n"), self.made().decode("utf-8").count("<pre "))
        self.assertGreater(text.count("\n```vb\n"), 100)

    def test_colours_keep_the_code(self):
        page = self.made().decode("utf-8")
        shown = re.findall(r"<pre [^>]*><code>(.*?)</code></pre>", page, re.S)
        plain = [re.sub(r"<[^>]+>", "", code).replace("&lt;", "<").replace("&gt;", ">")
                 .replace("&amp;", "&") for code in shown]
        written = re.findall(r"\n```vb\n(.*?)\n```", self.markdown(), re.S)
        self.assertEqual(plain, written)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *REST])
