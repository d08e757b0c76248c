"""Generated messages of given shapes for measurements. Each depends on its name only, so it is the
same on every machine."""

import base64

CRLF = b"\r\n"
MB = 1000 * 1000
WORDS = ("time year people way day man thing woman life child world school state family student "
         "group country problem hand part place case week company system program question work "
         "government number night point home water room mother area money story fact month lot "
         "right study book eye job word business issue side kind head house service friend father "
         "power hour game line end member law car city community name president team minute idea "
         "body information back parent face others level office door health person art war "
         "history party result change morning reason research girl guy moment air teacher force "
         "education").split()
ACCENTED = ["größe", "übersicht", "être", "señor", "façade", "naïve", "straße", "élève"]


class Random:
    """Pseudo-random numbers, the same for an equal seed (xorshift64)."""

    def __init__(self, seed):
        self.state = 88172645463325252
        for byte in seed.encode():
            self.state = (self.state * 1099511628211 + byte + 1) & 0xFFFFFFFFFFFFFFFF

    def next(self):
        x = self.state
        x ^= (x << 13) & 0xFFFFFFFFFFFFFFFF
        x ^= x >> 7
        x ^= (x << 17) & 0xFFFFFFFFFFFFFFFF
        self.state = x
        return x

    def below(self, limit):
        return (self.next() >> 11) % limit

    def word(self, words=None):
        return (words or WORDS)[self.below(len(words or WORDS))]

    def bytes(self, count):
        """Incompressible bytes: a block of a megabyte, repeated from different offsets."""
        block = b"".join(self.next().to_bytes(8, "little") for _ in range(min(count, 1 << 20) // 8 + 1))
        pieces, left, turn = [], count, 0
        while left > 0:
            pieces.append(block[turn % 4093:][:left])
            left -= len(pieces[-1])
            turn += 1
        return b"".join(pieces)


def prose(random, size, width=72):
    """Lines of words."""
    lines, line, total = [], "", 0
    while total < size:
        word = random.word()
        if len(line) + 1 + len(word) > width:
            lines.append(line)
            total += len(line) + 2
            line = word
        else:
            line = f"{line} {word}" if line else word
    return "\r\n".join(lines).encode() + CRLF


def header(seed, *more, recipients=1):
    """A header as in mail from a list or a person; `more` are additional fields."""
    random = Random("header" + seed)
    to = ",\r\n\t".join(f'"{random.word().title()} {random.word().title()} {i}" '
                         f"<user{i}@{random.word()}.example.net>" for i in range(recipients))
    subject = base64.b64encode(f"Größe und Übersicht: {random.word()}".encode()).decode()
    fields = [
        "Return-Path: <sender@mail.example.com>",
        "Received: from mx1.example.com (mx1.example.com [192.0.2.10])\r\n\tby mail.example.net "
        "(Postfix) with ESMTPS id 4A1B2C3D4E\r\n\tfor <recipient@example.net>; "
        "Mon, 12 Jan 2026 10:15:32 +0100 (CET)",
        "Received: from app7.internal (app7.internal [10.1.2.3])\r\n\tby mx1.example.com (Postfix) "
        "with ESMTP id 9F8E7D6C5B\r\n\tfor <recipient@example.net>; "
        "Mon, 12 Jan 2026 10:15:30 +0100 (CET)",
        "From: =?UTF-8?Q?J=C3=BCrgen_M=C3=BCller?= <sender@mail.example.com>",
        f"To: {to}",
        f"Subject: =?UTF-8?B?{subject}?= {seed}",
        "Date: Mon, 12 Jan 2026 10:15:29 +0100",
        f"Message-ID: <{random.next():016x}@mail.example.com>",
        "X-Mailer: generator 1.0",
        "MIME-Version: 1.0",
        *more,
    ]
    return "\r\n".join(fields).encode() + CRLF + CRLF


TEXT = ("Content-Type: text/plain; charset=utf-8", "Content-Transfer-Encoding: 7bit")


def multipart(seed, kind, parts):
    """A multipart. `parts` are pairs of header fields and body."""
    boundary = f"=_{seed}"
    pieces = [header(seed, f'Content-Type: multipart/{kind}; boundary="{boundary}"')]
    for fields, body in parts:
        pieces.append(f"--{boundary}\r\n{fields}\r\n\r\n".encode() + body)
    pieces.append(f"--{boundary}--\r\n".encode())
    return b"".join(pieces)


def quoted_printable(data):
    """Quoted-printable with soft line breaks at 76 characters."""
    lines = []
    for raw in data.split(CRLF):
        line, length = [], 0
        for i, byte in enumerate(raw):
            plain = (33 <= byte <= 126 and byte != 61) or (byte in (32, 9) and i + 1 < len(raw))
            token = bytes([byte]) if plain else b"=%02X" % byte
            if length + len(token) > 75:
                line.append(b"=\r\n")
                length = 0
            line.append(token)
            length += len(token)
        lines.append(b"".join(line))
    return CRLF.join(lines)


def base64_lines(data):
    encoded = base64.b64encode(data)
    return CRLF.join(encoded[i:i + 76] for i in range(0, len(encoded), 76)) + CRLF


def plain(seed, size):
    return header(seed, *TEXT) + prose(Random(seed), size - 1100)


def newsletter(seed, size):
    """Plain text and its HTML: a table with texts, links, pictures and styles."""
    random = Random(seed)
    html = ["<!DOCTYPE html><html><head><title>Newsletter</title>\r\n<style type=\"text/css\">\r\n"]
    html += [f".c{i} {{ color: #{random.below(1 << 24):06x}; font: {10 + random.below(8)}px/1.4 "
             "Arial, sans-serif; margin: 0 auto; }\r\n" for i in range(40)]
    html.append("</style></head><body>\r\n<table width=\"600\" cellpadding=\"0\">\r\n")
    while sum(map(len, html)) < size * 0.78:
        cell = []
        for _ in range(30):
            kind, word = random.below(20), random.word()
            cell.append({0: f"<a href=\"https://news.example.com/t/{random.below(1 << 32):08x}?id="
                            f"{random.below(9999)}&amp;u={random.below(99)}\">{word}</a>",
                         1: f"<b>{word}</b>",
                         2: f"&eacute;&nbsp;{word} &amp; résumé"}.get(kind, word))
        html.append(f"<tr><td class=\"c{random.below(40)}\" style=\"padding:4px\"><p>{' '.join(cell)}"
                    f"</p><br><img src=\"https://img.example.com/{random.below(1 << 32):08x}.gif\" "
                    f"alt=\"{random.word()}\"></td></tr>\r\n")
    html.append("</table></body></html>\r\n")
    coded = "; charset=UTF-8\r\nContent-Transfer-Encoding: quoted-printable"
    return multipart(seed, "alternative", [
        ("Content-Type: text/plain" + coded, quoted_printable(prose(random, size // 12)) + CRLF),
        ("Content-Type: text/html" + coded, quoted_printable("".join(html).encode()) + CRLF)])


def attachment(seed, encoded_size):
    data = Random(seed).bytes(encoded_size // 78 * 57)
    return multipart(seed, "mixed", [
        ("Content-Type: text/plain; charset=iso-8859-1\r\n"
         "Content-Transfer-Encoding: quoted-printable", b"Gr=FC=DFe, see the attachment.\r\n\r\n"),
        ("Content-Type: application/octet-stream; name=\"=?UTF-8?Q?=C3=9Cbersicht.bin?=\"\r\n"
         "Content-Transfer-Encoding: base64\r\n"
         "Content-Disposition: attachment; filename*=UTF-8''%C3%9Cbersicht.bin",
         base64_lines(data))])


def quoted_text(seed, size):
    """Text as in European languages: one of nine characters is encoded."""
    random = Random(seed)
    lines = []
    while sum(map(len, lines)) < 1 << 17:
        lines.append(" ".join(random.word(WORDS + ACCENTED * 6) for _ in range(60)))
    block = quoted_printable("\r\n".join(lines).encode() + CRLF)
    body = (block * (size // len(block) + 1))[:size]
    return header(seed, TEXT[0], "Content-Transfer-Encoding: quoted-printable") + \
        body[:body.rfind(CRLF)] + CRLF


def many_attachments(seed, count, each=2000):
    random = Random(seed)
    return multipart(seed, "mixed", [
        (f'Content-Type: image/png; name="picture-{i}.png"\r\nContent-Transfer-Encoding: base64\r\n'
         f'Content-Disposition: attachment; filename="picture-{i}.png"',
         base64_lines(random.bytes(each))) for i in range(count)])


def nested(seed, levels):
    lines = []
    for level in range(1, levels):
        lines += [f"--b{level - 1}", f'Content-Type: multipart/mixed; boundary="b{level}"', ""]
    lines += [f"--b{levels - 1}", TEXT[0], "", "At the bottom."]
    lines += [f"--b{level}--" for level in reversed(range(levels))]
    return header(seed, 'Content-Type: multipart/mixed; boundary="b0"') + \
        "\r\n".join(lines).encode() + CRLF


def many_fields(seed, count):
    random = Random(seed)
    fields = [f"X-Field-{i}: {random.word()} {random.word()}; value={random.below(1 << 32):08x}; "
              f"{random.word()}" for i in range(count)]
    return header(seed, *fields, TEXT[0]) + b"Body.\r\n"


def many_recipients(seed, count):
    return header(seed, TEXT[0], recipients=count) + b"Body.\r\n"


SHAPES = {
    "plain-2k": lambda name: plain(name, 2000),
    "newsletter-50k": lambda name: newsletter(name, 50000),
    "base64-1m": lambda name: attachment(name, MB),
    "base64-10m": lambda name: attachment(name, 10 * MB),
    "base64-100m": lambda name: attachment(name, 100 * MB),
    "quoted-printable-5m": lambda name: quoted_text(name, 5 * MB),
    "attachments-500": lambda name: many_attachments(name, 500),
    "nested-200": lambda name: nested(name, 200),
    "fields-2000": lambda name: many_fields(name, 2000),
    "recipients-1000": lambda name: many_recipients(name, 1000),
}


def make(name):
    """The message of this shape."""
    return SHAPES[name](name)
