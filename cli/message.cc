#include "cli/message.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <variant>

#include "cli/text.h"

namespace zqv::cli {
namespace {

using standin::Object;
using standin::String;
using standin::Value;

// Returns the result of `read`. Nil when the member does not exist: the host then throws
// std::invalid_argument.
template <typename Read>
Value IfPresent(const Object& object, Read read) {
  if (object.IsNil()) return std::monostate();
  try {
    return read();
  } catch (const std::invalid_argument&) {
    return std::monostate();
  }
}

}  // namespace

Value Member(const Object& object, std::string_view property) {
  return IfPresent(object, [&] { return standin::Get(object, property); });
}

String TextMember(const Object& object, std::string_view property) {
  const Value value = Member(object, property);
  const auto* const text = std::get_if<String>(&value);
  return text != nullptr ? *text : String();
}

Object ObjectMember(const Object& object, std::string_view property) {
  const Value value = Member(object, property);
  const auto* const result = std::get_if<Object>(&value);
  return result != nullptr ? *result : Object();
}

std::vector<Object> ListMember(const Object& object, std::string_view declaration) {
  const Value value = IfPresent(object, [&] { return standin::Call(object, declaration); });
  const auto* const array = std::get_if<Object>(&value);
  std::vector<Object> list;
  if (array == nullptr || !array->IsArray()) return list;
  for (std::int64_t i = 0; i < array->Size(); ++i) {
    const Value element = array->At(i);
    if (const auto* const item = std::get_if<Object>(&element)) list.push_back(*item);
  }
  return list;
}

std::vector<Object> PartsOf(const Object& entity) {
  return ListMember(ObjectMember(entity, "Body"), "Parts as MimeEntityZQV()");
}

std::vector<Object> FieldsOf(const Object& header) {
  return ListMember(header, "Fields as MimeFieldZQV()");
}

std::string MimeTypeOf(const Object& header) {
  const std::string text = SafeLine(TextMember(header, "ContentType"));
  const std::string_view type = Trim(std::string_view(text).substr(0, text.find(';')));
  return type == "/" ? std::string() : std::string(type);
}

PartTree::PartTree(const Object& email) {
  std::vector<Part> waiting;
  waiting.push_back({email, 0, 0, 0, false});
  while (!waiting.empty()) {
    parts_.push_back(std::move(waiting.back()));
    waiting.pop_back();
    const std::size_t index = parts_.size() - 1;
    const std::vector<Object> children = PartsOf(parts_[index].entity);
    parts_[index].has_parts = !children.empty();
    for (std::size_t ordinal = children.size(); ordinal > 0; --ordinal) {
      waiting.push_back({children[ordinal - 1], index, ordinal, parts_[index].depth + 1, false});
    }
  }
}

std::string PartNumber(const std::vector<std::size_t>& ordinals) {
  if (ordinals.empty()) return "0";
  std::string number;
  for (auto ordinal = ordinals.rbegin(); ordinal != ordinals.rend(); ++ordinal) {
    if (!number.empty()) number += '.';
    number += std::to_string(*ordinal);
  }
  return number;
}

std::string PartTree::Number(std::size_t index) const {
  std::vector<std::size_t> ordinals;
  for (; index != 0; index = parts_[index].parent) ordinals.push_back(parts_[index].ordinal);
  return PartNumber(ordinals);
}

Object FindPart(const Object& email, const std::string& number) {
  Object part = email;
  if (number == "0") return part;
  const char* position = number.data();
  const char* const end = position + number.size();
  const char* next = nullptr;
  do {
    std::size_t ordinal = 0;
    const auto result = std::from_chars(position, end, ordinal);
    next = result.ptr;
    const std::vector<Object> children = PartsOf(part);
    const bool is_read = result.ec == std::errc() && (next == end || *next == '.');
    if (!is_read || ordinal == 0 || ordinal > children.size()) {
      throw std::runtime_error("there is no part " + number);
    }
    part = children[ordinal - 1];
    position = next + 1;
  } while (next != end);
  return part;
}

PartFinder::PartFinder(const PartTree& tree) {
  for (std::size_t i = 0; i < tree.parts().size(); ++i) {
    const Object body = ObjectMember(tree.parts()[i].entity, "Body");
    if (!body.IsNil()) by_body_.emplace(body.thing(), i);
  }
}

std::optional<std::size_t> PartFinder::Find(const Object& record) const {
  const auto found = by_body_.find(ObjectMember(record, "Body").thing());
  return found == by_body_.end() ? std::nullopt : std::optional<std::size_t>(found->second);
}

std::vector<Attached> ListAttached(const Object& email, const PartTree& tree) {
  const PartFinder finder(tree);
  std::vector<Attached> list;
  const auto add = [&](std::string_view declaration, bool is_inline) {
    for (const Object& record : ListMember(email, declaration)) {
      list.push_back({record, is_inline, finder.Find(record)});
    }
  };
  add(kAttachments, false);
  add(kInlines, true);
  std::stable_sort(list.begin(), list.end(), [](const Attached& a, const Attached& b) {
    constexpr std::size_t kLast = std::numeric_limits<std::size_t>::max();
    return a.part.value_or(kLast) < b.part.value_or(kLast);
  });
  return list;
}

}  // namespace zqv::cli
