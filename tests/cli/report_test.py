"""The page that `zqv report` writes: its contents, its form and where it is written."""

import base64
import hashlib
import html
import re
import resource
import subprocess
import unittest

import program
from program import SAMPLES, ZQV, zqv
from report_pages import DOT, Page, ReportCase, file_part, message
from report_tricks import LOADING


class ContentTest(ReportCase):
    def test_summary_text_and_headers(self):
        page = Page(self.page(SAMPLES / "attachments.eml"))
        for text in ("Quarterly figures and the chart", "2024-04-16 14:02:05",
                     "Lena Brandt <lena.brandt@example.com>", "Kofi Adjei <kofi@example.org>",
                     "Dear all,", "multipart/alternative", "1.2", "figures-q1.pdf", "665 bytes",
                     "Übersicht Süd.png", "5F1C-0A77-9E@example.com"):
            self.assertIn(text, page.text)
        self.assertIn("3\xA0% below", page.frame.text)
        self.assertIn("i", page.frame.names())
        self.assertNotIn("Findings", page.text)

    def test_findings(self):
        page = Page(self.page(SAMPLES / "malformed.eml"))
        self.assertIn("Findings", page.text)
        for line in zqv("check", SAMPLES / "malformed.eml").out.splitlines():
            self.assertIn(re.split(r"  +", line)[-1], page.text)

    def test_pictures_are_in_the_page(self):
        text = "<p>one <img src='cid:dot%40example.org' alt=dot> two <IMG SRC=CID:none></p>"
        page = Page(self.page(message(text, file_part(DOT, content_id="dot@example.org"),
                                      file_part(b"no picture", "fake.png", "image/png"))))
        uri = "data:image/gif;base64," + base64.b64encode(DOT).decode()
        self.assertEqual(page.values("img", "src"), [uri])
        for one in (page.frame, page.copy):
            self.assertEqual(one.values("img", "src"), [uri, None])

    def test_kinds_of_pictures(self):
        pictures = {"image/png": b"\x89PNG\r\n\x1A\nx", "image/jpeg": b"\xFF\xD8\xFF\xE0x",
                    "image/gif": b"GIF87ax", "image/webp": b"RIFF\x04\0\0\0WEBPx",
                    "image/bmp": b"BM\x20\0\0\0\0\0\0\0x"}
        others = [b"<svg xmlns='http://www.w3.org/2000/svg'/>", b"BMW drivers", b"RIFF....WAVE",
                  b"\xFF\xD8", b"", b"GIF88a"]
        parts = [file_part(data, mime_type="image/x-any") for data in [*pictures.values(), *others]]
        page = Page(self.page(message("x", *parts)))
        types = [source.split(";")[0] for source in page.values("img", "src")]
        self.assertEqual(types, [f"data:{kind}" for kind in pictures])

    def test_large_pictures_are_left_out(self):
        most = 8 << 20
        for size, count in ((most, 1), (most + 1, 0)):
            data = DOT + bytes(size - len(DOT))
            self.assertEqual(self.page(message("x", file_part(data))).count("data:image/"), count)

    def test_one_picture_many_times(self):
        data = DOT + bytes((1 << 20) - len(DOT))
        text = "<img src='cid:a'>" * 1000
        page = self.page(message(text, file_part(data, content_id="a")))
        self.assertEqual(page.count("data:image/"), 48)

    def test_pictures_of_styles(self):
        uri = "data:image/gif;base64," + base64.b64encode(DOT).decode()
        text = (f"<p style='background: url(cid:dot)'>a</p><p style='background: url({uri})'>b</p>"
                "<style>p { background: url('cid:dot') }</style>")
        page = Page(self.page(message(text, file_part(DOT, content_id="dot"))))
        for one in (page.frame, page.copy):
            self.assertEqual(one.values("p", "style"), [f"background: url(\"{uri}\")"] * 2)
            self.assertIn(f"p {{ background: url(\"{uri}\") }}", one.text)

    def test_styles_are_clean(self):
        # Style sheets are cleaned, so the policy has nothing to block in them.
        text = "".join(trick for name, trick in LOADING.items() if name.startswith("style"))
        page = Page(self.page(message(text + "<p style='color: red'>MARK</p>")))
        for one in (page.frame, page.copy):
            self.assertIn("MARK", one.text)
            self.assertIn("color: red", one.values("p", "style"))
            written = one.text + str(one.elements)
            for word in ("url(", "@/", "@import", "@font-face", "image-set"):
                self.assertNotIn(word, written)

    def test_copy_is_that_of_the_frame(self):
        page = self.page(SAMPLES / "newsletter.eml")
        letter = re.search("<zqv-html>.*?</zqv-html>", page, re.S)[0]
        self.assertEqual(page.count(letter), 1)
        self.assertEqual(page.count(html.escape(letter)), 1)
        self.assertIn("To stop it, answer with the word", letter)

    def test_links(self):
        text = ("<a href='https://bank.example@evil.example/l&amp;g'>https://bank.example</a>"
                "<a href='https://www.shop.example/?q=a&amp;b'>shop.example</a>"
                "<a href='mailto:ada@example.org?cc=eve@example.net'>write</a>"
                "<map><area href='//area.example/x'></map><form action='/send'><a href='#y'>y</a>"
                "<a href='https://xn--bnk-qla.example/'>a&#x202E;b&#8203;c</a>"
                "<a href='javascript:x()'>bank.example</a>")
        self.assertEqual(self.links(text), [
            "https://bank.example|evil.example https://bank.example@evil.example/l&g|"
            "The text names bank.example, the link leads elsewhere",
            "shop.example|www.shop.example https://www.shop.example/?q=a&b",
            "write|example.org mailto:ada@example.org?cc=eve@example.net",
            "Image map|area.example //area.example/x", "Form|/send", "y|#y",
            "a\\u{202E}b\\u{200B}c|xn--bnk-qla.example https://xn--bnk-qla.example/|"
            "The host has letters that are not ASCII",
            "bank.example|javascript:x()|The text names bank.example, the link leads to no host"])

    def test_targets_are_no_links(self):
        page = Page(self.page(message("<a href='https://a.example/'>x</a>")))
        for one in (page, page.frame, page.copy):
            for _, attributes in one.elements:
                self.assertNotIn("href", attributes)

    def test_links_are_bounded(self):
        rows = self.links("<a href='https://a.example/'>x</a>" * 503)
        self.assertEqual(len(rows), 500)
        page = Page(self.page(message("<a href='https://a.example/'>x</a>" * 503)))
        self.assertIn("3 more links are not shown.", page.text)
        self.assertIn("Links of the HTML503", page.text)
        long = self.page(message(f"<a href='https://a.example/{'b' * 3000}'>{'c ' * 3000}</a>"))
        self.assertIn("1018 bytes more are not shown.", long)
        page = Page(self.page(message("no links")))
        self.assertNotIn("Links of", page.text)

    def links(self, text):
        """The rows of the list, their cells parted by bars."""
        page = self.page(message(text)).split("<ul class=\"links\">")[1].split("</ul>")[0]
        return [Page(row.replace("</span><span", "</span>|<span")).text.strip()
                for row in page.split("<li")[1:] for row in ["<li" + row]]

    def test_sums(self):
        data = b"sum of this"
        text = message("x", file_part(data, "one.bin", "application/x-one"), file_part(b"", "two"))
        page = Page(self.page(text))
        sums = page.text.split("SHA-256\n")[1].split("Parts and headers")[0]
        self.assertEqual(sums.split("\n")[1:4], [
            f"{self.folder}/letter.emlmessage/rfc822, {len(text)} bytes"
            + hashlib.sha256(text.encode()).hexdigest(),
            "one.binapplication/x-one, 11 bytes" + hashlib.sha256(data).hexdigest(),
            "twoimage/gif, 0 bytes" + hashlib.sha256(b"").hexdigest()])

    def test_encoded_words_are_decoded(self):
        fields = ("Subject", "To", "Cc", "Reply-To", "Comments", "X-Any", "List-Id", "Received",
                  "Organization")
        header = "".join(f"{name}: =?utf-8?q?J=C3=BCrgen_?=\n =?iso-8859-1?b?" +
                         base64.b64encode(f"{name}ü".encode("latin-1")).decode()
                         + "?= <a@b.example>\n" for name in fields)
        part = ("Content-Type: application/x-one; name=\"=?utf-8?q?=C3=A9t=C3=A9?=\"\n"
                "Content-Description: =?utf-8?q?=C3=A9t=C3=A9?=\n\nx")
        text = header + message("x", part).split("\n", 3)[3]
        # Findings show encoded words as they are written.
        findings = re.compile("<section id=\"findings\".*?</section>", re.S)
        page = Page(findings.sub("", self.page(text)))
        for name in fields:
            self.assertIn(f"Jürgen {name}ü", page.text)
        self.assertEqual(page.text.count("été"), 5)
        self.assertNotIn("=?", page.text)

    def test_links_tell_where_they_lead(self):
        page = Page(self.page(message("<a href='https://example.org/?a=1&amp;b' title=bank>x</a>")))
        links = [found for name, found in page.frame.elements if name == "a"]
        self.assertEqual(links, [{"title": "https://example.org/?a=1&b"}])

    def test_styles_stay(self):
        text = "<style>p > b { color: red }</style><p style='margin: 0' class=x>a<font size=2>b"
        page = self.page(message(text))
        self.assertIn(html.escape("<style>p > b { color: red }</style>"), page)
        self.assertIn(html.escape("<p style=\"margin: 0\" class=\"x\">a<font size=\"2\">b"), page)

    def test_other_texts_are_folded_away(self):
        page = self.page(message("x", "Content-Type: text/csv\n\nday,pages\n<1>,2\n"))
        self.assertIn("<pre dir=\"auto\">day,pages\n&lt;1&gt;,2", page)

    def test_long_texts_are_cut(self):
        page = self.page(message("x", plain="0123456789" * 110_000))
        self.assertIn("51.4 KB more are not shown.", page)
        self.assertLess(len(page), 1_100_000)

    def test_policy(self):
        policy = ("default-src 'none'; img-src data:; style-src 'unsafe-inline'; "
                  "form-action 'none'; base-uri 'none'")
        page = Page(self.page(SAMPLES / "newsletter.eml"))
        for one in (page, page.frame):
            policies = [found["content"] for name, found in one.elements
                        if found.get("http-equiv") == "Content-Security-Policy"]
            self.assertEqual(policies, [policy])
        self.assertEqual(page.values("iframe", "sandbox"), [None])  # the sandbox allows nothing

    def test_every_sample(self):
        for path in sorted(SAMPLES.glob("*.eml")):
            with self.subTest(path.name):
                page = Page(self.page(path))
                self.assertEqual(page.names() & {"script", "link", "base", "form", "object"}, set())

    def test_message_of_nothing(self):
        page = Page(self.page("X: y\n\n"))
        self.assertIn("(no subject)", page.text)

    def test_message_of_many_parts(self):
        count = 9_000
        parts = ["Content-Type: text/x-note; name=n\n\nhello"] * count
        page = self.page(message("x", *parts))
        # All parts except the message itself are closed.
        self.assertEqual(page.count("<details>"), count + 2)
        self.assertLess(len(page), 700 * count)

    def test_message_that_nests_deep(self):
        depth = 200
        levels = "".join(f"Content-Type: multipart/mixed; boundary=b{i}\n\n--b{i}\n"
                         for i in range(depth))
        page = self.page("Subject: deep\n" + levels + "\nhello\n")
        self.assertEqual(page.count("<details>"), depth)


class FileTest(ReportCase):
    def setUp(self):
        super().setUp()
        self.letter = SAMPLES / "plain.eml"
        self.target = self.folder / "page.html"

    def report(self, *arguments, **options):
        return zqv("report", self.letter, "-o", self.target, *arguments, **options)

    def names(self):
        return sorted(path.name for path in self.folder.iterdir())

    def test_is_written(self):
        self.expect(self.report(), out=f"{self.target}\n")
        self.assertEqual(self.target.read_text("utf-8"), self.page(self.letter))
        self.assertEqual(self.names(), ["page.html"])

    def test_name_without_a_folder(self):
        self.expect(zqv("report", self.letter, "-o", "here.html", cwd=self.folder),
                    out="here.html\n")
        self.assertEqual(self.names(), ["here.html"])

    def test_is_not_written_over(self):
        self.target.write_text("mine")
        self.expect(self.report(), 1, "", f"zqv: {self.letter}: {self.target}: File exists\n")
        self.assertEqual(self.target.read_text(), "mine")
        self.expect(self.report("--force"), out=f"{self.target}\n")
        self.assertIn("Keys", self.target.read_text())
        self.assertEqual(self.names(), ["page.html"])

    def test_only_regular_files_are_replaced(self):
        self.target.mkdir()
        for force in ([], ["--force"]):
            result = self.expect(self.report(*force), 1, "", None)
            self.assertEqual(result.err.count("\n"), 1)
        self.target.rmdir()
        other = self.folder / "other"
        self.target.symlink_to(other)
        for force in ([], ["--force"]):
            self.expect(self.report(*force), 1, "", None)
        self.assertFalse(other.exists())

    def test_unwritable_places(self):
        for target in ("/proc/page.html", "/dev/null/page.html", f"{self.letter}/page.html"):
            result = self.expect(zqv("report", self.letter, "-o", target), 1, "", None)
            self.assertRegex(result.err, r"\Azqv: [^\n]+\n\Z")

    def test_folder_of_somebody_else(self):
        copy = self.copy_program()
        letter = self.write("letter.eml", self.letter.read_bytes())
        options = program.as_nobody()
        self.folder.chmod(0o555)
        self.addCleanup(self.folder.chmod, 0o755)
        before = self.names()
        self.expect(zqv("report", letter, "-o", self.target, program=copy, **options), 1, "",
                    f"zqv: {letter}: {self.target}: Permission denied\n")
        self.assertEqual(self.names(), before)

    def test_no_room(self):
        # No partly written file is left.
        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096))
        run = subprocess.run(["sh", "-c", "trap '' XFSZ; exec \"$@\"", "sh", ZQV, "report",
                              self.letter, "-o", self.target], preexec_fn=limit, check=False,
                             capture_output=True, timeout=program.TIMEOUT)
        self.assertEqual((run.returncode, run.stdout), (1, b""))
        self.assertEqual(run.stderr.decode(),
                         f"zqv: {self.letter}: {self.target}: File too large\n")
        self.assertEqual(self.names(), [])

    def test_several_messages_are_refused(self):
        self.expect(zqv("report", self.letter, SAMPLES / "html-only.eml", "-o", self.target), 1,
                    "", None)
        self.assertEqual(self.names(), [])


if __name__ == "__main__":
    unittest.main()
