#!/usr/bin/env python3
"""The classes that a host must get, as tables, and the listings made from these tables.

The tables are written by hand, one row for each member that docs/reference.md documents, and do not
use the library's code. For each host version in HOSTS there is a file classes-<version>.txt, to
which the stand-in host's listing must be equal.

Usage: expected_classes.py FOLDER            writes the listings into FOLDER
       expected_classes.py --check FOLDER    exit status 1 when one of them differs or is missing
"""

import pathlib
import sys

# File name, host version (None: the host reports none), definition version.
HOSTS = (
    ("none", None, 9),
    ("2009", 2009, 9),
    ("2012.5", 2012.5, 10),
    ("2013.035", 2013.035, 12),
    ("2013.04", 2013.04, 13),
    ("2019.1", 2019.1, 13),
    ("2020.02", 2020.02, 13),
    ("2024.1", 2024.1, 13),
)
FIRST_WITH_TARGETS = 2020.02  # in older hosts the dates have the flags without targets
PROPERTY, DATE, OLD_DATE, HIDDEN = 0x6, 0x30A, 0x6, 0x26
METHOD, PRIVATE, CLASS = 0x4, 0x84, 0x4

TEXT_CONSTRUCTOR = "Constructor(TextToParse as String)"
NO_CONSTRUCTOR = "-Constructor"  # the dash means private

# A record is its fields in order, of eight bytes each. A property is "Name Type", and the record's
# field from which it is read, or "()" when it has a getter function.
CLASSES = (
    {
        "name": "MimeBodyZQV",
        "record": "preamble epilogue StringValue parts",
        "properties": ("PartsVariant Variant ()", "StringValue String StringValue",
                       "preamble String preamble", "epilogue String epilogue"),
        "methods": ("Parts(index as Integer) as MimeEntityZQV", "Parts as MimeEntityZQV()",
                    NO_CONSTRUCTOR),
    },
    {
        "name": "MimeHeaderZQV",
        "record": "MimeVersion ContentType ContentTransferEncoding "
                  "ContentTransferEncodingMechanism ContentDisposition ContentDescription "
                  "contentId sender from too subject subjectDecoded replyto cc bcc messageid "
                  "fields",
        "properties": ("MimeVersion String MimeVersion", "ContentType String ContentType",
                       "ContentTransferEncoding String ContentTransferEncoding",
                       "ContentTransferEncodingMechanism String ContentTransferEncodingMechanism",
                       "ContentDisposition String ContentDisposition",
                       "ContentDescription String ContentDescription",
                       "contentId String contentId", "subject String subject",
                       "subjectDecoded String subjectDecoded", "messageid String messageid",
                       "sender MimeMailboxZQV sender", "from MimeMailboxListZQV from",
                       "too MimeAddressListZQV too", "replyto MimeAddressListZQV replyto",
                       "cc MimeAddressListZQV cc", "bcc MimeAddressListZQV bcc"),
        "methods": ("Fields(index as Integer) as MimeFieldZQV", "Fields as MimeFieldZQV()",
                    NO_CONSTRUCTOR, "hasField(name as string) as boolean",
                    "FieldByName(name as string) as MimeFieldZQV"),
    },
    {
        "name": "MimeEntityZQV",
        "record": "Header Body BodyDecoded Source Subject PlainText HTMLText Attachments Inlines "
                  "SentDate ReceivedDate",
        "properties": ("Header MimeHeaderZQV Header", "Body MimeBodyZQV Body",
                       "BodyDecoded String BodyDecoded"),
        "methods": (NO_CONSTRUCTOR,),
    },
    {
        "name": "MimeAddressZQV",
        "record": "StringValue isGroup Mailbox Group",
        "properties": ("Group MimeGroupZQV Group", "Mailbox MimeMailboxZQV Mailbox",
                       "StringValue String StringValue", "isGroup Boolean isGroup"),
        "methods": (TEXT_CONSTRUCTOR,),
    },
    {
        "name": "MimeGroupZQV",
        "record": "StringValue Name NameDecoded mailboxes",
        "properties": ("MailboxesVariant Variant ()", "Name String Name",
                       "NameDecoded String NameDecoded", "StringValue String StringValue",
                       "Count Integer ()"),
        "methods": ("Mailboxes(index as Integer) as MimeMailboxZQV",
                    "Mailboxes as MimeMailboxZQV()", TEXT_CONSTRUCTOR),
    },
    {
        "name": "MimeAddressListZQV",
        "record": "StringValue addresses",
        "properties": ("AddressesVariant Variant ()", "StringValue String StringValue",
                       "Count Integer ()"),
        "methods": (TEXT_CONSTRUCTOR, "Addresses as MimeAddressZQV()",
                    "Addresses(index as Integer) as MimeAddressZQV"),
    },
    {
        "name": "MimeMailboxListZQV",
        "record": "StringValue mailboxes",
        "properties": ("MailboxesVariant Variant ()", "StringValue String StringValue",
                       "Count Integer ()"),
        "methods": ("Mailboxes(index as Integer) as MimeMailboxZQV",
                    "Mailboxes as MimeMailboxZQV()", TEXT_CONSTRUCTOR),
    },
    {
        "name": "MimeMailboxZQV",
        "record": "StringValue Mailbox Domain Label LabelDecoded Sourceroute",
        "properties": ("Mailbox String Mailbox", "Domain String Domain", "Label String Label",
                       "LabelDecoded String LabelDecoded", "Sourceroute String Sourceroute",
                       "StringValue String StringValue", "Email String ()"),
        "methods": (TEXT_CONSTRUCTOR,),
    },
    {
        "name": "MimeFieldZQV",
        "record": "Value Name",
        "properties": ("Name String Name", "Value String Value"),
        "methods": (TEXT_CONSTRUCTOR,),
    },
    {
        "name": "MimeEmailZQV",
        "super": "MimeEntityZQV",
        "record": "",
        "properties": ("InlinesVariant Variant ()", "AttachmentsVariant Variant ()",
                       "HTMLText String ()", "PlainText String ()", "Subject String ()",
                       "Source String ()", "Date Date ()", "ReceivedDate Date ()"),
        "methods": ("Inlines(index as Integer) as MimeAttachmentZQV",
                    "Attachments(index as Integer) as MimeAttachmentZQV",
                    "Inlines as MimeAttachmentZQV()", "Attachments as MimeAttachmentZQV()",
                    "Constructor(Content as string)", "Constructor(Content as MemoryBlock)",
                    "Constructor(File as FolderItem)", "SourceWithoutAttachments as String"),
        "shared properties": ("RaiseUnknownFormatExceptions Boolean", "Debugging Boolean hidden"),
        "shared methods": ("HTMLToPlainText(HTMLText as String) as String",
                           "DecodeInline(Text as String) as String"),
    },
    {
        "name": "MimeAttachmentZQV",
        "record": "Body Header Data Filename MimeType MimeVersion ContentType "
                  "ContentTransferEncoding ContentDisposition ContentDescription contentId",
        "properties": ("Body MimeBodyZQV Body", "Header MimeHeaderZQV Header", "Data String Data",
                       "Filename String Filename", "MimeVersion String MimeVersion",
                       "MimeType String MimeType", "ContentType String ContentType",
                       "ContentTransferEncoding String ContentTransferEncoding",
                       "ContentDisposition String ContentDisposition",
                       "ContentDescription String ContentDescription",
                       "contentId String contentId"),
        "methods": (NO_CONSTRUCTOR,),
    },
)


def property_line(row, record, date_flags):
    name, type_name, source = row.split()
    flags = date_flags if type_name == "Date" else PROPERTY
    place = "getter 0" if source == "()" else f"record {8 * record.index(source)}"
    return f"  property {name} as {type_name}, flags {flags:#x}, {place}"


def method_line(kind, declaration):
    private = declaration.startswith("-")
    return f'  {kind} "{declaration.lstrip("-")}", flags {PRIVATE if private else METHOD:#x}'


def shared_property_line(row):
    name, type_name, *hidden = row.split()
    line = f"  shared property {name} as {type_name}, flags {HIDDEN if hidden else PROPERTY:#x}"
    return line + ", getter 0, setter" + (', attribute Hidden=""' if hidden else "")


def class_lines(row, definition_version, date_flags):
    record = row["record"].split()
    size = (8 * len(record) + 15) // 16 * 16
    head = f"class {row['name']}" + (f" of {row['super']}" if "super" in row else "")
    head += f", version {definition_version}, data size {size}, flags {CLASS:#x}"
    yield head + (", destructor" if record else "")
    for line in row["properties"]:
        yield property_line(line, record, date_flags)
    for declaration in row["methods"]:
        yield method_line("method", declaration)
    for line in row.get("shared properties", ()):
        yield shared_property_line(line)
    for declaration in row.get("shared methods", ()):
        yield method_line("shared method", declaration)


def listing(host_version, definition_version):
    has_targets = host_version is not None and host_version >= FIRST_WITH_TARGETS
    date_flags = DATE if has_targets else OLD_DATE
    lines = [line for row in CLASSES
             for line in class_lines(row, definition_version, date_flags)]
    return "\n".join(lines) + "\n"


def main(arguments):
    check = arguments[:1] == ["--check"]
    if len(arguments) != 1 + check:
        print(__doc__, file=sys.stderr)
        return 2
    folder = pathlib.Path(arguments[-1])
    wrong = 0
    for name, host_version, definition_version in HOSTS:
        path = folder / f"classes-{name}.txt"
        text = listing(host_version, definition_version)
        if not check:
            path.write_text(text, encoding="ascii")
        elif not path.is_file() or path.read_text(encoding="ascii") != text:
            print(f"{path}: differs from the tables", file=sys.stderr)
            wrong += 1
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
