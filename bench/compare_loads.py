"""The loads that bench/compare and bench/own_work measure: lists of messages, which are made when
they are missing."""

import pathlib

import messages

BUILD = pathlib.Path(__file__).resolve().parent.parent / "build" / "release"

# Small loads, for callgrind to count in seconds.
QUICK = [name for name in messages.SHAPES if name not in ("base64-10m", "base64-100m")]


def lists(shapes, mail=None):
    """The names of loads, and the paths of their lists. `mail` is an existing list."""
    folder = BUILD / "bench-messages"
    folder.mkdir(parents=True, exist_ok=True)
    if mail:
        yield "mail", pathlib.Path(mail)
    for name in shapes:
        message = folder / f"{name}.eml"
        if not message.exists():
            message.write_bytes(messages.make(name))
        path = folder / f"{name}.list"
        path.write_text(f"{message}\n", encoding="utf-8")
        yield name, path
