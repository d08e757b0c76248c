#!/usr/bin/env python3
"""Checks projects in the text format of Xojo, which are written by hand in this repository.

  check_project.py FOLDER...   each folder holds one project

Reported are: items of an unknown kind, with a bad or repeated identifier, or without their parent
or file; settings that are missing or repeated; tags that do not match; lines whose indentation
differs from Xojo's; flags that contradict the declaration; files that are not UTF-8 with line
feeds; resources that are not the twelve bytes of a project without an icon; files that the project
does not name.
"""

import pathlib
import re
import sys

KINDS = {"Class", "Module", "Interface", "Folder", "BuildSteps", "Window", "DesktopWindow",
         "MenuBar", "DesktopMenuBar", "WebView", "WebSession", "WebPage", "MultiImage"}
HEAD = ["Type", "RBProjectVersion", "MinIDEVersion"]
SETTINGS = HEAD + [
    "MajorVersion", "MinorVersion", "SubVersion", "NonRelease", "Release", "InfoVersion",
    "LongVersion", "ShortVersion", "WinCompanyName", "WinInternalName", "WinProductName",
    "WinFileDescription", "AutoIncrementVersionInformation", "BuildFlags", "BuildLanguage",
    "DebugLanguage", "Region", "WindowsName", "MacCarbonMachName", "LinuxX86Name", "MacCreator",
    "MDI", "MDICaption", "DefaultEncoding", "AppIcon", "OSXBundleID", "DebuggerCommandLine",
    "UseGDIPlus", "UseBuildsFolder", "CopyRedistNextToWindowsEXE", "IncludePDB", "IsWebProject",
    "LinuxBuildArchitecture", "MacBuildArchitecture", "WindowsBuildArchitecture",
    "OptimizationLevel", "WindowsVersions", "WindowsRunAs"]
NO_PARENT = "&h" + 16 * "0"
IDENTIFIER = re.compile(r"&h[0-9A-F]{16}")
EMPTY_RESOURCES = b"ICNS\0\0\0\x08\0\0\0\0"
ROOTS = {"Class", "Module", "Interface"}
CODE_TAGS = {"Method", "Event", "Getter", "Setter"}
OTHER_TAGS = {"Property", "ComputedProperty", "Constant", "Note", "Enum", "ViewBehavior",
              "ViewProperty", "EnumValues"}
NESTED = {"Getter": "ComputedProperty", "Setter": "ComputedProperty",
          "ViewProperty": "ViewBehavior", "EnumValues": "ViewProperty"}
SCOPES = {"&h0": "", "&h1": "Protected", "&h21": "Private"}
DECLARED = re.compile(r"(?:(Private|Protected|Global) )?(?:Shared )?(Function|Sub|Get|Set)\b")


class Faults:
    """Collects the faults, with file and line."""

    def __init__(self):
        self.texts = []

    def add(self, path, line, text):
        self.texts.append(f"{path}:{line}: {text}")


def read_lines(path, faults):
    """The lines of a text file. Reports faults in its bytes."""
    data = path.read_bytes()
    if data.startswith(b"\xef\xbb\xbf"):
        faults.add(path, 1, "begins with a byte-order mark")
        data = data[3:]
    for number, line in enumerate(data.split(b"\n"), 1):
        if b"\r" in line:
            faults.add(path, number, "has a carriage return; lines end in a line feed alone")
            break
    if not data.endswith(b"\n"):
        faults.add(path, data.count(b"\n") + 1, "the last line has no line feed")
    try:
        text = data.decode("utf-8")
    except UnicodeDecodeError as error:
        faults.add(path, data[:error.start].count(b"\n") + 1, "is no UTF-8")
        text = data.decode("utf-8", "replace")
    return text.replace("\r\n", "\n").removesuffix("\n").split("\n")


# The project file.


class Item:
    """One line of the project: KIND=NAME;PATH;ID;PARENT;false"""

    def __init__(self, number, kind, fields):
        self.number, self.kind = number, kind
        self.name, self.path, self.id, self.parent, self.last = fields


def read_project(path, faults):
    """The items and the settings of a project file; settings with their lines."""
    items, settings = [], {}
    for number, line in enumerate(read_lines(path, faults), 1):
        key, equals, value = line.partition("=")
        fields = value.split(";")
        if not equals:
            faults.add(path, number, "is neither an item nor a setting")
        elif key in KINDS or len(fields) == 5:
            if key not in KINDS:
                faults.add(path, number, f"items of the kind {key} are not known")
            if len(fields) != 5:
                faults.add(path, number, f"an item has 5 fields, and this one {len(fields)}")
                continue
            items.append(Item(number, key, fields))
        elif key in settings:
            faults.add(path, number, f"{key} is set a second time")
        else:
            settings[key] = (number, value)
    return items, settings


def check_settings(path, settings, faults):
    for name in SETTINGS:
        if name not in settings:
            faults.add(path, 1, f"the setting {name} is missing")
    if list(settings)[:len(HEAD)] != HEAD:
        faults.add(path, 1, f"does not begin with {', '.join(HEAD)}")
    number, version = settings.get("RBProjectVersion", (1, "2021.03"))
    if not re.fullmatch(r"20\d\d\.(0[1-9]|1\d)\d?", version):
        faults.add(path, number, f"{version} is no version: year, dot, release in two digits")


def check_items(path, items, faults):
    known = {item.id: item for item in items}
    seen = set()
    for item in items:
        if not IDENTIFIER.fullmatch(item.id) or item.id == NO_PARENT:
            faults.add(path, item.number, f"{item.id} is no identifier: &h and 16 digits")
        if item.id in seen:
            faults.add(path, item.number, f"the identifier {item.id} is taken")
        seen.add(item.id)
        parent = known.get(item.parent)
        if parent is None and item.parent != NO_PARENT:
            faults.add(path, item.number, f"its parent {item.parent} does not exist")
        elif parent and parent.kind not in ("Folder", "Module"):
            faults.add(path, item.number, f"its parent is a {parent.kind}, and can hold nothing")
        if item.last != "false":
            faults.add(path, item.number, f"ends in {item.last} instead of false")
        check_file_of(path, item, faults)
    for kind, name in (("Class", "App"), ("BuildSteps", "Build Automation")):
        if not any((item.kind, item.name) == (kind, name) for item in items):
            faults.add(path, 1, f"has no item {kind}={name}")


def check_file_of(path, item, faults):
    """The file or folder that an item names."""
    file = path.parent / item.path
    if item.kind == "Folder":
        if not file.is_dir():
            faults.add(path, item.number, f"there is no folder {item.path}")
    elif not file.is_file():
        faults.add(path, item.number, f"there is no file {item.path}")
    elif item.kind in ROOTS:
        check_code(file, item, faults)
    elif item.kind == "BuildSteps":
        check_build_steps(file, faults)


def check_resources(path, settings, faults):
    """Checks the settings and returns the name of the resources file."""
    number, value = settings.get("AppIcon", (1, ""))
    name = value.split(";")[0]
    file = path.parent / name
    if not name or not file.is_file():
        faults.add(path, number, f"there is no resources file '{name}'")
    elif file.read_bytes() != EMPTY_RESOURCES:
        faults.add(file, 1, "is not the 12 bytes of resources without an icon")
    return name


def check_strangers(path, items, resources, faults):
    """Reports files in the folder that the project does not name."""
    named = {(path.parent / item.path).resolve() for item in items}
    named |= {path.resolve(), (path.parent / resources).resolve()}
    for file in sorted(path.parent.rglob("*")):
        if file.is_file() and file.resolve() not in named:
            faults.add(file, 1, "the project does not name this file")


# Files of code.


class Code:
    """Parses a file of code line by line."""

    def __init__(self, path, faults):
        self.path, self.faults = path, faults
        self.number = 0
        self.open = []  # tags without their end so far: name, line
        self.flags = ""
        self.declared = ""  # Function or Sub, while its body is parsed
        self.views = 0

    def fault(self, text):
        self.faults.add(self.path, self.number, text)

    @property
    def inner(self):
        return self.open[-1][0] if self.open else ""

    def line(self, text):
        self.number += 1
        tag = re.fullmatch(r"(\s*)#tag (End)?([A-Z]\w*)(.*)", text)
        if tag:
            self.tag(tag[1], bool(tag[2]), tag[3], tag[4])
        elif text.lstrip().startswith("#tag"):
            self.fault("is no tag")
        elif self.inner in CODE_TAGS:
            self.code(text)
        elif self.inner in ROOTS or not self.open:
            self.root_line(text)
        else:
            self.member_line(text)

    def tag(self, indent, is_end, name, rest):
        """Checks indentation: top-level tags have none, members have one tab, their contents two or
        more."""
        if is_end:
            self.end_tag(indent, name)
            return
        depth = len(self.open)
        if name not in ROOTS | CODE_TAGS | OTHER_TAGS:
            self.fault(f"the tag {name} is not known")
        if indent != "\t" * depth:
            self.fault(f"the tag {name} is not indented by {depth} tabs")
        if not self.belongs(name):
            self.fault(f"the tag {name} stands in {self.inner or 'nothing'}")
        self.open.append((name, self.number))
        self.flags = (re.search(r"Flags = (&h\w+)", rest) or ["", ""])[1]
        self.declared = ""
        self.views += name == "ViewBehavior"

    def belongs(self, name):
        """Checks whether a tag may begin here."""
        if name in NESTED:
            return self.inner == NESTED[name]
        return not self.open if name in ROOTS else self.inner in ROOTS

    def end_tag(self, indent, name):
        if self.inner != name:
            self.fault(f"End{name} ends no {name}; open is {self.inner or 'nothing'}")
            return
        self.open.pop()
        if indent != "\t" * len(self.open):
            self.fault(f"the tag End{name} is not indented by {len(self.open)} tabs")
        if self.declared:
            self.fault(f"the body of this {name} has no End {self.declared}")
        self.declared = ""

    def root_line(self, text):
        if text.strip() and text[0].isspace():
            self.fault("stands outside of all members, and is indented")
        if not self.open and text:
            self.fault("stands outside of the class")

    def member_line(self, text):
        """Checks declarations of properties, and lines of notes and enumerations."""
        if not text.startswith("\t\t"):
            self.fault("is not indented by two tabs")
        if self.inner == "Property":
            self.check_scope(text.strip())

    def code(self, text):
        depth = "\t" * (len(self.open) if self.inner in NESTED else 2)
        if not self.declared:
            self.declaration(text, depth)
        elif text == f"{depth}End {self.declared}":
            self.declared = ""
            self.flags = "ended"
        elif not re.fullmatch(rf"{depth}  (  )*(\S.*)?", text):
            self.fault("code is indented by two tabs, two blanks, and pairs of blanks")
        elif text.strip() and text != text.rstrip():
            self.fault("has blanks at its end")
        elif not text.strip() and text != depth + "  ":
            self.fault("an empty line of code has two tabs and two blanks")

    def declaration(self, text, depth):
        match = DECLARED.match(text.removeprefix(depth)) if text.startswith(depth) else None
        if self.flags == "ended":
            self.fault("stands behind the end of the method")
        elif not match:
            self.fault("is no declaration at two tabs")
        else:
            self.declared = match[2]
            if self.inner == "Method":
                self.check_scope(text.strip())

    def check_scope(self, text):
        """Checks that the flags have the scope of the declaration."""
        words = text.split(" ")
        written = words[0] if words[0] in ("Private", "Protected") else ""
        if self.flags not in SCOPES:
            self.fault(f"the flags '{self.flags}' are not known")
        elif SCOPES[self.flags] != written:
            self.fault(f"the flags {self.flags} say {SCOPES[self.flags] or 'public'}")

    def finish(self):
        for name, number in self.open:
            self.faults.add(self.path, number, f"the tag {name} has no end")
        if not self.views:
            self.faults.add(self.path, 1, "has no ViewBehavior block")


def check_code(path, item, faults):
    """Checks a class, module or interface."""
    lines = read_lines(path, faults)
    code = Code(path, faults)
    for line in lines:
        code.line(line)
    code.finish()
    kind = item.kind
    frame = [f"#tag {kind}", f"Protected {kind} {item.name}"]
    for number, (line, expected) in enumerate(zip(lines, frame), 1):
        if line != expected:
            faults.add(path, number, f"is '{line}' instead of '{expected}'")
    end = ["\t#tag EndViewBehavior", f"End {kind}", f"#tag End{kind}"]
    if lines[-3:] != end:
        faults.add(path, len(lines), f"does not end in EndViewBehavior, End {kind}, End{kind}")


def check_build_steps(path, faults):
    """Checks build steps: blocks of Begin and End, with three tabs and one more for each level."""
    lines = read_lines(path, faults)
    if (lines[0], lines[-1]) != ("#tag BuildAutomation", "#tag EndBuildAutomation"):
        faults.add(path, 1, "is not framed by the tags of BuildAutomation")
    opened = []
    for number, line in enumerate(lines[1:-1], 2):
        word = line.split()[:1]
        if word == ["End"] and opened:
            opened.pop()
        elif word == ["End"]:
            faults.add(path, number, "this End ends nothing")
        if not re.match("\t" * (3 + len(opened)) + r"[^\t]", line):
            faults.add(path, number, f"is not indented by {3 + len(opened)} tabs")
        if word == ["Begin"]:
            opened.append(number)
    for number in opened:
        faults.add(path, number, "this Begin has no End")


def check(folder, faults):
    projects = sorted(folder.glob("*.xojo_project"))
    if len(projects) != 1:
        faults.add(folder, 1, f"holds {len(projects)} project files instead of one")
        return
    path = projects[0]
    items, settings = read_project(path, faults)
    check_settings(path, settings, faults)
    check_items(path, items, faults)
    resources = check_resources(path, settings, faults)
    check_strangers(path, items, resources, faults)


def main():
    if len(sys.argv) < 2 or sys.argv[1].startswith("-"):
        print(__doc__, file=sys.stderr)
        return 2
    faults = Faults()
    for name in sys.argv[1:]:
        check(pathlib.Path(name), faults)
    for text in faults.texts:
        print(text)
    return 1 if faults.texts else 0


if __name__ == "__main__":
    sys.exit(main())
