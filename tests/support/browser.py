"""A browser without a window, for tests of pages."""

import base64
import os
import pathlib
import shutil
import subprocess
import time

try:
    from selenium import webdriver
except ImportError:
    webdriver = None

BROWSER = shutil.which("chromium")
DRIVER = shutil.which("chromedriver")
# Debian's packages that are missing. The last one is visible only to Debian's own Python.
MISSING = [name for name, found in (("chromium", BROWSER), ("chromium-driver", DRIVER),
                                    ("python3-selenium", webdriver)) if not found]


def start(width=1280, height=900):
    """Starts a browser that records the messages of pages on its console."""
    options = webdriver.ChromeOptions()
    options.binary_location = BROWSER
    for argument in ("--headless=new", "--disable-gpu", "--disable-dev-shm-usage",
                     f"--window-size={width},{height}", "--force-color-profile=srgb"):
        options.add_argument(argument)
    if os.geteuid() == 0:
        options.add_argument("--no-sandbox")
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    service = webdriver.chrome.service.Service(DRIVER)
    return webdriver.Chrome(options=options, service=service)


def wait_for_console(driver, seconds=20):
    """The messages on the console, for which this waits; empty when there are none."""
    deadline = time.monotonic() + seconds
    while True:
        said = driver.get_log("browser")
        if said or time.monotonic() > deadline:
            return said
        time.sleep(0.05)


class Window:
    """Helpers for a test case with a browser, `self.browser`. Screenshots go to the folder
    `self.shots`, if it is not None."""

    browser = None
    shots = None

    def command(self, name, **values):
        return self.browser.execute_cdp_cmd(name, values)

    def size(self, width, height):
        self.command("Emulation.setDeviceMetricsOverride", width=width, height=height,
                     deviceScaleFactor=1, mobile=False)

    def appearance(self, scheme):
        self.command("Emulation.setEmulatedMedia",
                     features=[{"name": "prefers-color-scheme", "value": scheme}])

    def script(self, code, *arguments):
        return self.browser.execute_script(code, *arguments)

    def shoot(self, name):
        if self.shots:
            folder = pathlib.Path(self.shots)
            folder.mkdir(parents=True, exist_ok=True)
            self.browser.save_screenshot(str(folder / f"{name}.png"))

    def printed(self, **options):
        """The page as the bytes of a PDF."""
        return base64.b64decode(self.command("Page.printToPDF", **options)["data"])


PDF_READER = shutil.which("pdftotext")  # from Debian's package poppler-utils


def text_of_pdf(data):
    """The words of a PDF, separated by single blanks."""
    run = subprocess.run([PDF_READER, "-", "-"], input=data, stdout=subprocess.PIPE, check=True,
                         timeout=60)
    return " ".join(run.stdout.decode("utf-8").split())
