"""A browser without a window, for tests that look at pages."""

import os
import shutil
import time

try:
    from selenium import webdriver
except ImportError:
    webdriver = None

BROWSER = shutil.which("chromium")
DRIVER = shutil.which("chromedriver")
# Debian's packages that are not there; the last one is seen by Debian's own Python alone.
MISSING = [name for name, found in (("chromium", BROWSER), ("chromium-driver", DRIVER),
                                    ("python3-selenium", webdriver)) if not found]


def start(width=1280, height=900):
    """One that keeps what pages say on its console."""
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
    """What a page says on its console, which may take a while; empty when it says nothing."""
    deadline = time.monotonic() + seconds
    while True:
        said = driver.get_log("browser")
        if said or time.monotonic() > deadline:
            return said
        time.sleep(0.05)
