#include "fuzz/relations.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "abi/encodings.h"
#include "base/ascii.h"
#include "fuzz/reading.h"
#include "fuzz/target.h"
#include "standin/host.h"
#include "tests/reference/reference_utf8.h"

namespace zqv::fuzz {
namespace {

using standin::Call;
using standin::Get;
using standin::IsNil;
using standin::Object;
using standin::ObjectOf;
using standin::Value;

// The methods and properties by which a class offers a list; null for those that it does not have.
struct List {
  const char* array;
  const char* element;
  const char* variant;
  const char* count;
};

using Lists = std::vector<List>;

const Lists& ListsOf(const std::string& class_name) {
  static const Lists kMailboxes = {{"Mailboxes as MimeMailboxZQV()",
                                    "Mailboxes(index as Integer) as MimeMailboxZQV",
                                    "MailboxesVariant", "Count"}};
  static const std::map<std::string, Lists> kLists = {
      {"MimeEmailZQV",
       {{"Inlines as MimeAttachmentZQV()", "Inlines(index as Integer) as MimeAttachmentZQV",
         "InlinesVariant", nullptr},
        {"Attachments as MimeAttachmentZQV()", "Attachments(index as Integer) as MimeAttachmentZQV",
         "AttachmentsVariant", nullptr}}},
      {"MimeBodyZQV",
       {{"Parts as MimeEntityZQV()", "Parts(index as Integer) as MimeEntityZQV", "PartsVariant",
         nullptr}}},
      {"MimeHeaderZQV",
       {{"Fields as MimeFieldZQV()", "Fields(index as Integer) as MimeFieldZQV", nullptr,
         nullptr}}},
      {"MimeAddressListZQV",
       {{"Addresses as MimeAddressZQV()", "Addresses(index as Integer) as MimeAddressZQV",
         "AddressesVariant", "Count"}}},
      {"MimeMailboxListZQV", kMailboxes},
      {"MimeGroupZQV", kMailboxes},
  };
  static const Lists kNone;
  const auto found = kLists.find(class_name);
  return found != kLists.end() ? found->second : kNone;
}

// Whether the text of a property is that of the bytes alone, with no charset of its own: of those
// in the records all but decoded ones, an attachment's data and its name.
bool IsDetectedText(const standin::Property& property) {
  constexpr std::string_view kDecoded = "Decoded";
  const std::string_view name = property.name;
  if (property.kind != standin::TypeKind::kString || !property.is_standard) return false;
  if (name == "Data" || name == "Filename") return false;
  return name.size() < kDecoded.size() || name.substr(name.size() - kDecoded.size()) != kDecoded;
}

void ExpectElement(const Object& object, const List& list, const Object& array,
                   std::int64_t index) {
  Value element;
  const std::string raised = RaisedBy([&] { element = Call(object, list.element, index); });
  if (index < 0 || index >= array.Size()) {
    Expect(raised.compare(0, 21, "OutOfBoundsException:") == 0, "an index out of bounds raises");
  } else {
    ExpectSame("an index within bounds raises nothing", raised, "");
    Expect(ObjectOf(element) == ObjectOf(array.At(index)), "an element is the array's own");
  }
}

void ExpectList(const Object& object, const List& list) {
  const Object array = ObjectOf(Call(object, list.array));
  Expect(array == ObjectOf(Call(object, list.array)), "a list is always the same array");
  if (list.variant != nullptr)
    Expect(array == ObjectOf(Get(object, list.variant)), "a Variant is the list's own array");
  const std::int64_t size = array.IsNil() ? 0 : array.Size();
  if (list.count != nullptr)
    Expect(std::get<std::int64_t>(Get(object, list.count)) == size, "Count is the array's size");
  if (array.IsNil()) {
    Expect(IsNil(Call(object, list.element, 0)), "an element of no array is nil");
    return;
  }
  for (const std::int64_t index : {std::int64_t{-1}, std::int64_t{0}, size - 1, size}) {
    ExpectElement(object, list, array, index);
  }
}

bool HasLocalPart(const Value& mailbox) { return !IsNil(Get(ObjectOf(mailbox), "Mailbox")); }

void ExpectMailboxes(const Object& object) {
  const Object array = ObjectOf(Call(object, "Mailboxes as MimeMailboxZQV()"));
  for (std::int64_t i = 0; !array.IsNil() && i < array.Size(); ++i)
    Expect(HasLocalPart(array.At(i)), "each mailbox of a list has a local part");
}

void ExpectMailbox(const Object& object) {
  const auto mailbox = TextOf(Get(object, "Mailbox"));
  const auto domain = TextOf(Get(object, "Domain"));
  const auto email = TextOf(Get(object, "Email"));
  Expect(email.has_value() == (mailbox.has_value() || domain.has_value()),
         "an address is there when local part or domain are");
  if (email.has_value())
    ExpectSame("address and its halves", *email, mailbox.value_or("") + "@" + domain.value_or(""));
  if (IsNil(Get(object, "Label")))
    Expect(IsNil(Get(object, "LabelDecoded")), "no label gives no decoded label");
}

void ExpectGroup(const Object& object) {
  ExpectMailboxes(object);
  if (IsNil(Get(object, "Name")))
    Expect(IsNil(Get(object, "NameDecoded")), "no name gives no decoded name");
}

void ExpectAddress(const Object& object) {
  const bool is_group = std::get<bool>(Get(object, "isGroup"));
  const Value mailbox = Get(object, "Mailbox");
  Expect(IsNil(is_group ? mailbox : Get(object, "Group")), "a mailbox or a group, as isGroup says");
  if (!IsNil(mailbox)) Expect(HasLocalPart(mailbox), "an address's mailbox has a local part");
}

// The host compares names without regard to case; this checks names in ASCII only.
void ExpectFieldsFound(const Object& header) {
  const Object fields = ObjectOf(Call(header, "Fields as MimeFieldZQV()"));
  for (std::int64_t i = 0; !fields.IsNil() && i < std::min<std::int64_t>(fields.Size(), 20); ++i) {
    const Value name = Get(ObjectOf(fields.At(i)), "Name");
    std::int64_t first = 0;
    while (!base::EqualsIgnoringCase(standin::BytesOf(Get(ObjectOf(fields.At(first)), "Name")),
                                     standin::BytesOf(name)))
      ++first;
    Expect(std::get<bool>(Call(header, "hasField", name)), "a header has each of its fields");
    Expect(ObjectOf(Call(header, "FieldByName", name)) == ObjectOf(fields.At(first)),
           "a field's name finds the first field of it");
  }
}

void ExpectMessage(const Object& object) {
  const Object header = ObjectOf(Get(object, "Header"));
  if (!header.IsNil())
    ExpectSame("subject of message and header", ShowProperty(object, "Subject"),
               ShowProperty(header, "subjectDecoded"));
  const Value html = Get(object, "HTMLText");
  if (!IsNil(html) && IsNil(Get(object, "PlainText")))
    Expect(IsNil(standin::CallShared("MimeEmailZQV", "HTMLToPlainText", html)),
           "a HTML text gives the plain text");
  RaisedBy([&] {
    const std::string rest = standin::BytesOf(Call(object, "SourceWithoutAttachments"));
    Expect(rest.find('\n') == std::string::npos, "line breaks of the rest are single CRs");
  });
}

}  // namespace

std::string ShownDetected(std::string_view bytes) {
  bytes = bytes.substr(0, bytes.find('\0'));
  if (bytes.empty()) return "nil";
  const bool is_ascii = std::all_of(bytes.begin(), bytes.end(),
                                    [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  const char* const encoding = is_ascii                   ? "0x600 "
                               : reference::IsUtf8(bytes) ? "0x8000100 "
                                                          : "0x0 ";
  return encoding + std::string(bytes);
}

void ExpectRelations(const Object& object) {
  static const std::map<std::string, void (*)(const Object&)> kRelations = {
      {"MimeMailboxZQV", ExpectMailbox},
      {"MimeGroupZQV", ExpectGroup},
      {"MimeAddressZQV", ExpectAddress},
      {"MimeMailboxListZQV", ExpectMailboxes},
      {"MimeHeaderZQV", ExpectFieldsFound},
      {"MimeEmailZQV", ExpectMessage},
      {"MimeAttachmentZQV",
       [](const Object& attachment) {
         Expect(!IsNil(Get(attachment, "Filename")), "an attachment has a name");
       }},
  };
  const std::string& name = object.ClassName();
  for (const List& list : ListsOf(name)) ExpectList(object, list);
  for (const standin::Property& property : standin::ClassOf(*object.thing())->properties) {
    if (!IsDetectedText(property)) continue;
    const Value text = Get(object, property.name);
    ExpectSame(property.full_name, Show(text), ShownDetected(standin::BytesOf(text)));
  }
  const auto relation = kRelations.find(name);
  if (relation != kRelations.end()) relation->second(object);
}

}  // namespace zqv::fuzz
