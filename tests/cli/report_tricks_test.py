"""No text in a message makes a browser that shows the page of `zqv report` execute, load or send
anything.

Skipped without Debian's chromium, chromium-driver and python3-selenium, which is visible to Debian's
own Python.
"""

import html
import pathlib
import sys
import time
import unittest

from program import SAMPLES, zqv
from report_pages import DOT, BrowserCase, file_part, message
from report_tricks import BREAKING, EVERYWHERE, LOADING, WAITING

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
import browser

try:
    from selenium.webdriver.common.by import By
except ImportError:
    pass  # browser.MISSING lists what is missing

SETTLING = 0.7  # seconds in which a page may try to load something


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
