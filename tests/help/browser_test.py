#!/usr/bin/env python3
"""The help in a browser: search, links, both colour schemes, small windows, without scripts.

  browser_test.py --zqv build/release/zqv [--shots FOLDER]

Needs Debian's chromium, chromium-driver and python3-selenium; without them the exit status is 77,
which means skipped. With --shots it writes screenshots of the page into that folder.
"""

import pathlib
import sys
import tempfile
import unittest

import making

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
import browser

SKIPPED = 77
OPTIONS, REST = making.options(__doc__)
try:
    from selenium.webdriver import ActionChains
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
except ImportError:
    pass  # browser.MISSING lists what is missing

# The ids of the visible elements that match a selector.
SHOWN = """return Array.from(document.querySelectorAll(arguments[0]))
    .filter((element) => element.offsetParent !== null).map((element) => element.id)"""
RECIPES = {"HTMLViewer": "recipe-html", "reply": "recipe-reply", "forward": "recipe-forward",
           "datetime": "recipe-date", "real attachments": "recipe-files",
           "reserved": "saving-attachments", "eml": "recipe-eml", "mbox": "recipe-mbox",
           "preemptive": "recipe-threads"}
# Follows each link within the page. Returns those whose target is not in the window afterwards.
FOLLOW = """const missed = [], done = arguments[0];
const links = Array.from(new Set(Array.from(document.querySelectorAll("a[href]"))
    .map((link) => link.getAttribute("href"))));
(async () => {
  for (const link of links) {
    location.href = link;
    await new Promise((next) => requestAnimationFrame(() => requestAnimationFrame(next)));
    const target = document.getElementById(decodeURIComponent(link.slice(1)));
    const top = target ? target.getBoundingClientRect().top : -1;
    if (!target || link[0] !== "#" || top < -1 || top >= innerHeight) missed.push(link + " " + top);
  }
  done([links.length, missed]);
})();"""


class Case(browser.Window, unittest.TestCase):
    """A test with a new page in a browser."""

    shots = OPTIONS.shots

    @classmethod
    def setUpClass(cls):
        holder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(holder.cleanup)
        # The path has a blank, as in the package.
        cls.folder = pathlib.Path(holder.name) / "IDE Resources"
        cls.folder.mkdir()
        cls.page = cls.folder / "index.html"
        code, said = making.make_page(making.registered(OPTIONS.zqv), cls.page)
        if code:
            raise RuntimeError(said)
        cls.browser = browser.start()
        cls.addClassCleanup(cls.browser.quit)

    def open(self, anchor=""):
        self.browser.get("about:blank")
        self.browser.get(self.page.as_uri() + anchor)

    def query(self):
        return self.browser.find_element(By.ID, "query")

    def status(self):
        return self.browser.find_element(By.ID, "status").text

    def shown(self, selector=".member"):
        return self.script(SHOWN, selector)

    def press(self, *keys):
        ActionChains(self.browser).send_keys(*keys).perform()

    def focused(self):
        return self.script("return document.activeElement.id")

    def anchor(self):
        return self.script("return location.hash")


class PageTest(Case):
    def setUp(self):
        self.size(1280, 900)
        self.command("Emulation.setScriptExecutionDisabled", value=False)
        self.appearance("light")
        self.open()

    def tearDown(self):
        self.assertEqual(browser.wait_for_console(self.browser, 0.5), [])

    def test_search_shows_the_members_of_that_name(self):
        everything = self.shown()
        self.query().send_keys("SUBJ")
        self.assertEqual(self.shown(), ["MimeEmailZQV.Subject", "MimeHeaderZQV.subject",
                                        "MimeHeaderZQV.subjectDecoded"])
        self.assertEqual(self.shown("section"), ["MimeEmailZQV", "MimeHeaderZQV"])
        rows = self.browser.find_elements(By.CSS_SELECTOR, "#contents li")
        self.assertEqual([row.text for row in rows if row.is_displayed()],
                         ["Subject", "subject", "subjectDecoded"])
        self.assertEqual(self.status(), "3 results")
        self.query().send_keys("ect deco")
        self.assertEqual(self.shown(), ["MimeHeaderZQV.subjectDecoded"])
        self.assertEqual(self.status(), "1 result")
        self.query().send_keys(Keys.BACKSPACE * 12)
        self.assertEqual(self.shown(), everything)
        self.assertEqual(self.status(), "")

    def test_search_shows_a_class_whole(self):
        expected = [name for name in self.shown() if name.startswith("MimeGroupZQV.")]
        self.assertEqual(len(expected), 8)
        self.query().send_keys("mimegroup")
        self.assertEqual(self.shown(), expected)
        self.assertEqual(self.shown("section"), ["MimeGroupZQV"])

    def test_search_in_texts_when_no_name_fits(self):
        self.query().send_keys("undisclosed")
        self.assertEqual(self.shown(), [])
        self.assertEqual(self.shown("section"), ["MimeGroupZQV"])
        self.assertEqual(self.status(), "1 result in texts")

    def test_search_for_a_guide(self):
        self.query().send_keys("saving safely")
        self.assertEqual(self.shown("section"), ["saving-attachments"])

    def test_search_for_a_recipe(self):
        """A search for the words that a user has for a task finds its recipe, whatever members
        match too."""
        for word, recipe in RECIPES.items():
            with self.subTest(word):
                self.query().clear()
                self.query().send_keys(word)
                self.assertIn(recipe, self.shown("section.guide"))
                self.assertNotIn("in texts", self.status())
        self.query().clear()
        self.query().send_keys("daylight")
        self.assertEqual(self.shown("section"), ["recipe-date"])
        self.assertEqual(self.status(), "1 result")
        self.press(Keys.ENTER)
        self.assertEqual(self.anchor(), "#recipe-date")

    def test_search_that_finds_nothing(self):
        self.query().send_keys("qqqq")
        self.assertEqual(self.shown("section"), [])
        self.assertEqual(self.status(), "Nothing found")
        self.press(Keys.ENTER)
        self.assertEqual(self.anchor(), "")

    def test_search_by_keyboard(self):
        everything = self.shown()
        self.press("/")
        self.assertEqual(self.focused(), "query")
        self.press("hasf")
        self.assertEqual(self.query().get_property("value"), "hasf")
        self.assertEqual(self.shown(), ["MimeHeaderZQV.hasField"])
        self.press(Keys.ENTER)
        self.assertEqual(self.anchor(), "#MimeHeaderZQV.hasField")
        self.press(Keys.ESCAPE)
        self.assertEqual(self.query().get_property("value"), "")
        self.assertEqual(self.shown(), everything)
        self.assertNotEqual(self.focused(), "query")

    def test_link_to_a_member_that_the_search_hides(self):
        everything = self.shown()
        self.query().send_keys("BodyDecoded")
        self.browser.find_element(By.CSS_SELECTOR, "#MimeEntityZQV .super a").click()
        self.assertEqual(self.anchor(), "#MimeEmailZQV")
        self.assertEqual(self.shown(), everything)
        top = self.script("return document.getElementById('MimeEmailZQV')"
                          ".getBoundingClientRect().top")
        self.assertTrue(0 <= top < 300, top)

    def test_every_link_arrives(self):
        count, missed = self.browser.execute_async_script(FOLLOW)
        self.assertGreater(count, 110)
        self.assertEqual(missed, [])

    def test_links_that_do_not_arrive_are_reported(self):
        self.script("document.querySelector('main a').href = '#gone'")
        self.assertEqual(self.browser.execute_async_script(FOLLOW)[1], ["#gone -1"])

    def test_links_by_hand(self):
        self.browser.find_element(By.LINK_TEXT, "MimeHeaderZQV").click()
        self.assertEqual(self.anchor(), "#MimeHeaderZQV")
        current = self.browser.find_element(By.CSS_SELECTOR, "#contents [aria-current]")
        self.assertEqual(current.text, "MimeHeaderZQV")
        self.browser.find_element(By.LINK_TEXT, "FieldByName(name)").click()
        self.assertEqual(self.anchor(), "#MimeHeaderZQV.FieldByName")
        self.browser.find_element(
            By.CSS_SELECTOR, "[id='MimeHeaderZQV.FieldByName'] .declaration a").click()
        self.assertEqual(self.anchor(), "#MimeFieldZQV")

    def test_nothing_is_loaded(self):
        self.assertEqual(
            self.script("return performance.getEntriesByType('resource').map((e) => e.name)"), [])

    def test_both_appearances(self):
        grounds = []
        for scheme in ("light", "dark"):
            self.appearance(scheme)
            for anchor in ("", "#MimeEmailZQV", "#MimeEmailZQV.Attachments", "#errors",
                           "#saving-attachments", "#third-party-notice", "#cookbook",
                           *(f"#{recipe}" for recipe in RECIPES.values())):
                self.open(anchor)
                self.shoot(f"{scheme}{anchor.replace('#', '-')}")
            self.query().send_keys("parts")
            self.shoot(f"{scheme}-search")
            grounds.append(self.script("return getComputedStyle(document.body).backgroundColor"))
            self.assertEqual(browser.wait_for_console(self.browser, 0.5), [])
        self.assertEqual(grounds, ["rgb(255, 255, 255)", "rgb(20, 24, 29)"])

    def test_small_windows_do_not_scroll_sideways(self):
        for width in (340, 400, 500, 700, 850, 1024):
            self.size(width, 700)
            for anchor in ("#MimeEmailZQV", "#cookbook", "#recipe-reply", "#MimeFieldZQV.Value"):
                self.open(anchor)
                self.shoot(f"width-{width}{anchor.replace('#', '-')}")
                self.assertLessEqual(self.script("return document.documentElement.scrollWidth"),
                                     width)

    def test_without_script(self):
        everything = self.shown()
        self.command("Emulation.setScriptExecutionDisabled", value=True)
        self.open("#MimeBodyZQV.Parts")
        self.assertEqual(self.shown(), everything)
        self.assertEqual(self.shown("#query"), [])
        self.shoot("no-script")
        top = self.script("return document.getElementById('MimeBodyZQV.Parts')"
                          ".getBoundingClientRect().top")
        self.assertTrue(0 <= top < 300, top)


class ConsoleTest(Case):
    """Faults of a page appear on the console, which the other tests require to be empty."""

    def test_faults_are_seen(self):
        text = self.page.read_text("utf-8")
        for planted in ("<img src='gone.png'>", "<script>nothing.there()</script>",
                        "<p style='color: red'></p>"):
            page = self.folder / "planted.html"
            page.write_text(text.replace("</main>", planted + "</main>"), "utf-8")
            self.browser.get_log("browser")
            self.browser.get(page.as_uri())
            self.assertNotEqual(browser.wait_for_console(self.browser), [], planted)


def main():
    if browser.MISSING:
        print(f"skipped: needs {', '.join(browser.MISSING)}")
        return SKIPPED
    unittest.main(argv=[sys.argv[0], *REST])
    return 1


if __name__ == "__main__":
    sys.exit(main())
