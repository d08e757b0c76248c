#include "cli/document.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include "abi/encodings.h"
#include "base/ascii.h"
#include "cli/base64.h"
#include "cli/message.h"
#include "standin/application.h"
#include "standin/convert.h"
#include "standin/host.h"
#include "standin/mirror.h"

namespace zqv::cli {
namespace {

constexpr std::string_view kAttachmentClass = "MimeAttachmentZQV";

using standin::Object;
using standin::String;
using standin::Value;
using Json = nlohmann::ordered_json;

// Where a key stands among those of its object.
enum class Place : std::uint8_t {
  kFirst,  // in the order of the rows below, before all others
  kUsual,  // in the order of registration
  kFile,   // last: holds a file's bytes
  kNowhere,
};

// The members for which the general rules of cli/document.h do not hold. A class whose objects can
// contain one another must not be reachable: Describe would not end.
struct Exception {
  std::string_view class_name;
  std::string_view member;
  Place place;
  std::string_view key = {};  // empty: the member's name in snake case
};
constexpr Exception kExceptions[] = {
    // clang-format off
    {"MimeEmailZQV",      "Subject",      Place::kFirst},
    {"MimeEmailZQV",      "Date",         Place::kFirst},
    {"MimeEmailZQV",      "ReceivedDate", Place::kFirst},
    {"MimeEmailZQV",      "PlainText",    Place::kFirst},
    {"MimeEmailZQV",      "Source",       Place::kFile},
    {"MimeEmailZQV",      "Attachments",  Place::kFirst},
    {"MimeEntityZQV",     "BodyDecoded",  Place::kFile},
    {"MimeBodyZQV",       "StringValue",  Place::kFile},
    {"MimeBodyZQV",       "Parts",        Place::kNowhere},  // all parts are one list
    {"MimeAttachmentZQV", "Body",         Place::kNowhere},  // that of the part
    {"MimeAttachmentZQV", "Header",       Place::kNowhere},  // that of the part
    {"MimeAttachmentZQV", "Filename",     Place::kFirst},
    {"MimeAttachmentZQV", "MimeType",     Place::kFirst},
    {"MimeAttachmentZQV", "Data",         Place::kFile},
    {"MimeHeaderZQV",     "messageid",    Place::kUsual, "message_id"},
    {"MimeHeaderZQV",     "too",          Place::kUsual, "to"},
    {"MimeHeaderZQV",     "replyto",      Place::kUsual, "reply_to"},
    {"MimeAddressZQV",    "StringValue",  Place::kFirst},
    {"MimeAddressZQV",    "isGroup",      Place::kFirst},
    {"MimeAddressZQV",    "Mailbox",      Place::kFirst},
    {"MimeGroupZQV",      "StringValue",  Place::kFirst},
    {"MimeMailboxZQV",    "StringValue",  Place::kFirst},
    // clang-format on
};

// A key on its way to its place.
struct Placed {
  DocumentKey key;
  Place place = Place::kUsual;
  const Exception* row = nullptr;
};

Placed PlaceOf(std::string_view class_name, std::string_view member) {
  for (const Exception& row : kExceptions) {
    if (row.member != member || row.class_name != class_name) continue;
    return {{row.key.empty() ? SnakeCase(member) : std::string(row.key)}, row.place, &row};
  }
  return {{SnakeCase(member)}};
}

// Properties stand before lists.
bool IsBefore(const Placed& a, const Placed& b) {
  const auto rank = [](const Placed& placed) {
    return std::make_tuple(placed.key.property == nullptr, placed.place,
                           placed.place == Place::kFirst ? placed.row : nullptr);
  };
  return rank(a) < rank(b);
}

class Writer {
 public:
  Writer(const Object& email, const TextForm& text, const TextForm& files)
      : text_(text), files_(files), tree_(email), finder_(tree_) {}

  Json DescribeEmail() {
    const Object& email = tree_.parts().front().entity;
    const standin::ClassInfo& info = *standin::ClassOf(*email.thing());
    Json json = Json::object();
    Describe(email, info, true, &json);
    Json& parts = json["parts"] = Json::array();
    for (std::size_t i = 0; i < tree_.parts().size(); ++i) {
      Json part = {{"number", tree_.Number(i)}};
      const Object& entity = tree_.parts()[i].entity;
      // The message is a part, too, by its super class.
      const standin::ClassInfo* const part_info = i == 0 ? info.super : ClassOf(*entity.thing());
      if (part_info != nullptr) Describe(entity, *part_info, file_parts_.count(i) > 0, &part);
      parts.push_back(std::move(part));
    }
    return json;
  }

 private:
  // Writes the members of a class, without those of its super class. `in_file`: what can hold a
  // file's bytes does.
  void Describe(const Object& object, const standin::ClassInfo& info, bool in_file, Json* json) {
    const std::vector<DocumentKey>& keys = KeysOf(info);
    // No key comes twice, so none is searched for, as operator[] would.
    auto& members = json->get_ref<Json::object_t&>();
    members.reserve(members.size() + keys.size());
    for (const DocumentKey& key : keys) {
      members.emplace_back(
          key.key, key.property == nullptr
                       ? DescribeList(ListMember(object, key.method->row->declaration), in_file)
                       : DescribeValue(Member(object, key.property->name),
                                       key.is_file && in_file ? files_ : text_, in_file));
    }
  }

  Json DescribeList(const std::vector<Object>& list, bool in_file) {
    Json json = Json::array();
    for (const Object& element : list) json.push_back(DescribeObject(element, in_file));
    return json;
  }

  Json DescribeValue(const Value& value, const TextForm& text, bool in_file) {
    if (const auto* const string = std::get_if<String>(&value)) {
      return string->IsNil() ? Json() : text(*string);
    }
    if (const auto* const boolean = std::get_if<bool>(&value)) return *boolean;
    if (const auto* const number = std::get_if<std::int64_t>(&value)) return *number;
    const Object object = standin::ObjectOf(value);
    return object.IsNil() ? Json() : DescribeObject(object, in_file);
  }

  Json DescribeObject(const Object& object, bool in_file) {
    const standin::ClassInfo& info = *standin::ClassOf(*object.thing());
    if (info.native != standin::NativeKind::kNone) return standin::Mirror(object);  // a Date
    Json json = Json::object();
    if (info.name == kAttachmentClass) json["part"] = DescribePart(object);
    Describe(object, info, in_file, &json);
    return json;
  }

  // The number of the part that an attachment describes, which is a file then.
  Json DescribePart(const Object& attachment) {
    const std::optional<std::size_t> part = finder_.Find(attachment);
    if (!part) return {};
    file_parts_.insert(*part);
    return tree_.Number(*part);
  }

  const std::vector<DocumentKey>& KeysOf(const standin::ClassInfo& info) {
    const auto [place, is_new] = keys_.try_emplace(&info);
    if (is_new) place->second = DocumentKeys(info);
    return place->second;
  }

  const TextForm& text_;
  const TextForm& files_;
  const PartTree tree_;
  const PartFinder finder_;
  std::set<std::size_t> file_parts_;  // that attachments and inline parts describe
  std::unordered_map<const standin::ClassInfo*, std::vector<DocumentKey>> keys_;
};

}  // namespace

std::string SnakeCase(std::string_view name) {
  std::string snake;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const char lower = base::LowerAscii(name[i]);
    const bool is_upper = lower != name[i];
    const bool after_lower = i > 0 && base::LowerAscii(name[i - 1]) == name[i - 1];
    const bool before_lower = i + 1 < name.size() && base::LowerAscii(name[i + 1]) == name[i + 1];
    if (is_upper && i > 0 && (after_lower || before_lower)) snake += '_';
    snake += lower;
  }
  return snake;
}

std::vector<DocumentKey> DocumentKeys(const standin::ClassInfo& info) {
  std::vector<Placed> placed;
  const auto add = [&](std::string_view member, const standin::Property* property,
                       const standin::Method* method) {
    Placed next = PlaceOf(info.name, member);
    if (next.place == Place::kNowhere) return;
    next.key.property = property;
    next.key.method = method;
    next.key.is_file = next.place == Place::kFile;
    placed.push_back(std::move(next));
  };
  for (const standin::Property& property : info.properties) {
    // A Variant gives what a list gives.
    if (property.kind != standin::TypeKind::kVariant) add(property.name, &property, nullptr);
  }
  for (const standin::Method& method : info.methods) {
    if (method.result_kind != standin::TypeKind::kArray) continue;
    if (method.declaration.parameters.empty()) add(method.declaration.name, nullptr, &method);
  }
  std::stable_sort(placed.begin(), placed.end(), IsBefore);
  std::vector<DocumentKey> keys;
  for (Placed& next : placed) keys.push_back(std::move(next.key));
  return keys;
}

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
  return Writer(email, text, files).DescribeEmail();
}

}  // namespace zqv::cli
