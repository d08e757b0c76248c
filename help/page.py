"""The help as one HTML page that needs nothing else."""

import base64
import hashlib
import html
import pathlib
import re

import markup
import notice

FOLDER = pathlib.Path(__file__).parent
KINDS = [
    ("Constructors", lambda member: member.is_constructor and not member.private),
    ("Properties", lambda member: not member.is_method and not member.shared),
    ("Methods", lambda member: member.is_method and not member.shared
     and not member.is_constructor),
    ("Shared properties", lambda member: not member.is_method and member.shared),
    ("Shared methods", lambda member: member.is_method and member.shared),
    ("Private constructors", lambda member: member.is_constructor and member.private),
]
NOTICE = "third-party-notice"


class Book:
    """What is written: the registered classes, in the order of their texts, and the texts."""

    def __init__(self, classes, texts, version):
        self.classes = [classes[name] for name in texts["classes"]]
        self.guides = texts["guides"]
        self.recipes = texts["recipes"]
        self.texts = texts["classes"]
        self.version = version

    def groups(self, kind):
        """(title, members in the order of their texts) of a class, without empty groups."""
        order = list(self.texts[kind.name].get("members", {}))
        members = sorted(kind.members, key=lambda member: order.index(member.key))
        for title, belongs in KINDS:
            chosen = [member for member in members if belongs(member)]
            if chosen:
                yield title, chosen

    def text(self, kind, member):
        return self.texts[kind.name]["members"][member.key]

    def aliases(self, kind):
        """The plain anchor of each overloaded name, by the first member that has it."""
        taken = set(kind.anchors().values())
        found = {}
        for _, members in self.groups(kind):
            for member in members:
                plain = f"{kind.name}.{member.name}"
                if plain not in taken and plain not in found.values():
                    found[member.key] = plain
        return found

    def anchors(self):
        found = {section["id"] for section in [*self.guides, *self.recipes]} | {NOTICE}
        for kind in self.classes:
            found |= {kind.name, *kind.anchors().values(), *self.aliases(kind).values()}
        return found


def label(member):
    """A member's name in headings: a method has its parameters, a constructor their types."""
    if not member.is_method:
        return member.name
    shown = [kind if member.is_constructor else name for name, kind in member.parameters]
    return f"{member.name}({', '.join(shown)})"


def breakable(words):
    """A long name may be broken before a capital letter."""
    return re.sub(r"(?<=[a-z])(?=[A-Z])", "<wbr>", words) if len(words) > 24 else words


def nil_word(member):
    """A String that is nil is an empty one to the application."""
    return "Empty" if member.type == "String" else "Nil"


class Page:
    """Writes a book as HTML."""

    def __init__(self, book, notice_text):
        self.book = book
        self.notice_text = notice_text
        self.html = markup.Html(book.anchors())

    def write(self):
        style = (FOLDER / "page.css").read_text("utf-8")
        script = (FOLDER / "page.js").read_text("utf-8")
        version = html.escape(self.book.version)
        policy = (f"default-src 'none'; style-src {source_hash(style)}; "
                  f"script-src {source_hash(script)}")
        template = (FOLDER / "page.html").read_text("utf-8")
        parts = {"policy": policy, "style": style, "script": script, "version": version,
                 "contents": self.contents(), "guides": self.guides(), "classes": self.classes(),
                 "notice": self.notice()}
        for name, part in parts.items():
            template = template.replace("{{" + name + "}}", part)
        return template

    def contents(self):
        """The table of contents."""
        rows = []
        for part, sections in (("Guide", self.book.guides), ("Cookbook", self.book.recipes)):
            rows.append(f'<p class="part">{part}</p>\n<ul>')
            rows += [f'<li data-for="{section["id"]}"><a href="#{section["id"]}">'
                     f'{html.escape(section["title"])}</a></li>' for section in sections]
            rows.append("</ul>")
        rows.append('<p class="part">Classes</p>')
        rows += [self.class_contents(kind) for kind in self.book.classes]
        rows.append(f'<ul><li data-for="{NOTICE}"><a href="#{NOTICE}">Third-party notice</a></li>'
                    "</ul>")
        return "\n".join(rows)

    def class_contents(self, kind):
        anchors = kind.anchors()
        rows = [f'<details data-for="{kind.name}"><summary><a href="#{kind.name}">{kind.name}</a>'
                "</summary>\n<ul>"]
        for _, members in self.book.groups(kind):
            rows += [f'<li data-for="{anchors[member.key]}"><a href="#{anchors[member.key]}">'
                     f"{breakable(label(member))}</a></li>" for member in members]
        return "\n".join(rows) + "\n</ul></details>"

    def guides(self):
        return "\n".join(self.guide(section)
                         for section in [*self.book.guides, *self.book.recipes])

    def guide(self, section):
        """A guide or a recipe; the search finds the latter by its words, too."""
        anchor, title = section["id"], html.escape(section["title"])
        name = " ".join(filter(None, [title, html.escape(section.get("words", ""))]))
        return (f'<section class="guide" id="{anchor}" data-name="{name}">'
                f"\n<h2>{title}{self.mark(anchor)}</h2>\n"
                f'{self.html.text(section["text"])}\n</section>')

    def mark(self, anchor):
        """The sign beside a heading that links to it."""
        return (f'<a class="mark" href="#{anchor}" aria-label="Link to this section">'
                '<span aria-hidden="true">#</span></a>')

    def classes(self):
        return "\n".join(self.class_section(kind) for kind in self.book.classes)

    def class_section(self, kind):
        self.html.home = kind.name
        rows = [f'<section class="class" id="{kind.name}" data-name="{kind.name}">',
                f"<h2>{kind.name}{self.mark(kind.name)}</h2>", '<div class="about">',
                self.inheritance(kind), self.html.text(self.book.texts[kind.name]["text"]),
                "</div>"]
        for title, members in self.book.groups(kind):
            rows.append(f'<div class="group">\n<h3>{title}</h3>')
            rows += [self.member(kind, member) for member in members]
            rows.append("</div>")
        self.html.home = None
        return "\n".join(filter(None, rows)) + "\n</section>"

    def inheritance(self, kind):
        """Where a class of ours has its other members from, or hands its own on to."""
        if kind.superclass:
            names = ", ".join(self.html.member(kind.superclass, member.name)
                              for other in self.book.classes if other.name == kind.superclass
                              for member in other.members if not member.is_constructor)
            return (f'<p class="super">Inherits from {self.html.inline(f"`{kind.superclass}`")}, '
                    f"so it has these too: {names}.</p>")
        heirs = [other.name for other in self.book.classes if other.superclass == kind.name]
        if not heirs:
            return ""
        return f'<p class="super">Parent of {self.html.inline(f"`{heirs[0]}`")}.</p>'

    def member(self, kind, member):
        anchor = kind.anchors()[member.key]
        alias = self.book.aliases(kind).get(member.key)
        text = self.book.text(kind, member)
        rows = [f'<article class="member" id="{anchor}" data-key="{html.escape(member.key)}" '
                f'data-class="{kind.name}" data-name="{kind.name}.{member.name}">',
                f'<span id="{alias}"></span>' if alias else "",
                f"<h4>{label(member)}{badges(member)}{self.mark(anchor)}</h4>",
                f'<p class="declaration"><code>{self.declaration(member)}</code></p>',
                self.html.text(text["gives"]), self.facts(member, text),
                self.html.text(text.get("note", "")),
                self.html.code(text["example"].strip().splitlines()), "</article>"]
        return "\n".join(filter(None, rows))

    def declaration(self, member):
        """Types of ours link to their sections; an array's brackets stay outside the link."""
        found = []
        for text, is_type in member.declaration():
            base = text.removesuffix("()")
            if is_type and base in self.html.anchors:
                found.append(self.html.link(base, base) + text[len(base):])
            else:
                found.append(html.escape(text))
        return "".join(found)

    def facts(self, member, text):
        """When a member is nil, and what it raises."""
        rows = []
        if "nil" in text:
            rows.append(f'<dt>{nil_word(member)}</dt><dd>{self.html.inline(text["nil"])}</dd>')
        if text.get("raises"):
            raised = "".join(
                f"<li><code>{html.escape(name)}</code> "
                f'<q class="message">{html.escape(message, quote=False)}</q> '
                f'<span class="when">{self.html.inline(when)}</span></li>'
                for name, message, when in text["raises"])
            rows.append(f"<dt>Raises</dt><dd><ul>{raised}</ul></dd>")
        return "<dl>\n" + "\n".join(rows) + "\n</dl>" if rows else ""

    def notice(self):
        return (f'<section class="guide" id="{NOTICE}" data-name="Third-party notice">\n'
                f"<h2>Third-party notice{self.mark(NOTICE)}</h2>\n"
                f"{notice.as_html(self.notice_text)}\n</section>")


def badges(member):
    words = []
    if not member.is_method:
        words.append("read and write" if member.writable else "read-only")
    if member.private:
        words.append("private")
    if member.hidden:
        words.append("hidden in the editor")
    return "".join(f' <span class="badge">{word}</span>' for word in words)


def source_hash(text):
    """What allows exactly this inline style or script, and no other."""
    digest = hashlib.sha256(text.encode("utf-8")).digest()
    return f"'sha256-{base64.b64encode(digest).decode('ascii')}'"
