// `zqv headers`: the fields of a header as the library gives them, one "Name: value" a line.
#include <algorithm>
#include <stdexcept>
#include <vector>

#include "base/ascii.h"
#include "cli/message.h"
#include "cli/print_json.h"
#include "cli/text.h"
#include "cli/verbs.h"
#include "cli/visit.h"

namespace zqv::cli {
namespace {

using standin::Object;

// An empty name stands for every name.
std::vector<Object> FieldsNamed(const Object& header, const std::string& wanted) {
  std::vector<Object> fields = FieldsOf(header);
  const auto is_other = [&](const Object& field) {
    return !wanted.empty() && !base::EqualsIgnoringCase(TextMember(field, "Name").bytes(), wanted);
  };
  fields.erase(std::remove_if(fields.begin(), fields.end(), is_other), fields.end());
  return fields;
}

void PrintFields(const std::vector<Object>& fields, Output* output) {
  for (const Object& field : fields) {
    const std::string name = output->Strong(SafeLine(TextMember(field, "Name")) + ":");
    const std::string line = name + " " + SafeLine(TextMember(field, "Value"));
    output->PrintLine(Trim(line));
  }
}

JsonValue DescribeFields(const std::vector<Object>& fields) {
  JsonValue list = JsonValue::array();
  for (const Object& field : fields) {
    list.push_back({{"name", PlainLine(TextMember(field, "Name"))},
                    {"value", PlainLine(TextMember(field, "Value"))}});
  }
  return list;
}

}  // namespace

int Headers(const Session& session, const Request& request, Output* output) {
  const auto visit = [&](const std::string& file, const Object& email) {
    const Object part = FindPart(email, request.part);
    const std::vector<Object> fields = FieldsNamed(ObjectMember(part, "Header"), request.field);
    if (request.json) {
      PrintDocument(file, "fields", DescribeFields(fields), output);
    } else {
      PrintFields(fields, output);
    }
    if (fields.empty() && !request.field.empty()) {
      throw std::runtime_error("there is no field " + request.field);
    }
    return true;
  };
  return ForEachMessage(session, request, output, visit);
}

}  // namespace zqv::cli
