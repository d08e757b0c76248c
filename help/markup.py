"""The little markup of the texts: paragraphs, lists, tables, code; and the colours of code.

Blocks are separated by empty lines: a paragraph, a list of lines beginning "- ", a table of lines
beginning "|" whose first row is its head, or code between lines of ``` as in Markdown. Inside a
text `code` is code, and [words](#anchor) a link. Code that names one of our classes or members,
`MimeBodyZQV` or `MimeBodyZQV.Parts`, becomes a link to it.
"""

import html
import re

from listing import Problem

INLINE = re.compile(r"`([^`]+)`|\[([^\]]+)\]\(#([^)\s]+)\)")
OURS = re.compile(r"Mime\w+ZQV(?:\.\w+)?")
WORDS = """and as boolean break byref call case catch continue dim do downto each else elseif end
exit false finally for function if in is loop me mod new next nil not of or private protected
property public raise return select self shared static step sub super then to true try until var
wend while with""".split()
TOKEN = re.compile(r"""(?P<comment>'.*|//.*)|(?P<string>"(?:[^"]|"")*")|(?P<number>\b\d+\b)"""
                   r"""|(?P<name>[A-Za-z_]\w*)|(?P<other>[^A-Za-z_0-9"'/]+|.)""")
MARKS = {"comment": "r", "string": "s", "number": "n", "word": "w", "class": "c"}


def blocks(text):
    """(kind, lines) of each block; kind is one of paragraph, list, table, code."""
    found, lines = [], iter(text.strip().splitlines())
    current = []
    for line in lines:
        if line.startswith("```"):
            found += [] if not current else [block(current)]
            found.append(("code", code_lines(lines)))
            current = []
        elif line.strip():
            current.append(line.strip())
        elif current:
            found.append(block(current))
            current = []
    return found + ([block(current)] if current else [])


def code_lines(lines):
    """The lines up to the closing fence."""
    found = []
    for line in lines:
        if line.startswith("```"):
            return found
        found.append(line)
    raise Problem("a block of code does not end")


def block(lines):
    kinds = {"- ": "list", "| ": "table"}
    return kinds.get(lines[0][:2], "paragraph"), lines


def items(lines):
    """The items of a list; a line that begins no item goes on with the last one."""
    found = []
    for line in lines:
        if line.startswith("- "):
            found.append(line[2:])
        else:
            found[-1] += " " + line
    return found


def cells(line):
    return [cell.strip() for cell in line.strip("|").split("|")]


class Html:
    """Turns texts into HTML, and refuses links that lead nowhere."""

    def __init__(self, anchors):
        self.anchors = anchors
        self.home = None  # the class whose section is written: its members need no class name

    def inline(self, text):
        """A text without blocks."""
        found, position = [], 0
        for match in INLINE.finditer(text):
            found.append(html.escape(text[position:match.start()], quote=False))
            found.append(self.piece(match))
            position = match.end()
        return "".join(found) + html.escape(text[position:], quote=False)

    def piece(self, match):
        code, words, anchor = match.groups()
        if words:
            return self.link(anchor, self.inline(words))
        if not OURS.fullmatch(code):
            return f"<code>{html.escape(code, quote=False)}</code>"
        kind, _, name = code.partition(".")
        if name and kind == self.home:
            return self.member(kind, name)
        return self.link(code, f"<code>{code}</code>")

    def member(self, kind, name):
        """A link to a member that shows its name alone."""
        return self.link(f"{kind}.{name}", f"<code>{name}</code>")

    def link(self, anchor, shown):
        if anchor not in self.anchors:
            raise Problem(f"a text links to #{anchor}, which is nowhere")
        return f'<a href="#{html.escape(anchor)}">{shown}</a>'

    def text(self, text):
        """A text of blocks."""
        makers = {"paragraph": self.paragraph, "list": self.list, "table": self.table,
                  "code": self.code}
        return "\n".join(makers[kind](lines) for kind, lines in blocks(text))

    def paragraph(self, lines):
        return f"<p>{self.inline(' '.join(lines))}</p>"

    def list(self, lines):
        rows = "\n".join(f"<li>{self.inline(item)}</li>" for item in items(lines))
        return f"<ul>\n{rows}\n</ul>"

    def table(self, lines):
        head, *rows = [[self.inline(cell) for cell in cells(line)] for line in lines]
        top = "".join(f'<th scope="col">{cell}</th>' for cell in head)
        body = "\n".join("<tr>" + "".join(f"<td>{cell}</td>" for cell in row) + "</tr>"
                         for row in rows)
        return ('<div class="wide" tabindex="0" role="group" aria-label="Table"><table>\n'
                f"<thead><tr>{top}</tr></thead>\n<tbody>\n{body}\n</tbody>\n</table></div>")

    def code(self, lines):
        return ('<pre tabindex="0" aria-label="Example"><code>'
                f"{coloured(chr(10).join(lines))}</code></pre>")


def coloured(code):
    """Xojo code as HTML with its comments, texts, numbers, words and our classes marked."""
    found = []
    for match in TOKEN.finditer(code):
        kind, text = match.lastgroup, html.escape(match[0], quote=False)
        if kind == "name":
            kind = "word" if match[0].lower() in WORDS else "class" if OURS.match(match[0]) else ""
        mark = MARKS.get(kind)
        found.append(f'<span class="{mark}">{text}</span>' if mark else text)
    return "".join(found)


def markdown(text):
    """A text of blocks as Markdown: names of ours become links, tables get their rule."""
    found = []
    for kind, lines in blocks(text):
        if kind == "code":
            found.append(fenced("\n".join(lines)))
        elif kind == "table":
            rows = [markdown_inline(line) for line in lines]
            rows.insert(1, "|" + "---|" * len(cells(lines[0])))
            found.append("\n".join(rows))
        else:
            found.append("\n".join(markdown_inline(line) for line in lines))
    return "\n\n".join(found)


def markdown_inline(text):
    return re.sub(r"(?<!\[)`(" + OURS.pattern + r")`(?!\])", r"[`\1`](#\1)", text)


def fenced(code):
    return f"```vb\n{code.strip()}\n```"
