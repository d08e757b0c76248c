"""The help as one Markdown file, for reading in a repository."""

import markup
from page import label, nil_word

HEAD = """# Reference

What every class and member of the plug-in does, with examples. This file is made by
`help/make_docs.py` from `help/reference.toml`: edit the texts there.
"""


def write(book):
    """The whole file, ending in one line break."""
    parts = [HEAD.strip(), contents(book)]
    for guide in book.guides:
        parts += [heading(2, guide["id"], guide["title"]), markup.markdown(guide["text"])]
    parts.append("## Cookbook")
    for recipe in book.recipes:
        parts += [heading(3, recipe["id"], recipe["title"]), markup.markdown(recipe["text"])]
    for kind in book.classes:
        parts += class_parts(book, kind)
    return "\n\n".join(filter(None, parts)) + "\n"


def contents(book):
    rows = [f"- [{guide['title']}](#{guide['id']})" for guide in book.guides]
    rows.append("- Cookbook")
    rows += [f"  - [{recipe['title']}](#{recipe['id']})" for recipe in book.recipes]
    rows += [f"- [`{kind.name}`](#{kind.name})" for kind in book.classes]
    return "\n".join(rows)


def heading(level, anchor, words):
    return f'<a id="{anchor}"></a>\n\n{"#" * level} {words}'


def class_parts(book, kind):
    anchors, aliases = kind.anchors(), book.aliases(kind)
    parts = [heading(2, kind.name, kind.name)]
    if kind.superclass:
        parts.append(f"Inherits from [`{kind.superclass}`](#{kind.superclass}).")
    parts.append(markup.markdown(book.texts[kind.name]["text"]))
    for title, members in book.groups(kind):
        parts.append(f"### {title}")
        for member in members:
            alias = aliases.get(member.key)
            parts.append(f'<a id="{alias}"></a>' if alias else "")
            parts += member_parts(anchors[member.key], member, book.text(kind, member))
    return parts


def member_parts(anchor, member, text):
    declaration = "".join(piece for piece, _ in member.declaration())
    access = "" if member.is_method else " (read and write)" if member.writable else " (read-only)"
    return [heading(4, anchor, label(member)), f"`{declaration}`{access}",
            markup.markdown(text["gives"]), facts(member, text),
            markup.markdown(text.get("note", "")), markup.fenced(text["example"])]


def facts(member, text):
    """When a member is nil, and what it raises."""
    rows = []
    if "nil" in text:
        rows.append(f"- {nil_word(member)}: {markup.markdown_inline(text['nil'])}")
    rows += [f"- Raises `{name}` `{message}` {markup.markdown_inline(when)}"
             for name, message, when in text.get("raises", [])]
    return "\n".join(rows)
