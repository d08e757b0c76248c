"""The page that `zqv report` writes, in a browser: small windows, both colour schemes, printed.

The tests need Debian's chromium, chromium-driver, python3-selenium and poppler-utils, and are
skipped without them. With ZQV_SHOTS they write screenshots of the pages into that folder.
"""

import pathlib
import re
import sys
import time
import unittest

from program import SAMPLES
from report_pages import DOT, BrowserCase, file_part, message

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
import browser

try:
    from selenium.webdriver.common.by import By
except ImportError:
    pass  # browser.MISSING lists what is missing

MISSING = browser.MISSING + ([] if browser.PDF_READER else ["poppler-utils"])
NARROW, WIDE = 400, 1280
LOOKED_AT = ("attachments", "html-only", "inline-images", "malformed", "nested", "newsletter",
             "plain")
LONG_WORD = "Donaudampfschifffahrtsgesellschaft" * 12
READABLE = 4.5  # least contrast of text and background (WCAG 2.1, success criterion 1.4.3)

# The contrast of each visible text with its background, the lowest first, with the text.
CONTRAST = """
const numbers = (color) => color.match(/[\\d.]+/g).map(Number);
const light = (color) => {
  const [r, g, b] = numbers(color).map((c) => c / 255)
      .map((c) => c <= 0.03928 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4);
  return 0.2126 * r + 0.7152 * g + 0.0722 * b;
};
const groundOf = (element) => {
  for (; element; element = element.parentElement) {
    const color = getComputedStyle(element).backgroundColor, parts = numbers(color);
    if (parts.length === 3) return color;
    if (parts[3] !== 0) return null;
  }
  return "rgb(255, 255, 255)";
};
const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
const found = [];
while (walker.nextNode()) {
  const element = walker.currentNode.parentElement;
  if (!walker.currentNode.data.trim() || !element.checkVisibility()) continue;
  const ground = groundOf(element);
  if (ground === null) { found.push([0, "ground of " + element.className]); continue; }
  const [a, b] = [light(getComputedStyle(element).color), light(ground)];
  found.push([(Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05), element.textContent]);
}
return found.sort((a, b) => a[0] - b[0]);
"""


@unittest.skipIf(MISSING, f"needs {', '.join(MISSING)}")
class WindowCase(BrowserCase):
    """A test that at its end requires an empty console and no connection to the server."""

    def setUp(self):
        super().setUp()
        self.size(WIDE, 900)
        self.appearance("light")

    def show(self, text):
        """Writes the page of a message and opens it."""
        self.browser.get(self.write("page.html", self.page(text)).as_uri())

    def check_quiet(self):
        self.assertEqual(browser.wait_for_console(self.browser, 0.3), [])
        self.assertEqual(self.script(
            "return performance.getEntriesByType('resource').map((e) => e.name)"
            ".filter((name) => !name.startsWith('data:'))"), [])
        self.assertEqual(self.server.take(), 0)

    def wider(self):
        """The number of pixels by which the page is wider than its window."""
        return self.script("return document.documentElement.scrollWidth - "
                           "document.documentElement.clientWidth")

    def frame_height(self):
        return self.script("return document.querySelector('iframe').offsetHeight")

    def frame_scrolls(self):
        """The number of pixels by which the text in the frame is higher than the frame."""
        self.browser.switch_to.frame(self.browser.find_element(By.TAG_NAME, "iframe"))
        try:
            return self.script("return document.documentElement.scrollHeight - "
                               "document.documentElement.clientHeight")
        finally:
            self.browser.switch_to.default_content()


class LookTest(WindowCase):
    def test_samples(self):
        for name in LOOKED_AT:
            for scheme in ("light", "dark"):
                for width in (NARROW, WIDE):
                    with self.subTest(f"{name} {scheme} {width}"):
                        self.size(width, 900)
                        self.appearance(scheme)
                        self.show(SAMPLES / f"{name}.eml")
                        self.size(width, self.script("return document.body.scrollHeight"))
                        self.shoot(f"{name}-{scheme}-{width}")
                        self.check_look()
                        self.check_quiet()

    def check_look(self):
        self.assertLessEqual(self.wider(), 0)
        texts = self.script(CONTRAST)
        self.assertGreater(len(texts), 10)
        self.assertGreater(texts[0][0], READABLE, texts[0][1])

    def hostile(self):
        """A message in which every text is too long for the window."""
        url = f"https://{'a' * 60}.example/{LONG_WORD}"
        letter = (f"<p>{LONG_WORD}</p><table width=3000><tr><td nowrap>{LONG_WORD}</table>"
                  f"<a href='{url}'>{LONG_WORD}</a><a href='{url}'>bank.example</a>"
                  "<form action='https://xn--a.example'></form>")
        return message(letter, file_part(DOT, LONG_WORD[:200]),
                       f"Content-Type: text/{LONG_WORD}\n\n{LONG_WORD}", plain=LONG_WORD,
                       subject=LONG_WORD, field=f"X-{LONG_WORD[:60]}: {LONG_WORD}\n")

    def test_long_words(self):
        self.show(self.hostile())
        for width in (NARROW, WIDE):
            for scheme in ("light", "dark"):
                self.size(width, 900)
                self.appearance(scheme)
                # Closed parts are measured too.
                self.script("document.querySelectorAll('details').forEach((e) => e.open = true)")
                self.shoot(f"long-words-{scheme}-{width}")
                self.check_look()
        self.check_quiet()

    def test_faults_are_seen(self):
        # This proves that the measurements above can fail.
        self.show(SAMPLES / "plain.eml")
        self.script("document.body.insertAdjacentHTML('beforeend', '<p style=\"width: 3000px; "
                    "color: #999; background: #eee\">faint')")
        self.assertGreater(self.wider(), 1000)
        self.assertLess(self.script(CONTRAST)[0][0], READABLE)
        self.script("document.body.insertAdjacentHTML('beforeend', "
                    f"'<img src=\"{self.server.address}/1\">')")
        self.assertNotEqual(browser.wait_for_console(self.browser), [])

    def test_appearances_differ(self):
        self.show(SAMPLES / "attachments.eml")
        grounds = []
        for scheme in ("light", "dark"):
            self.appearance(scheme)
            grounds.append(self.script("return getComputedStyle(document.body).backgroundColor"))
        self.assertEqual(grounds, ["rgb(244, 245, 247)", "rgb(20, 24, 29)"])


class FrameTest(WindowCase):
    """The frame is as high as its contents, up to most of the window's height."""

    def test_short_letter(self):
        self.show(message("<p>one<p>two"))
        self.assertLess(self.frame_height(), 130)
        self.assertEqual(self.frame_scrolls(), 0)

    def test_height_follows_the_width(self):
        self.show(message("<p>" + "word " * 150))
        heights = []
        for width in (WIDE, NARROW):
            self.size(width, 900)
            heights.append(self.frame_height())
            self.assertEqual(self.frame_scrolls(), 0)
        self.assertGreater(heights[1], 2 * heights[0])

    def test_long_letter_scrolls_within(self):
        self.show(message("<p>line" * 1000))
        self.assertAlmostEqual(self.frame_height(), 0.85 * 900, delta=3)
        self.assertGreater(self.frame_scrolls(), 10_000)

    def test_letter_with_styles_for_its_page(self):
        self.show(message("<style>body { margin: 0; padding: 100px; background: #123 }</style>"
                          "<body text=white style='font-size: 30px'>x"))
        self.assertAlmostEqual(self.frame_height(), 200 + 1.45 * 30, delta=3)
        self.assertEqual(self.frame_scrolls(), 0)

    def test_wide_letter(self):
        # The horizontal scroll bar of the frame adds to its height.
        self.size(NARROW, 900)
        self.show(message("<table width=900><tr><td>x</table><p>" + "word " * 40))
        self.assertEqual(self.frame_scrolls(), 0)
        self.assertEqual(self.wider(), 0)

    def test_letter_without_text(self):
        self.show(message("<img src='https://a.example/'>"))
        self.assertLess(self.frame_height(), 80)

    def test_copy_cannot_be_touched(self):
        # Whatever the message contains, the element under the pointer belongs to the frame or to
        # the page.
        tricks = ("<style>:host { position: fixed !important; inset: 0; z-index: 9; opacity: 1 }"
                  "* { visibility: visible !important; pointer-events: auto !important }</style>"
                  "<div style='position: fixed; inset: 0; z-index: 9; background: red'>x</div>"
                  "<div style='margin: -500px; height: 9000px; background: red'>y</div>")
        self.show(message(tricks))
        found = self.script("""
            const found = new Set();
            for (let x = 5; x < innerWidth - 20; x += 50)
              for (let y = 5; y < innerHeight; y += 20) {
                for (const element of document.elementsFromPoint(x, y)) {
                  found.add(element.closest('.copy') ? 'copy' : element.localName);
                  const box = element.getBoundingClientRect();
                  if (element.localName === 'iframe' && (y < box.top - 1 || y > box.bottom + 1))
                    found.add('outside');
                }
              }
            return Array.from(found)""")
        self.assertIn("iframe", found)
        self.assertNotIn("copy", found)
        self.assertNotIn("outside", found)


class PaperTest(WindowCase):
    def paper(self, text):
        self.show(text)
        return browser.text_of_pdf(self.printed())

    def test_html_is_whole(self):
        words = self.paper(message("<p>line" * 3000 + "<p>LASTLINE"))
        self.assertEqual(words.count("line"), 3000)
        self.assertIn("LASTLINE", words)

    def test_closed_parts_are_open(self):
        part = "Content-Type: text/csv\nX-Closed: CLOSEDFIELD\n\nCLOSEDTEXT"
        words = self.paper(message("x", part))
        self.assertEqual(self.script("return document.querySelectorAll('details[open]').length"), 1)
        self.assertIn("CLOSEDFIELD", words)
        self.assertIn("CLOSEDTEXT", words)

    def test_closed_part_is_not_shown_on_screen(self):
        # This proves that the test above can fail.
        self.show(message("x", "Content-Type: text/csv\n\nCLOSEDTEXT"))
        self.assertNotIn("CLOSEDTEXT", self.browser.find_element(By.TAG_NAME, "body").text)

    def test_everything(self):
        for name in LOOKED_AT:
            with self.subTest(name):
                words = self.paper(SAMPLES / f"{name}.eml")
                squeezed = re.sub(r"\s|-", "", words)
                for text in self.script("""
                    return Array.from(document.querySelectorAll('h1, h2, dt, dd, li, pre, code'))
                        .flatMap((e) => Array.from(e.childNodes))
                        .filter((n) => n.nodeType === 3 && n.data.trim()).map((n) => n.data)"""):
                    for word in re.findall(r"[A-Za-z0-9]{3,}", text):
                        self.assertIn(word, squeezed)
                for word in self.letter_words():
                    self.assertIn(word, squeezed)

    def letter_words(self):
        if not self.browser.find_elements(By.TAG_NAME, "iframe"):
            return []
        self.browser.switch_to.frame(self.browser.find_element(By.TAG_NAME, "iframe"))
        try:
            return re.findall(r"[A-Za-z0-9]{3,}", self.script("return document.body.innerText"))
        finally:
            self.browser.switch_to.default_content()

    def test_letter_that_hides_from_paper(self):
        filler = "<p>filler</p>" * 300
        tricks = {
            "a query": "<style>@media print { * { display: none !important } }</style>" + filler,
            "another query": "<style>@media not screen { * { display: none } }</style>" + filler,
            "a low box": f"<div style='height: 20px; overflow: hidden'>{filler}LASTLINE</div>",
            "an important low box": "<style>div { max-height: 20px !important; overflow: hidden "
                                    f"!important }}</style><div>{filler}LASTLINE</div>",
            "an important attribute": "<div style='height: 20px !important; overflow: hidden "
                                      f"!important'>{filler}LASTLINE</div>",
            "a box that spills": f"<div style='height: 20px'>{filler}LASTLINE</div>",
            "a place of its own": f"<div style='position: absolute; top: 9000px'>{filler}",
            "rules for the page": f"<style>@page {{ size: 1in 1in }}</style>{filler}",
            "end tags": f"</template></div></div></section></main></body></html>{filler}",
            "wide cells": f"<table width=4000><tr><td nowrap>{'wide ' * 200}LASTLINE</table>",
        }
        for name, trick in tricks.items():
            with self.subTest(name):
                words = self.paper(message(trick + "LASTLINE"))
                self.assertIn("LASTLINE", words)
                self.assertEqual(words.count("filler"), trick.count("filler"))
                self.assertIn("Parts and headers", words)

    def test_nothing_covers_the_page(self):
        trick = ("<style>:host { position: fixed !important; inset: 0 }</style>"
                 "<div style='margin-top: -3000px; height: 9000px; background: #000'>COVER</div>")
        self.show(message(trick, subject="Over it"))
        self.command("Emulation.setEmulatedMedia", media="print")
        box = self.script("""
            const box = document.querySelector('.letter').getBoundingClientRect();
            const style = getComputedStyle(document.querySelector('.letter'));
            return [box.top > document.querySelector('h1').getBoundingClientRect().bottom,
                    style.contain, style.overflow]""")
        self.command("Emulation.setEmulatedMedia", media="")
        self.assertEqual(box, [True, "layout paint", "hidden"])
        self.assertIn("Over it", browser.text_of_pdf(self.printed()))

    def test_nothing_is_requested(self):
        at = self.server.address
        self.show(message(f"<style>@media print {{ p {{ background: url({at}/1) }} }}</style>"
                          f"<p style='background: \\75rl({at}/2)'>x</p><img src='{at}/3'>"
                          f"<a href='{at}/4'>x</a>"))
        self.printed(printBackground=True)
        time.sleep(0.5)
        self.check_quiet()


class OldBrowserTest(WindowCase):
    """A browser without declarative shadow trees shows the frame with a fixed height, and prints a
    note."""

    def test_frame_and_note(self):
        page = self.page(message("<p>one<p>LASTLINE"))
        self.browser.get(self.write("old.html", page.replace(" shadowrootmode=", " was=")).as_uri())
        self.assertGreater(self.frame_height(), 300)
        self.assertIn("does not print the HTML", browser.text_of_pdf(self.printed()))
        self.check_quiet()


if __name__ == "__main__":
    unittest.main()
