#include "tests/growth/work.h"

#include <cstdint>
#include <optional>
#include <unordered_set>
#include <utility>
#include <variant>

#include "standin/application.h"
#include "standin/host.h"

namespace zqv::growth {
namespace {

using standin::Object;
using standin::Value;

constexpr std::string_view kConstruct = "construct";
constexpr std::string_view kRead = "read";
constexpr std::string_view kStrip = "strip";
constexpr std::string_view kRelease = "release";
constexpr std::string_view kCall = "call";

// Reads each member of each object below a first one once, and each list both as an array and
// element by element. It is a loop, so that deep trees need no stack.
class Reader {
 public:
  void Run(const Object& top) {
    Add(top);
    while (!waiting_.empty()) {
      const Object object = std::move(waiting_.back());
      waiting_.pop_back();
      if (object.IsArray()) {
        for (std::int64_t i = 0; i < object.Size(); ++i) Add(object.At(i));
      } else {
        Read(object);
      }
    }
  }

 private:
  void Add(const Value& value) {
    const auto* const object = std::get_if<Object>(&value);
    if (object == nullptr || object->IsNil()) return;
    if (met_.insert(object->thing()).second) waiting_.push_back(*object);
  }

  void Read(const Object& object) {
    const auto* info = standin::Host::Get("the reader").classes().Find(object.ClassName());
    for (; info != nullptr && info->native == standin::NativeKind::kNone; info = info->super) {
      for (const standin::Property& property : info->properties) {
        Add(standin::Get(object, property.name));
      }
      for (const standin::Method& method : info->methods) CallMethod(object, *info, method);
    }
  }

  void CallMethod(const Object& object, const standin::ClassInfo& info,
                  const standin::Method& method) {
    const standin::Declaration& declaration = method.declaration;
    const std::string_view name = method.row->declaration;
    // Constructors are called elsewhere, and SourceWithoutAttachments is a phase of its own.
    if (declaration.name == "Constructor" || declaration.name == "SourceWithoutAttachments") return;
    if (declaration.parameters.empty()) {
      Add(standin::Call(object, name));
    } else if (standin::KindOf(declaration.parameters[0].type) == standin::TypeKind::kInteger) {
      const std::int64_t size = SizeOf(object, info, declaration.name);
      for (std::int64_t i = 0; i < size; ++i) standin::Call(object, name, i);
    } else {
      standin::Call(object, name, standin::MakeString("No-Such-Field"));
    }
  }

  // The size of the array that the method `list` without parameters returns.
  static std::int64_t SizeOf(const Object& object, const standin::ClassInfo& info,
                             const std::string& list) {
    for (const standin::Method& method : info.methods) {
      if (method.declaration.name != list || !method.declaration.parameters.empty()) continue;
      const Object array = standin::ObjectOf(standin::Call(object, method.row->declaration));
      return array.IsNil() ? 0 : array.Size();
    }
    return 0;
  }

  std::vector<Object> waiting_;
  std::unordered_set<const standin::Thing*> met_;  // valid as long as the first object is
};

// Calls the constructor on an existing object, which stays when the constructor raises.
std::string ConstructOn(const Object& object, std::string_view constructor, const Value& content) {
  try {
    standin::CallWith(object, constructor, {content});
  } catch (const standin::HostException& exception) {
    return exception.message;
  }
  return {};
}

std::string UseClass(std::string_view class_name, const std::string& input, Meter& meter) {
  const Value content = standin::MakeString(input);
  meter.Enter(kConstruct);
  Object object = standin::NewInstance(class_name);
  const std::string raised = ConstructOn(object, "Constructor", content);
  meter.Enter(kRead);
  Reader().Run(object);
  meter.Enter(kRelease);
  object = Object();
  meter.Leave();
  return raised;
}

std::string UseSharedMethod(std::string_view declaration, const std::string& input, Meter& meter) {
  const Value text = standin::MakeString(input);
  meter.Enter(kCall);
  standin::CallShared("MimeEmailZQV", declaration, text);
  meter.Leave();
  return {};
}

}  // namespace

std::string UseMessage(const std::string& input, Meter& meter) {
  const Value content = standin::MakeString(input, abi::kUnknownEncoding);
  meter.Enter(kConstruct);
  Object message = standin::NewInstance("MimeEmailZQV");
  const std::string raised = ConstructOn(message, "Constructor(Content as string)", content);
  meter.Enter(kRead);
  Reader().Run(message);
  meter.Enter(kStrip);
  // A refused message still has its source, which SourceWithoutAttachments would refuse too.
  if (raised.empty()) standin::Call(message, "SourceWithoutAttachments");
  meter.Enter(kRelease);
  message = Object();
  meter.Leave();
  return raised;
}

std::string UseDecodeInline(const std::string& input, Meter& meter) {
  return UseSharedMethod("DecodeInline(Text as String) as String", input, meter);
}

std::string UseHtmlToPlainText(const std::string& input, Meter& meter) {
  return UseSharedMethod("HTMLToPlainText(HTMLText as String) as String", input, meter);
}

std::string UseMailbox(const std::string& input, Meter& meter) {
  return UseClass("MimeMailboxZQV", input, meter);
}

std::string UseGroup(const std::string& input, Meter& meter) {
  return UseClass("MimeGroupZQV", input, meter);
}

std::string UseAddress(const std::string& input, Meter& meter) {
  return UseClass("MimeAddressZQV", input, meter);
}

std::string UseMailboxList(const std::string& input, Meter& meter) {
  return UseClass("MimeMailboxListZQV", input, meter);
}

std::string UseAddressList(const std::string& input, Meter& meter) {
  return UseClass("MimeAddressListZQV", input, meter);
}

std::string UseField(const std::string& input, Meter& meter) {
  return UseClass("MimeFieldZQV", input, meter);
}

const std::vector<std::string_view>& PhaseNames() {
  static const std::vector<std::string_view> kNames = {kAllPhases, kConstruct, kRead,
                                                       kStrip,     kRelease,   kCall};
  return kNames;
}

}  // namespace zqv::growth
