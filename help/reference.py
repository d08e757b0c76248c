"""The texts of the help, read from reference.toml and held against the registered classes."""

import tomllib

from listing import Problem

MEMBER_KEYS = {"gives", "nil", "raises", "note", "example"}
CLASS_KEYS = {"text", "members"}
GUIDE_KEYS = {"id", "title", "text"}
RECIPE_KEYS = GUIDE_KEYS | {"words"}
NEVER_NIL = {None, "Boolean", "Integer"}


def load(path):
    """The texts as they stand in the file: {"guides": [...], "recipes": [...],
    "classes": {...}}."""
    try:
        return tomllib.loads(path.read_text("utf-8"))
    except (OSError, UnicodeDecodeError, tomllib.TOMLDecodeError) as error:
        raise Problem(f"cannot read {path.name}: {error}") from error


def faults(texts, classes):
    """What is missing or stray, one text each."""
    chapters = {"guides", "recipes", "classes"}
    found = key_faults("the file", texts, chapters, chapters)
    for guide in texts.get("guides", []):
        found += key_faults(f"guide {guide.get('id')}", guide, GUIDE_KEYS, GUIDE_KEYS)
    for recipe in texts.get("recipes", []):
        found += key_faults(f"recipe {recipe.get('id')}", recipe, RECIPE_KEYS, RECIPE_KEYS)
    written = texts.get("classes", {})
    found += [f"no text for the class {name}" for name in classes if name not in written]
    for name, text in written.items():
        if name in classes:
            found += class_faults(classes[name], text)
        else:
            found.append(f"a text for a class that is not registered: {name}")
    return found


def class_faults(kind, text):
    """The same for one class."""
    found = key_faults(kind.name, text, CLASS_KEYS, {"text"})
    written = text.get("members", {})
    registered = {member.key: member for member in kind.members}
    found += [f"{kind.name}: no text for: {key}" for key in registered if key not in written]
    for key, member_text in written.items():
        if key in registered:
            found += member_faults(f"{kind.name}: {key}", registered[key], member_text)
        else:
            found.append(f"{kind.name}: a text for a member that is not registered: {key}")
    return found


def member_faults(place, member, text):
    """The same for one member."""
    needed = {"gives", "example"}
    if member.type not in NEVER_NIL:
        needed.add("nil")
    found = key_faults(place, text, MEMBER_KEYS, needed)
    if member.type in NEVER_NIL and "nil" in text:
        found.append(f"{place}: cannot be nil, but says when")
    for row in text.get("raises", []):
        if len(row) != 3 or not all(isinstance(cell, str) and cell for cell in row):
            found.append(f"{place}: raises needs rows of exception, message and condition")
    return found


def key_faults(place, table, known, needed):
    """Keys that nobody reads, and keys that are missing or empty."""
    found = [f"{place}: unknown key {key}" for key in table if key not in known]
    return found + [f"{place}: needs {key}" for key in sorted(needed) if not table.get(key)]


def check(texts, classes):
    """Stops with every fault there is."""
    found = faults(texts, classes)
    if found:
        raise Problem("the texts do not fit the registered classes:\n  " + "\n  ".join(found)
                      + skeletons(texts, classes))


def skeletons(texts, classes):
    """What to paste into the file for each member without a text; empty for none."""
    found = []
    for kind in classes.values():
        written = texts.get("classes", {}).get(kind.name, {}).get("members", {})
        for member in kind.members:
            if member.key not in written:
                found += ["", f'[classes.{kind.name}.members."{member.key}"]', 'gives = ""']
                found += [] if member.type in NEVER_NIL else ['nil = ""']
                found += ["example = '''", "'''"]
    return "\nPaste into reference.toml and fill in:\n" + "\n".join(found) if found else ""
