"""Shared by the tests of `zqv report`: messages, their pages, and a server that no page may
contact."""

import base64
import html.parser
import os
import pathlib
import socket
import sys
import threading
import time

import program
from program import zqv

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
import browser

# a GIF of one pixel
DOT = base64.b64decode("R0lGODlhAQABAIAAAAAAAP///yH5BAEAAAAALAAAAAABAAEAAAIBRAA7")
COPY_START, COPY_END = "<template shadowrootmode=\"open\">", "</template>"


class Server:
    """Accepts connections on 127.0.0.1, counts them, and answers nothing."""

    def __init__(self):
        self._socket = socket.create_server(("127.0.0.1", 0))
        self.address = "http://127.0.0.1:%d" % self._socket.getsockname()[1]
        self._count = 0
        threading.Thread(target=self._serve, daemon=True).start()

    def _serve(self):
        while True:
            try:
                connection, _ = self._socket.accept()
            except OSError:
                return
            self._count += 1
            connection.close()

    def take(self):
        """The number of connections since the last call."""
        count, self._count = self._count, 0
        return count

    def wait(self):
        """Whether a connection is made within ten seconds."""
        end = time.monotonic() + 10
        while not self._count and time.monotonic() < end:
            time.sleep(0.02)
        return self._count > 0

    def close(self):
        self._socket.shutdown(socket.SHUT_RDWR)
        self._socket.close()


def message(html_text, *others, subject="A page", plain="Plain words.", field=""):
    """A message with plain text, HTML and other parts, which are given with their headers."""
    header = (f"From: ada@example.com\nDate: Sat, 20 Jan 2024 18:00:00 +0000\nSubject: {subject}\n"
              f"{field}MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=cut\n\n")
    parts = [f"Content-Type: text/plain; charset=utf-8\n\n{plain}",
             f"Content-Type: text/html; charset=utf-8\n\n{html_text}", *others]
    return header + "".join(f"--cut\n{part}\n" for part in parts) + "--cut--\n"


def file_part(content, name="dot.gif", mime_type="image/gif", content_id=None):
    identity = f"Content-ID: <{content_id}>\n" if content_id else ""
    return (f"Content-Type: {mime_type}; name=\"{name}\"\nContent-Transfer-Encoding: base64\n"
            f"Content-Disposition: {'inline' if content_id else 'attachment'}\n{identity}\n"
            + base64.b64encode(content).decode())


class Page(html.parser.HTMLParser):
    """The contents of a page: its elements with their attributes, its text, the page in its frame,
    and the copy for printing."""

    def __init__(self, text):
        super().__init__()
        self.elements = []
        self.text = ""
        self.copy = None
        if COPY_START in text:
            before, rest = text.split(COPY_START)
            inside, after = rest.split(COPY_END)
            self.copy = Page(inside)
            text = before + after
        self.feed(text)
        self.close()
        frames = [found["srcdoc"] for name, found in self.elements if name == "iframe"]
        self.frame = Page(frames[0]) if frames else None

    def handle_starttag(self, tag, attrs):
        self.elements.append((tag, dict(attrs)))

    def handle_data(self, data):
        self.text += data

    def names(self):
        return {name for name, _ in self.elements}

    def values(self, element, attribute):
        return [found.get(attribute) for name, found in self.elements if name == element]


class ReportCase(program.TestCase):
    def page(self, text, **options):
        """The page of a message."""
        path = self.write("letter.eml", text) if isinstance(text, (str, bytes)) else text
        return self.expect(zqv("report", path, "-o", "-", **options)).out


class BrowserCase(browser.Window, ReportCase):
    """A test with a browser, `width` pixels wide, and a server that the pages must not contact. The
    environment variable ZQV_SHOTS names the folder for screenshots."""

    width = 1280

    @classmethod
    def setUpClass(cls):
        cls.browser = browser.start(width=cls.width)
        cls.addClassCleanup(cls.browser.quit)
        cls.server = Server()
        cls.addClassCleanup(cls.server.close)
        cls.shots = os.environ.get("ZQV_SHOTS")

    def setUp(self):
        super().setUp()
        self.browser.get("about:blank")
        self.browser.get_log("browser")
        self.server.take()
