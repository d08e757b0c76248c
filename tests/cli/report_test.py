"""The page that `zqv report` writes: its contents and its form, and that nothing in a message makes
a browser execute, load or send anything.

Tests with a browser are skipped without Debian's chromium, chromium-driver and python3-selenium,
which is visible to Debian's own Python.
"""

import base64
import hashlib
import html
import pathlib
import re
import resource
import subprocess
import sys
import time
import unittest

import program
from program import SAMPLES, ZQV, zqv
from report_pages import DOT, BrowserCase, Page, ReportCase, file_part, message

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
import browser

try:
    from selenium.webdriver.common.by import By
except ImportError:
    pass  # browser.MISSING lists what is missing

SETTLING = 0.7  # seconds in which a page may try to load something

# HTML that contacts a server as soon as it is shown; @/ stands for the server.
LOADING = {
    "picture": "<img src='@/1'>",
    "picture in a set": "<img srcset='@/1 1x, @/2 2x'>",
    "picture of a button": "<input type=image src='@/1'>",
    "background": "<table background='@/1'><tr><td>x</td></tr></table>",
    "style": "<p style='background: url(@/1)'>x</p>",
    "style sheet with a picture": "<style>body { background: url('@/1') }</style>",
    "style sheet with another": "<style>@import url('@/1');</style>",
    "style sheet with another, escaped": "<style>@\\69mport '@/1';</style>",
    "style with escapes": "<p style='background: \\75rl(@/1)'>x</p>",
    "style with references": "<p style='background: &bsol;75&#x20;rl&lpar;@/1&rpar;'>x</p>",
    "style with a comment": "<p style='background:/**/url(/**/@/1)'>x</p>"
                            "<p style='background:/**/url(@/2)/**/'>x</p>",
    "style with a set of pictures": "<p style='background: image-set(\"@/1\" 1x)'>x</p>",
    "style with an old set": "<p style='background: -webkit-image-set(url(@/1) 1x)'>x</p>",
    "style with a variable": "<style>p { --a: url(@/1); background: var(--a) }</style><p>x</p>",
    "style with a picture for text": "<p style='content: url(@/1)'>x</p>",
    "style with a shape": "<p style='float: left; shape-outside: url(@/1)'>x</p>",
    "style with a mask": "<p style='mask-image: url(@/1)'>x</p>",
    "style with a border": "<p style='border: 1px solid; border-image: url(@/1) 1'>x</p>",
    "style of a list": "<ul><li style='list-style: url(@/1)'>x</li></ul>",
    "style for the page around": "<style>:root { background: url(@/1) }</style>",
    "style in a query": "<style>@media screen { p { background: url(@/1) } }</style><p>x</p>",
    "nested style": "<style>body { p { background: url(@/1) } }</style><p>x</p>",
    "style of text before": "<style>p::before { content: url(@/1) }</style><p>x</p>",
    "style sheet elsewhere": "<link rel=stylesheet href='@/1'>",
    "font": "<style>@font-face { font-family: f; src: url('@/1') } p { font-family: f }</style>"
            "<p>x</p>",
    "script elsewhere": "<script src='@/1'></script>",
    "script": "<script>document.title = 'taken'; new Image().src = '@/1'</script>",
    "handler": "<img src='data:,' onerror=\"this.onerror = null; document.title = 'taken'; "
               "this.src = '@/1'\">",
    "handler of an SVG": "<svg onload=\"document.title = 'taken'; fetch('@/1')\"></svg>",
    "picture in an SVG": "<svg><image href='@/1' width=9 height=9></image></svg>",
    "frame": "<iframe src='@/1'></iframe>",
    "frame in a frame": "<iframe srcdoc=\"<img src='@/1'>\"></iframe>",
    "object": "<object data='@/1'></object>",
    "embedded": "<embed src='@/1'>",
    "film": "<video poster='@/1' src='@/2' autoplay></video>",
    "refresh": "<meta http-equiv=refresh content='0; url=@/1'>",
    "base": "<base href='@/'><img src='1'>",
    "preload": "<link rel=preload as=image href='@/1'>",
    "connection": "<link rel=preconnect href='@/'>",
    "script from a link": "<a href=\"javascript:fetch('@/1')\" id=self>x</a>"
                          "<script>document.getElementById('self').click()</script>",
    "form": "<form id=f action='@/1'><input name=a></form><script>f.submit()</script>",
    "attribute that ends early": "<p title='\"><img src=@/1>'></p><p title='x'><img src='@/1'></p>",
    "comment that ends early": "<!--><img src='@/1'>-->",
    "raw text that ends": "<textarea></textarea><img src='@/1'>",
}

# Text that leaves its place in a page that does not escape it: it must not end an attribute or an
# element.
BREAKING = """\
"><img src='@/1'><script>document.title = 'taken'</script>
'><svg/onload="document.title = 'taken'">
"></iframe><script src='@/1'></script><img src=@/2>
&quot;&gt;&lt;img src=@/1&gt;&#34;&#62;
<scr\0ipt src='@/1'></scr\0ipt><im\0g src='@/1'><\0script>document.title = 'taken'</script>
<style>p { }</st\0yle><img src='@/1'></style>
<style>@import '@/1'</style ><img/src="@/1"/onerror=x><IMG SRC=@/1><img src
='@/1'><img src=@/1
"""

# HTML that contacts a server when it is clicked.
WAITING = """\
<a href="@/1" target=_top>top</a> <a href='@/2'>self</a> <a href=@/3 target=_blank ping=@/4>new</a>
<form action='@/5' method=post target=_top><input type=submit value=send><button>b</button></form>
<map name=m><area href='@/6' shape=default></map><img usemap=#m src='data:image/gif;base64,%s'>
<details ontoggle="document.title = 'taken'"><summary>more</summary></details>
""" % base64.b64encode(DOT).decode()

EVERYWHERE = "</title></pre></style>\"'><script>document.title='taken'</script><img src=@/9>\u202E"


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


@unittest.skipIf(browser.MISSING, f"needs {', '.join(browser.MISSING)}")
class BrowserTest(BrowserCase):
    width = 1100

    def armed(self, text):
        return text.replace("@/", self.server.address + "/")

    def open(self, text, name="page.html"):
        self.browser.get(self.write(name, text).as_uri())
        time.sleep(SETTLING)
        self.shoot(self.id().split(".")[-1])

    def check_quiet(self, title):
        """Requires no connection, no script, and no lines on the console except those for blocked
        requests."""
        self.assertEqual(self.browser.title, title)
        log = [entry["message"] for entry in self.browser.get_log("browser")]
        self.assertEqual([line for line in log if "Content Security Policy" not in line], [])
        self.assertEqual(self.server.take(), 0, log)

    def within_frame(self, code):
        self.browser.switch_to.frame(self.browser.find_element(By.TAG_NAME, "iframe"))
        try:
            return self.script(code)
        finally:
            self.browser.switch_to.default_content()

    def test_each_trick_works_on_a_plain_page(self):
        # This proves that the tests below can fail.
        for name, trick in LOADING.items():
            with self.subTest(name):
                self.browser.get("about:blank")
                self.server.take()
                self.browser.get(self.write("trick.html", self.armed(trick)).as_uri())
                self.assertTrue(self.server.wait())

    def test_each_trick_fails_on_the_report(self):
        for name, trick in LOADING.items():
            with self.subTest(name):
                self.open(self.page(message(self.armed(trick), subject="Tricks")))
                self.check_quiet("Tricks")
                self.command("Page.printToPDF", printBackground=True)
                self.check_quiet("Tricks")

    def test_all_tricks_at_once(self):
        tricks = "".join(LOADING.values()) + BREAKING + WAITING
        everywhere = self.armed(EVERYWHERE)
        text = message(self.armed(tricks), file_part(DOT, everywhere.replace('"', "'")),
                       f"Content-Type: text/x-{everywhere}\n\n{self.armed(tricks)}",
                       subject=everywhere, plain=self.armed(tricks),
                       field=f"X-Trick: {self.armed(tricks.splitlines()[0])}\n"
                             f"To: {everywhere} <a@example.org>\nDate: {everywhere}\n")
        page = self.page(text)
        self.open(page)
        self.assertEqual(self.script("return document.scripts.length"), 0)
        self.assertEqual(self.script("return document.querySelectorAll('iframe').length"), 1)
        self.check_quiet(everywhere.replace("\u202E", "\\u{202E}"))

    def test_clicks_do_nothing(self):
        self.open(self.page(message(self.armed(WAITING), subject="Waiting")))
        self.browser.switch_to.frame(self.browser.find_element(By.TAG_NAME, "iframe"))
        found = self.browser.find_elements(By.CSS_SELECTOR, "a, form, input, button, area, img")
        self.assertEqual([element.tag_name for element in found], ["a", "a", "a", "img"])
        for element in found:
            element.click()
        self.browser.switch_to.default_content()
        time.sleep(SETTLING)
        self.assertEqual(len(self.browser.window_handles), 1)
        self.check_quiet("Waiting")

    def test_sandbox_and_policy_suffice_without_cleaning(self):
        # Puts the text into the frame without cleaning it, so that only sandbox and policy protect.
        # Two tricks are left out: for them the browser opens a connection before it applies the
        # policy.
        early = ("connection", "frame")
        tricks = "".join(trick for name, trick in LOADING.items() if name not in early)
        self.open(self.with_raw_text(frame=tricks + BREAKING.replace("\0", "") + WAITING))
        self.assertEqual(self.browser.title, "Alone")
        self.assertEqual(self.server.take(), 0)

    def test_policy_suffices_without_cleaning(self):
        # Does the same with the copy for printing. A policy does not prevent the page from
        # navigating elsewhere, so tricks that do are left out.
        others = ("connection", "frame", "refresh")
        tricks = "".join(trick for name, trick in LOADING.items() if name not in others)
        self.open(self.with_raw_text(copy=tricks + BREAKING.replace("\0", "") + WAITING))
        self.command("Page.printToPDF", printBackground=True)
        self.assertEqual(self.browser.title, "Alone")
        self.assertEqual(self.server.take(), 0)

    def with_raw_text(self, copy="", frame=""):
        """A page with HTML that was not cleaned."""
        page = self.page(message("MARK", subject="Alone")).split("MARK")
        self.assertEqual(len(page), 3)
        return (page[0] + self.armed(copy) + page[1] + html.escape(self.armed(frame)) + page[2])

    def test_good_page(self):
        self.open(self.page(SAMPLES / "attachments.eml"))
        self.assertEqual(self.script("return document.querySelector('h1').textContent"),
                         "Quarterly figures and the chart")
        self.assertEqual(
            self.script("return Array.from(document.querySelectorAll('#parts .number'))"
                        ".map((e) => e.textContent)"), ["0", "1", "1.1", "1.2", "2", "3"])
        widths = self.script("return Array.from(document.images).map((i) => i.naturalWidth)")
        self.assertEqual(len(widths), 1)
        self.assertGreater(widths[0], 0)
        self.assertIn("3\xA0% below", self.within_frame("return document.body.textContent"))
        self.assertEqual(browser.wait_for_console(self.browser, 0.5), [])

    def test_pictures_of_the_text(self):
        self.open(self.page(SAMPLES / "inline-images.eml"))
        widths = self.within_frame(
            "return Array.from(document.images).map((i) => i.naturalWidth)")
        self.assertEqual(len(widths), 2)
        self.assertGreater(min(widths), 0)

    def test_findings_are_shown(self):
        self.open(self.page(SAMPLES / "malformed.eml"))
        shown = self.script("return document.querySelectorAll('#findings li').length")
        self.assertEqual(shown, len(zqv("check", SAMPLES / "malformed.eml").out.splitlines()))


if __name__ == "__main__":
    unittest.main()
