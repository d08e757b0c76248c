// `zqv headers`: prints the fields of a header, one "Name: value" a line. Values are decoded for a
// reader, printed as bytes, or taken from the library.
#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/ascii.h"
#include "cli/attached_files.h"
#include "cli/header_reading.h"
#include "cli/message.h"
#include "cli/print_json.h"
#include "cli/text.h"
#include "cli/verbs.h"
#include "cli/visit.h"

namespace zqv::cli {
namespace {

using standin::Object;

struct FieldText {
  std::string name;
  std::string value;  // in UTF-8
  std::string_view bytes;
};

std::vector<FieldText> WrittenFields(const MessageSource& source, const std::string& number) {
  const mime::PartIndex index = source.FindPart(number);
  if (index == mime::kNoPart) throw std::runtime_error("there is no part " + number);
  const mime::Part& part = source.parts()[index];
  std::vector<FieldText> fields;
  for (std::size_t i = 0; i < part.field_count; ++i) {
    const mime::Field& field = source.message().fields()[part.first_field + i];
    fields.push_back({std::string(field.name), ReadHeaderText(ValueBytes(field)), field.bytes});
  }
  return fields;
}

std::vector<FieldText> GivenFields(const Object& part) {
  std::vector<FieldText> fields;
  for (const Object& field : FieldsOf(ObjectMember(part, "Header"))) {
    fields.push_back(
        {PlainLine(TextMember(field, "Name")), PlainLine(TextMember(field, "Value")), {}});
  }
  return fields;
}

void PrintFields(const std::vector<FieldText>& fields, bool raw, Output* output) {
  for (const FieldText& field : fields) {
    if (raw) {
      output->Print(field.bytes);
      output->PrintLine("");
      continue;
    }
    const auto safe = [](std::string_view text) { return SafeText(text, Lines::kOne); };
    const std::string line = output->Strong(safe(field.name) + ":") + " " + safe(field.value);
    output->PrintLine(Trim(line));
  }
}

JsonValue DescribeFields(const std::vector<FieldText>& fields) {
  JsonValue list = JsonValue::array();
  for (const FieldText& field : fields) {
    // The name is all text before the colon, so it may have any characters.
    list.push_back(
        {{"name", SafeText(std::string_view(field.name), Lines::kOne)}, {"value", field.value}});
  }
  return list;
}

}  // namespace

int Headers(const Session& session, const Request& request, Output* output) {
  const auto visit = [&](const std::string& file, const Object& email) {
    const MailReading reading(email);
    std::vector<FieldText> fields = request.classes ? GivenFields(FindPart(email, request.part))
                                                    : WrittenFields(reading.source(), request.part);
    const auto is_other = [&](const FieldText& field) {
      return !request.field.empty() && !base::EqualsIgnoringCase(field.name, request.field);
    };
    fields.erase(std::remove_if(fields.begin(), fields.end(), is_other), fields.end());
    if (request.json) {
      PrintDocument(file, "fields", DescribeFields(fields), output);
    } else {
      PrintFields(fields, request.raw, output);
    }
    if (fields.empty() && !request.field.empty()) {
      throw std::runtime_error("there is no field " + request.field);
    }
    return true;
  };
  return ForEachMessage(session, request, output, visit);
}

}  // namespace zqv::cli
