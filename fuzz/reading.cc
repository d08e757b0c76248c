#include "fuzz/reading.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <unordered_set>
#include <utility>
#include <vector>

#include "fuzz/relations.h"
#include "fuzz/target.h"
#include "standin/host.h"

namespace zqv::fuzz {
namespace {

using standin::Object;
using standin::Value;

// A loop instead of recursion, because messages may be nested thousands deep and stacks may be
// small.
class Reader {
 public:
  void Run(const Object& top) {
    Add(top);
    for (std::size_t i = 0; i < objects_.size(); ++i) {
      const Object object = objects_[i];
      Read(object);
      ExpectRelations(object);
    }
  }

 private:
  void Add(const Object& object) {
    if (object.IsNil() || object.IsArray()) return;
    if (seen_.insert(object.thing()).second) objects_.push_back(object);
  }

  void Add(const Value& value) {
    if (const auto* const object = std::get_if<Object>(&value)) Add(*object);
  }

  void Read(const Object& object) {
    const auto* info = standin::Host::Get("a fuzz target").classes().Find(object.ClassName());
    for (; info != nullptr; info = info->super) {
      for (const standin::Property& property : info->properties) {
        RaisedBy([&] { Add(standin::Get(object, property.name)); });
      }
      for (const standin::Method& method : info->methods) CallMethod(object, method);
    }
  }

  void CallMethod(const Object& object, const standin::Method& method) {
    const std::string_view declaration = method.row->declaration;
    if (method.declaration.name == "Constructor") return;
    const auto& parameters = method.declaration.parameters;
    if (parameters.empty()) {
      RaisedBy([&] { AddElements(standin::Call(object, declaration)); });
    } else if (standin::KindOf(parameters[0].type) == standin::TypeKind::kString) {
      for (const char* name : {"subject", "No-Such-Field"}) {
        RaisedBy([&] { Add(standin::Call(object, declaration, standin::MakeString(name))); });
      }
    }
  }

  void AddElements(const Value& value) {
    const auto* const array = std::get_if<Object>(&value);
    if (array == nullptr || array->IsNil() || !array->IsArray()) return;
    for (std::int64_t i = 0; i < array->Size(); ++i) Add(array->At(i));
  }

  // Objects that were read. They are held, so that no address is used for two of them.
  std::vector<Object> objects_;
  std::unordered_set<const void*> seen_;
};

}  // namespace

void ReadEverything(const Object& top) {
  Reader reader;
  reader.Run(top);
}

std::string RaisedBy(const std::function<void()>& work) {
  try {
    work();
  } catch (const standin::HostException& exception) {
    return exception.class_name + ": " + exception.message;
  }
  return {};
}

std::string Show(const Value& value) {
  const auto* const string = std::get_if<standin::String>(&value);
  if (string == nullptr || string->IsNil()) return "nil";
  std::array<char, 16> encoding{};
  std::snprintf(encoding.data(), encoding.size(), "0x%x ", string->encoding());
  return encoding.data() + std::string(string->bytes());
}

std::string ShowProperty(const Object& object, std::string_view property) {
  return Show(standin::Get(object, property));
}

std::optional<std::string> TextOf(const Value& value) {
  const auto* const string = std::get_if<standin::String>(&value);
  if (string == nullptr || string->IsNil()) return std::nullopt;
  std::optional<std::string> text = string->Utf8();
  if (!text.has_value()) Fail("no text can be had of " + Escaped(Show(value)));
  return text;
}

}  // namespace zqv::fuzz
