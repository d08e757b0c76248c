// A loop with a stack of objects and arrays that are still to be written. Opening an object first
// reads all its members and creates their JSON values. Only then are its objects pushed, so that no
// JSON value moves while the stack points to it. A path is stored as its last step and the number
// of the path before it; storing whole paths would take memory quadratic in the depth.
#include "standin/mirror.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include "standin/application.h"
#include "standin/convert.h"
#include "standin/host.h"

namespace zqv::standin {
namespace {

using Json = nlohmann::ordered_json;

class Walk {
 public:
  explicit Walk(const MirrorOptions& options) : options_(options) {}

  void Run(const Object& top, Json* result) {
    steps_.push_back({0, {}});
    if (top.IsNil()) return;
    waiting_.push_back({top, result, 0, 0});
    while (!waiting_.empty()) {
      Item item = std::move(waiting_.back());
      waiting_.pop_back();
      Open(item);
    }
  }

 private:
  // The index of a path's last step in `steps_`.
  using Path = std::size_t;
  struct Step {
    Path before;  // for the top: the top itself
    std::string name;
  };
  // An object or array that is still to be written to `place`. The pointer stays valid, because all
  // members of a container are created before any of them is opened.
  struct Item {
    Object object;
    Json* place;
    Path path;
    std::size_t depth;
  };
  struct Member {
    std::string name;
    Value value;
    bool is_variant;
  };
  // An object that was written. The handle keeps it alive, so that no later object gets its
  // address.
  struct Seen {
    Object object;
    Path path;
  };

  // The path as text: "/Body/Parts/0". Empty for the top.
  std::string PathText(Path path) const {
    std::vector<Path> steps;
    for (; path != 0; path = steps_[path].before) steps.push_back(path);
    std::string text;
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) text += "/" + steps_[*step].name;
    return text;
  }

  // Writes a string, number or Boolean to `place`. Pushes an object, which leaves null there until
  // it is opened. `name` is the last step of the value's path.
  void Put(const Value& value, Json* place, const Item& holder, const std::string& name) {
    if (const auto* const object = std::get_if<Object>(&value)) {
      if (object->IsNil()) return;
      steps_.push_back({holder.path, name});
      waiting_.push_back({*object, place, steps_.size() - 1, holder.depth + 1});
    } else if (const auto* const string = std::get_if<String>(&value)) {
      *place = MirrorText(*string);
    } else if (const auto* const boolean = std::get_if<bool>(&value)) {
      *place = *boolean;
    } else if (const auto* const integer = std::get_if<std::int64_t>(&value)) {
      *place = *integer;
    } else if (const auto* const number = std::get_if<double>(&value)) {
      *place = *number;
    }
  }

  void Open(const Item& item) {
    first_new_ = waiting_.size();
    const Thing* const thing = item.object.thing();
    if (item.depth > options_.max_depth) {
      *item.place = {{"cut", item.object.ClassName()}};
      return;
    }
    const auto [seen, is_new] = seen_.emplace(thing, Seen{item.object, item.path});
    if (!is_new && !options_.repeat_shared) {
      *item.place = {{"same", PathText(seen->second.path)}};
      return;
    }
    const ClassInfo* const info = ClassOf(*thing);
    if (info == nullptr) {
      OpenArray(item);
    } else if (info->native != NativeKind::kNone) {
      OpenNative(item, *info);
    } else {
      OpenObject(item, *info);
    }
    // The stack opens the last item first, but the first member shall be written first.
    std::reverse(waiting_.begin() + static_cast<std::ptrdiff_t>(first_new_), waiting_.end());
  }

  void OpenNative(const Item& item, const ClassInfo& info) {
    if (info.native == NativeKind::kDate) {
      const auto& state = *static_cast<const NativeThing*>(item.object.thing())->state;
      *item.place = std::get<Date>(state).IsoText();
    } else {
      *item.place = {{"class", info.name}};
    }
  }

  void OpenArray(const Item& item) {
    *item.place = Json::array();
    const std::int64_t size = item.object.Size();
    for (std::int64_t i = 0; i < size; ++i) item.place->push_back(nullptr);
    for (std::int64_t i = 0; i < size; ++i) {
      Put(item.object.At(i), &(*item.place)[static_cast<std::size_t>(i)], item, std::to_string(i));
    }
  }

  void OpenObject(const Item& item, const ClassInfo& info) {
    std::vector<Member> members;
    Collect(item.object, info, &members);
    *item.place = {{"class", info.name}};
    for (const Member& member : members) (*item.place)[member.name] = nullptr;
    // A Variant may contain an object that another member has by its own type. The Variant comes
    // last, so that it is the one written as {"same": path}.
    for (const bool variants : {false, true}) {
      for (const Member& member : members) {
        if (member.is_variant != variants) continue;
        Put(member.value, &(*item.place)[member.name], item, member.name);
      }
    }
  }

  // Reads all members, those of super classes first.
  void Collect(const Object& object, const ClassInfo& info, std::vector<Member>* members) const {
    if (info.super != nullptr) Collect(object, *info.super, members);
    const auto wanted = [&](std::string_view name) {
      return !options_.skip || !options_.skip(info.name, name);
    };
    for (const Property& property : info.properties) {
      if (!wanted(property.name)) continue;
      members->push_back({std::string(property.name), Get(object, property.name),
                          property.kind == TypeKind::kVariant});
    }
    for (const Method& method : info.methods) {
      const Declaration& declaration = method.declaration;
      if (method.result_kind != TypeKind::kArray || !declaration.parameters.empty()) continue;
      if (!wanted(declaration.name)) continue;
      members->push_back({declaration.name, Call(object, method.row->declaration), false});
    }
  }

  const MirrorOptions& options_;
  std::vector<Item> waiting_;
  std::vector<Step> steps_;
  std::size_t first_new_ = 0;
  std::unordered_map<const Thing*, Seen> seen_;
};

}  // namespace

std::string EscapeBytes(std::string_view bytes) {
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\\') {
      text += "\\\\";
    } else if (byte >= 0x20 && byte < 0x7F) {
      text += c;
    } else {
      text += "\\x";
      text += kDigits[byte >> 4U];
      text += kDigits[byte & 15U];
    }
  }
  return text;
}

Json MirrorText(const String& string) {
  if (string.IsNil()) return nullptr;
  Json json;
  const bool plain = string.encoding() == abi::kUnknownEncoding;
  const std::optional<std::string> text =
      plain ? Convert(string.bytes(), abi::kAscii, abi::kUtf8) : string.Utf8();
  if (text) {
    json["text"] = *text;
  } else {
    json["bytes"] = EscapeBytes(string.bytes());
  }
  json["encoding"] = EncodingName(string.encoding());
  return json;
}

Json Mirror(const Object& object, const MirrorOptions& options) {
  Json result;
  Walk(options).Run(object, &result);
  return result;
}

}  // namespace zqv::standin
