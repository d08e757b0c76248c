// `zqv classes`: prints all classes and members that the library registers.
#include <string>
#include <vector>

#include "cli/document.h"
#include "cli/print_json.h"
#include "cli/verbs.h"

namespace zqv::cli {
namespace {

std::string DeclarationOf(const standin::Property& property) {
  return std::string(property.row->name) + " as " + property.row->type;
}

// The keys of the class's objects in the document of `zqv json`, each with its member.
JsonValue DescribeKeys(const standin::ClassInfo& info) {
  JsonValue keys = JsonValue::object();
  for (const DocumentKey& key : DocumentKeys(info)) {
    keys[key.key] = key.property == nullptr ? std::string(key.method->row->declaration)
                                            : DeclarationOf(*key.property);
  }
  return keys;
}

JsonValue DescribeMembers(const standin::ClassInfo& info) {
  JsonValue members = JsonValue::array();
  const auto add_properties = [&](const std::vector<standin::Property>& properties, bool shared) {
    for (const standin::Property& property : properties) {
      members.push_back({{"kind", "property"},
                         {"declaration", DeclarationOf(property)},
                         {"shared", shared},
                         {"writable", property.row->setter != nullptr}});
    }
  };
  const auto add_methods = [&](const std::vector<standin::Method>& methods, bool shared) {
    for (const standin::Method& method : methods) {
      members.push_back(
          {{"kind", "method"}, {"declaration", method.row->declaration}, {"shared", shared}});
    }
  };
  add_properties(info.properties, false);
  add_methods(info.methods, false);
  add_properties(info.shared_properties, true);
  add_methods(info.shared_methods, true);
  return members;
}

}  // namespace

int Classes(const Session& session, const Request& request, Output* output) {
  if (!request.json) {
    output->Print(session.host().ListClasses());
    return 0;
  }
  JsonValue classes = JsonValue::array();
  for (const standin::ClassInfo* const info : session.host().classes().registered()) {
    classes.push_back(
        {{"name", info->name},
         {"super", info->super == nullptr ? JsonValue() : JsonValue(info->super->name)},
         {"members", DescribeMembers(*info)},
         {"json_keys", DescribeKeys(*info)}});
  }
  PrintDocument("classes", std::move(classes), output);
  return 0;
}

}  // namespace zqv::cli
