#include "cli/document.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "abi/encodings.h"
#include "cli/base64.h"
#include "cli/message.h"
#include "standin/application.h"
#include "standin/convert.h"
#include "standin/mirror.h"

namespace zqv::cli {
namespace {

using standin::Object;
using standin::String;
using standin::Value;
using Json = nlohmann::ordered_json;

// The keys of one kind of object and the members behind them.
struct Shape;
struct Entry {
  const char* key;
  const char* member;            // a property, or the declaration of an array method
  const Shape* shape = nullptr;  // of the object or of the array's elements
  bool is_list = false;
  bool is_file = false;  // holds a file's bytes
};
struct Shape {
  const Entry* first;
  std::size_t count;
};

template <std::size_t kCount>
constexpr Shape ShapeOf(const Entry (&entries)[kCount]) {
  return {entries, kCount};
}

constexpr Entry kMailboxEntries[] = {
    {"string_value", "StringValue"},
    {"mailbox", "Mailbox"},
    {"domain", "Domain"},
    {"label", "Label"},
    {"label_decoded", "LabelDecoded"},
    {"sourceroute", "Sourceroute"},
    {"email", "Email"},
};
constexpr Shape kMailbox = ShapeOf(kMailboxEntries);

constexpr Entry kMailboxListEntries[] = {
    {"string_value", "StringValue"},
    {"count", "Count"},
    {"mailboxes", "Mailboxes as MimeMailboxZQV()", &kMailbox, true},
};
constexpr Shape kMailboxList = ShapeOf(kMailboxListEntries);

constexpr Entry kGroupEntries[] = {
    {"string_value", "StringValue"},
    {"name", "Name"},
    {"name_decoded", "NameDecoded"},
    {"count", "Count"},
    {"mailboxes", "Mailboxes as MimeMailboxZQV()", &kMailbox, true},
};
constexpr Shape kGroup = ShapeOf(kGroupEntries);

constexpr Entry kAddressEntries[] = {
    {"string_value", "StringValue"},
    {"is_group", "isGroup"},
    {"mailbox", "Mailbox", &kMailbox},
    {"group", "Group", &kGroup},
};
constexpr Shape kAddress = ShapeOf(kAddressEntries);

constexpr Entry kAddressListEntries[] = {
    {"string_value", "StringValue"},
    {"count", "Count"},
    {"addresses", "Addresses as MimeAddressZQV()", &kAddress, true},
};
constexpr Shape kAddressList = ShapeOf(kAddressListEntries);

constexpr Entry kFieldEntries[] = {{"name", "Name"}, {"value", "Value"}};
constexpr Shape kField = ShapeOf(kFieldEntries);

constexpr Entry kHeaderEntries[] = {
    {"mime_version", "MimeVersion"},
    {"content_type", "ContentType"},
    {"content_transfer_encoding", "ContentTransferEncoding"},
    {"content_transfer_encoding_mechanism", "ContentTransferEncodingMechanism"},
    {"content_disposition", "ContentDisposition"},
    {"content_description", "ContentDescription"},
    {"content_id", "contentId"},
    {"subject", "subject"},
    {"subject_decoded", "subjectDecoded"},
    {"message_id", "messageid"},
    {"sender", "sender", &kMailbox},
    {"from", "from", &kMailboxList},
    {"to", "too", &kAddressList},
    {"reply_to", "replyto", &kAddressList},
    {"cc", "cc", &kAddressList},
    {"bcc", "bcc", &kAddressList},
    {"fields", "Fields as MimeFieldZQV()", &kField, true},
};
constexpr Shape kHeader = ShapeOf(kHeaderEntries);

constexpr Entry kBodyEntries[] = {
    {"preamble", "preamble"},
    {"epilogue", "epilogue"},
    {"string_value", "StringValue"},
};
constexpr Shape kBody = ShapeOf(kBodyEntries);

constexpr Entry kPartEntries[] = {
    {"header", "Header", &kHeader},
    {"body", "Body", &kBody},
    {"body_decoded", "BodyDecoded"},
};
constexpr Shape kPart = ShapeOf(kPartEntries);

// The same of a part that is a file.
constexpr Entry kFileBodyEntries[] = {
    {"preamble", "preamble"},
    {"epilogue", "epilogue"},
    {"string_value", "StringValue", nullptr, false, true},
};
constexpr Shape kFileBody = ShapeOf(kFileBodyEntries);
constexpr Entry kFilePartEntries[] = {
    {"header", "Header", &kHeader},
    {"body", "Body", &kFileBody},
    {"body_decoded", "BodyDecoded", nullptr, false, true},
};
constexpr Shape kFilePart = ShapeOf(kFilePartEntries);

constexpr Entry kAttachmentEntries[] = {
    {"filename", "Filename"},
    {"mime_type", "MimeType"},
    {"mime_version", "MimeVersion"},
    {"content_type", "ContentType"},
    {"content_transfer_encoding", "ContentTransferEncoding"},
    {"content_disposition", "ContentDisposition"},
    {"content_description", "ContentDescription"},
    {"content_id", "contentId"},
    {"data", "Data", nullptr, false, true},
};
constexpr Shape kAttachment = ShapeOf(kAttachmentEntries);

constexpr Entry kMessageEntries[] = {
    {"subject", "Subject"},
    {"date", "Date"},
    {"received_date", "ReceivedDate"},
    {"plain_text", "PlainText"},
    {"html_text", "HTMLText"},
    {"source", "Source", nullptr, false, true},
};
constexpr Shape kMessage = ShapeOf(kMessageEntries);

class Writer {
 public:
  Writer(const TextForm& text, const TextForm& files) : text_(text), files_(files) {}

  Json DescribeEmail(const Object& email) {
    const PartTree tree(email);
    const PartFinder finder(tree);
    Json json = Json::object();
    Describe(email, kMessage, &json);
    json["attachments"] = DescribeAttached(ListMember(email, kAttachments), tree, finder);
    json["inlines"] = DescribeAttached(ListMember(email, kInlines), tree, finder);
    Json& parts = json["parts"] = Json::array();
    for (std::size_t i = 0; i < tree.parts().size(); ++i) {
      Json part = {{"number", tree.Number(i)}};
      Describe(tree.parts()[i].entity, file_parts_.count(i) > 0 ? kFilePart : kPart, &part);
      parts.push_back(std::move(part));
    }
    return json;
  }

 private:
  Json DescribeAttached(const std::vector<Object>& list, const PartTree& tree,
                        const PartFinder& finder) {
    Json json = Json::array();
    for (const Object& record : list) {
      const std::optional<std::size_t> part = finder.Find(record);
      if (part) file_parts_.insert(*part);
      Json attached = {{"part", part ? Json(tree.Number(*part)) : Json()}};
      Describe(record, kAttachment, &attached);
      json.push_back(std::move(attached));
    }
    return json;
  }

  // As deep as the shapes nest, not as deep as the message does.
  void Describe(const Object& object, const Shape& shape, Json* json) const {
    for (std::size_t i = 0; i < shape.count; ++i) {
      const Entry& entry = shape.first[i];
      (*json)[entry.key] = entry.is_list
                               ? DescribeList(ListMember(object, entry.member), *entry.shape)
                               : DescribeValue(Member(object, entry.member), entry);
    }
  }

  Json DescribeList(const std::vector<Object>& list, const Shape& shape) const {
    Json json = Json::array();
    for (const Object& element : list) Describe(element, shape, &json.emplace_back());
    return json;
  }

  Json DescribeValue(const Value& value, const Entry& entry) const {
    const Shape* const shape = entry.shape;
    if (const auto* const string = std::get_if<String>(&value)) {
      if (string->IsNil()) return {};
      return entry.is_file ? files_(*string) : text_(*string);
    }
    if (const auto* const boolean = std::get_if<bool>(&value)) return *boolean;
    if (const auto* const number = std::get_if<std::int64_t>(&value)) return *number;
    const Object object = standin::ObjectOf(value);
    if (object.IsNil()) return {};
    if (shape == nullptr) return standin::Mirror(object);  // a Date
    Json json = Json::object();
    Describe(object, *shape, &json);
    return json;
  }

  const TextForm& text_;
  const TextForm& files_;
  std::set<std::size_t> file_parts_;  // that attachments and inline parts describe
};

}  // namespace

Json ReadableText(const String& string) {
  // Bytes of no known encoding are text when they look like it.
  const bool plain = string.encoding() == abi::kUnknownEncoding;
  const std::optional<std::string> text =
      plain ? standin::Convert(string.bytes(), abi::kUtf8, abi::kUtf8) : string.Utf8();
  if (text) return *text;
  return {{"bytes", standin::EscapeBytes(string.bytes())}, {"encoding", string.encoding()}};
}

Json RawText(const String& string) {
  return {{"base64", Base64(string.bytes())}, {"encoding", string.encoding()}};
}

Json NoText(const String&) { return {}; }

Json DescribeMessage(const Object& email, const TextForm& text) {
  return DescribeMessage(email, text, text);
}

Json DescribeMessage(const Object& email, const TextForm& text, const TextForm& files) {
  return Writer(text, files).DescribeEmail(email);
}

}  // namespace zqv::cli
