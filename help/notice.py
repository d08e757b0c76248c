"""The third-party notice, from its Markdown file: paragraphs, one level of heading, and quotes."""

import html
import re

from listing import Problem

LINK = re.compile(r"\[([^\]]+)\]\([^)]*\)")


def paragraphs(text):
    """Runs of lines between empty ones; an empty line of a quote ends a paragraph, too."""
    found = [[]]
    for line in text.splitlines():
        if line.strip(" >"):
            found[-1].append(line)
        elif found[-1]:
            found.append([])
    return [lines for lines in found if lines]


def as_html(text):
    """All below the file's title. Links lead to files that readers of the page do not have."""
    found, quoted = [], False
    for lines in paragraphs(text):
        if lines[0].startswith("# "):
            continue
        if lines[0].startswith("## "):
            found.append(f"<h3>{shown(lines[0][3:])}</h3>")
        elif lines[0].startswith(">"):
            words = " ".join(line.lstrip("> ") for line in lines)
            quote = f"<p>{shown(words)}</p>\n</blockquote>"
            if quoted:
                found[-1] = found[-1].removesuffix("</blockquote>") + quote
            else:
                found.append(f"<blockquote>\n{quote}")
        else:
            found.append(f"<p>{shown(' '.join(lines))}</p>")
        quoted = lines[0].startswith(">")
    if not any("Copyright" in paragraph for paragraph in found):
        raise Problem("the notice names no copyright")
    return "\n".join(found)


def shown(text):
    return html.escape(LINK.sub(r"\1", text), quote=False)
