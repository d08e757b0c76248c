// Objects made from a text through the built library. Checked are the relations between them, and
// between them and a message whose fields have the same text. The first byte selects the class, or
// the message, and the encoding of the text.
#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

#include "abi/encodings.h"
#include "base/ascii.h"
#include "fuzz/alphabet.h"
#include "fuzz/reading.h"
#include "fuzz/relations.h"
#include "fuzz/session.h"
#include "fuzz/target.h"
#include "standin/application.h"
#include "standin/mirror.h"
#include "tests/reference/reference_encoded_word.h"
#include "tests/reference/reference_utf8.h"

namespace zqv::fuzz {
namespace {

using standin::Get;
using standin::IsNil;
using standin::Object;
using standin::ObjectOf;
using standin::String;

// clang-format off
constexpr std::string_view kPieces[] = {
    "a", "b", "Ada", "a@b", "a@b.c", "Ada Example <a@example.org>", "<a@b>", "<@r:u@v>", "@", "@@",
    "<", ">", ",", ", ", ";", ":", "G: ", "G: a@b, c@d;", "undisclosed-recipients:;", "\"", "\"x\"",
    "\\", "\\\"", "(", ")", "(c)", " ", "  ", "\t", ".", "=?utf-8?Q?", "=?iso-8859-1?B?", "?=",
    "?= =?", "=C3=A9", "=00", "QWxh", "_", "=", "'", "\xC3\xA9", "\x8E", "\r", "\n",
    "Tue, ", "1 ", "31", "Jan ", "Feb", "2019 ", "19", "10:00:00", ":00", " +0200", " -0130",
    " GMT", " EST", " PST", "UTC", "99999999999", "-", "+", "; ", "Subject: ", "X:", "<id@host>",
    ".png", ".GIF", "<>", std::string_view("\0", 1),
};
// clang-format on

constexpr const char* kClasses[] = {"MimeMailboxZQV",     "MimeGroupZQV",       "MimeAddressZQV",
                                    "MimeMailboxListZQV", "MimeAddressListZQV", "MimeFieldZQV"};

constexpr abi::Encoding kEncodings[] = {abi::kUtf8, abi::kUnknownEncoding, abi::kMacRoman,
                                        abi::kIsoLatin1};

Object FromText(const char* class_name, const String& text) {
  return standin::Construct(class_name, "Constructor", text);
}

Object Message(const std::string& bytes) {
  return standin::Construct("MimeEmailZQV", "Constructor(Content as string)",
                            standin::MakeString(bytes, abi::kUnknownEncoding));
}

// Fails when an application could distinguish the objects.
void ExpectEqual(const char* what, const Object& left, const Object& right) {
  const auto left_mirror = standin::Mirror(left);
  const auto right_mirror = standin::Mirror(right);
  if (left_mirror != right_mirror) ExpectSame(what, left_mirror.dump(), right_mirror.dump());
}

Object Member(const Object& object, const char* property) {
  return ObjectOf(Get(object, property));
}

std::int64_t CountOf(const Object& list) { return std::get<std::int64_t>(Get(list, "Count")); }

// Checks that an object that is constructed again equals one constructed once.
void ExpectSameAnew(const char* class_name, const Object& object, const String& text) {
  const Object other = FromText(class_name, standin::MakeString("G: Eve <e@f>, g@h;"));
  standin::Call(other, "Constructor", text);
  ExpectEqual("the same anew", other, object);
}

// Checks that a label or name without encoded words is decoded unchanged, except for the quotes of
// labels.
void ExpectDecoded(const Object& object, const char* plain, const char* decoded, bool unquote) {
  const std::string text = standin::BytesOf(Get(object, plain));
  if (text.find("=?") != std::string::npos) return;
  ExpectSame(decoded, ShowProperty(object, decoded),
             ShownDetected(unquote ? reference::StripQuotes(text) : text));
}

// Checks that an address equals the mailbox or group of the same text, or has neither when that is
// empty.
void ExpectAddressOf(const Object& address, const String& text) {
  const bool is_group = std::get<bool>(Get(address, "isGroup"));
  const Object half = FromText(is_group ? "MimeGroupZQV" : "MimeMailboxZQV", text);
  const Object found = Member(address, is_group ? "Group" : "Mailbox");
  if (!found.IsNil()) {
    ExpectEqual("an address's half", found, half);
  } else if (is_group) {
    Expect(IsNil(Get(half, "Name")) && CountOf(half) == 0, "a group left out is nobody");
  } else {
    Expect(IsNil(Get(half, "Mailbox")), "a mailbox left out has no local part");
  }
}

void ExpectObject(const char* class_name, const String& text) {
  const Object object = FromText(class_name, text);
  ReadEverything(object);
  ExpectSameAnew(class_name, object, text);
  if (object.IsA("MimeMailboxZQV")) ExpectDecoded(object, "Label", "LabelDecoded", true);
  if (object.IsA("MimeGroupZQV")) ExpectDecoded(object, "Name", "NameDecoded", false);
  if (object.IsA("MimeAddressZQV")) ExpectAddressOf(object, text);
}

// Checks a field. Its name is the text before the first ":", and its value the text after it
// without leading spaces, of which at least one character is kept. Without ":" both are empty.
void ExpectField(const std::string& bytes, const String& text) {
  const Object field = FromText("MimeFieldZQV", text);
  const std::size_t colon = bytes.find(':');
  std::string name;
  std::string value;
  if (colon != std::string::npos) {
    name = bytes.substr(0, colon);
    value = bytes.substr(colon + 1);
    while (value.size() > 1 && value.front() == ' ') value.erase(0, 1);
  }
  ExpectSame("a field's name", ShowProperty(field, "Name"), ShownDetected(name));
  ExpectSame("a field's value", ShowProperty(field, "Value"), ShownDetected(value));
}

// Checks a list of a header, which is nil when the text has no address.
void ExpectListOf(const Object& header, const char* property, const Object& list) {
  const Object found = Member(header, property);
  if (!found.IsNil()) {
    ExpectEqual(property, found, list);
  } else {
    Expect(CountOf(list) == 0, "a list left out is empty");
  }
}

void ExpectAddressFields(const Object& header, const String& text) {
  const Object list = FromText("MimeAddressListZQV", text);
  for (const char* property : {"too", "cc", "bcc", "replyto"}) {
    ExpectListOf(header, property, list);
    Expect(Member(header, property).IsNil() == (CountOf(list) == 0), "an empty list is left out");
  }
  ExpectListOf(header, "from", FromText("MimeMailboxListZQV", text));
  const Object mailbox = FromText("MimeMailboxZQV", text);
  const Object sender = Member(header, "sender");
  Expect(sender.IsNil() == IsNil(Get(mailbox, "Mailbox")), "a sender has a local part");
  if (!sender.IsNil()) ExpectEqual("sender", sender, mailbox);
}

// Checks a message in which all fields have the text.
void ExpectMessageOf(const std::string& bytes, const String& text) {
  std::string source;
  for (const char* name : {"From: ", "To: ", "Cc: ", "Bcc: ", "Reply-To: ", "Sender: ", "Subject: ",
                           "Date: ", "Received: x; "}) {
    source += name + bytes + "\n";
  }
  const Object message = Message(source + "\nbody\n");
  const Object header = Member(message, "Header");
  ExpectAddressFields(header, text);
  ExpectSame("subject", ShowProperty(header, "subject"), ShownDetected(bytes));
  ExpectSame("decoded subject", ShowProperty(message, "Subject"),
             Show(standin::CallShared("MimeEmailZQV", "DecodeInline", text)));
  const Object sent = Member(message, "Date");
  Expect(!sent.IsNil(), "a Date field gives a date");
  ExpectEqual("the same text is the same date", sent, Member(message, "ReceivedDate"));
}

constexpr const char* kData[] = {"plain", "<html>x", "GIF89a", "BMxxxx", ".PNGxx", "MMxxxx"};
constexpr const char* kExtensions[] = {"", ".html", ".gif", ".bmp", ".png", ".tif"};

// The expected file name for a Content-ID and data with this extension.
std::string MadeUpName(std::string name, const std::string& extension) {
  if (name.size() >= 3) {
    if (name.front() == '<') name.erase(0, 1);
    if (!name.empty() && name.back() == '>') name.pop_back();
  }
  if (name.empty()) name = "attachment";
  const bool has_it =
      name.size() > extension.size() &&
      base::EqualsIgnoringCase(name.substr(name.size() - extension.size()), extension);
  return has_it ? name : name + extension;
}

// The only attachment of a message whose part has this header field and data.
Object FileWith(const std::string& field, const char* data) {
  const Object message = Message(
      "Content-Type: multipart/mixed; boundary=limit\n\n--limit\n"
      "Content-Type: image/x\n" +
      field + "\n\n" + data + "\n--limit--\n");
  const Object inlines = Member(message, "InlinesVariant");
  const Object attachments = Member(message, "AttachmentsVariant");
  Expect(inlines.Size() + attachments.Size() == 1, "a message with one file lists one");
  return ObjectOf((inlines.Size() == 1 ? inlines : attachments).At(0));
}

void ExpectFileNames(const std::string& bytes, const String& text) {
  const std::size_t kind = bytes.size() % std::size(kData);
  const Object by_id = FileWith("Content-ID: " + bytes, kData[kind]);
  const std::string id = standin::BytesOf(Get(by_id, "contentId"));
  ExpectSame("a name made of the Content-ID", ShowProperty(by_id, "Filename"),
             ShownDetected(MadeUpName(id, kExtensions[kind])));
  if (bytes.find_first_of(";\"") != std::string::npos) return;
  const Object by_name =
      FileWith("Content-Disposition: attachment; filename=\"" + bytes + "\"", "x");
  const auto decoded = standin::CallShared("MimeEmailZQV", "DecodeInline", text);
  ExpectSame("a file's name", ShowProperty(by_name, "Filename"),
             IsNil(decoded) ? ShownDetected("attachment") : Show(decoded));
}

// Whether the text can be the value of a header field unchanged, and a host string in UTF-8.
bool FitsIntoAField(std::string_view bytes) {
  return !bytes.empty() && bytes.front() != ' ' && bytes.front() != '\t' &&
         bytes.find_first_of("\r\n") == std::string_view::npos && reference::IsUtf8(bytes);
}

// Checks a text that can be the value of a header field unchanged.
void ExpectFields(const std::string& bytes) {
  if (!FitsIntoAField(bytes)) return;
  const String text = standin::MakeString(bytes);
  ExpectField(bytes, text);
  ExpectMessageOf(bytes, text);
  ExpectFileNames(bytes, text);
}

void Start() { Session::Get(); }

void Run(std::string_view input) {
  if (input.empty()) return;
  const std::size_t choice = static_cast<unsigned char>(input.front());
  const std::size_t number = choice / std::size(kEncodings) % (std::size(kClasses) + 1);
  const std::string bytes(input.substr(1));
  if (number < std::size(kClasses)) {
    const abi::Encoding encoding = kEncodings[choice % std::size(kEncodings)];
    ExpectObject(kClasses[number], standin::MakeString(bytes, encoding));
  } else {
    ExpectFields(bytes);
  }
  Session::Get().ExpectNothingLeft();
  Session::Get().ExpectNoExceptionLost();
}

std::string Spell(std::string_view input) {
  if (input.empty()) return {};
  return input.front() + Alphabet(kPieces).Spell(input.substr(1), 400);
}

}  // namespace

const Target target = {Start, Run, Spell};

}  // namespace zqv::fuzz
