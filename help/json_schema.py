"""The JSON schema of what the program prints: schema_template.json, completed by what the classes
give.

The template holds all that is no class. In its $defs, the properties of an object may have the key
"...", whose value names a class: the keys of that class take its place. Every other class gets a
definition of its own. All keys of a class are required.
"""

import json
import re

import listing

WIDTH = 100
COUNT = "Count"  # the one whole number that cannot be negative
TEXT, DATE = {"$ref": "#/$defs/text"}, {"$ref": "#/$defs/date"}
BASIC = {"String": TEXT, "Date": DATE, "Boolean": {"type": "boolean"}, "Integer": {"type": "integer"}}
LINK = re.compile(r"\[([^\]]+)\]\([^)]*\)")


def write(template, classes, texts):
    """The whole file. template: as it was read; classes: those of `zqv classes --json`; texts: the
    classes of reference.toml."""
    schema = json.loads(template)
    names = {kind["name"]: definition_name(kind["name"]) for kind in classes}
    definitions = {kind["name"]: definition(kind, names, texts) for kind in classes}
    for fixed in schema["$defs"].values():
        if "..." in fixed.get("properties", {}):
            extend(fixed, definitions)
    for name, made in definitions.items():
        if schema["$defs"].setdefault(names[name], made) is not made:
            raise listing.Problem(f"the template has {names[name]} without the keys of {name}")
    return shown(schema) + "\n"


def extend(fixed, definitions):
    """Puts the keys of a class into a definition of the template, and takes the class out."""
    properties = {}
    for key, value in fixed["properties"].items():
        if key != "...":
            properties[key] = value
        elif value in definitions:
            properties |= definitions.pop(value)["properties"]
        else:
            raise listing.Problem(f"the template names a class that is not registered: {value}")
    others = {key: value for key, value in fixed.items() if key != "properties"}
    fixed.clear()
    fixed |= whole(properties) | others


def definition(kind, names, texts):
    """The objects of one class."""
    return whole({key: described(kind["name"], key, member, names, texts)
                  for key, member in kind["json_keys"].items()})


def whole(properties):
    return {"type": "object", "properties": properties, "required": list(properties),
            "additionalProperties": False}


def described(class_name, key, member, names, texts):
    """One key: what it holds, and what the reference says about its member."""
    match = listing.DECLARATION.fullmatch(member)
    if not match:
        raise listing.Problem(f"{class_name}: {key}: not a declaration: {member}")
    name, _, kind = match.groups()
    is_list = kind.endswith("()")
    held = value_of(name, listing.spelled(kind.removesuffix("()")), is_list, names)
    text = texts[class_name]["members"][f"{'method' if is_list else 'property'} {member}"]["gives"]
    return {**held, "description": plain(text)}


def value_of(name, kind, is_list, names):
    """What a member of a type holds."""
    if kind in names:
        held = {"$ref": f"#/$defs/{names[kind]}"}
        return {"type": "array", "items": held} if is_list else {"anyOf": [held, {"type": "null"}]}
    if kind not in BASIC:
        raise listing.Problem(f"{name}: no form in JSON for the type {kind}")
    return {**BASIC[kind], "minimum": 0} if name == COUNT else BASIC[kind]


def definition_name(class_name):
    """mailbox_list for MimeMailboxListZQV."""
    if class_name == "MimeEmailZQV":
        return "message"
    words = re.findall(r"[A-Z][a-z]*", class_name.removeprefix("Mime").removesuffix("ZQV"))
    return "_".join(words).lower()


def plain(text):
    """The first paragraph of a text, without links."""
    return LINK.sub(r"\1", " ".join(text.strip().split("\n\n")[0].split()))


def shown(value, indent="", used=0):
    """JSON whose short values take one line. used: what stands before the value in its line."""
    line = json.dumps(value, ensure_ascii=False)
    if not isinstance(value, (dict, list)) or not value or len(indent) + used + len(line) < WIDTH:
        return line
    inner = indent + "  "
    if isinstance(value, list):
        items = [shown(item, inner) for item in value]
    else:
        items = [f"{json.dumps(key)}: {shown(item, inner, len(key) + 4)}"
                 for key, item in value.items()]
    opening, closing = "[]" if isinstance(value, list) else "{}"
    return opening + "\n" + ",\n".join(inner + item for item in items) + "\n" + indent + closing
