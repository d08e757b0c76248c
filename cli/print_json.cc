#include "cli/print_json.h"

#include <string_view>
#include <utility>

#include "cli/text.h"
#include "cli/utf8.h"

namespace zqv::cli {
namespace {

constexpr int kIndent = 2;

// Escapes DEL and the control characters U+0080 to U+009F. In JSON they can only be inside strings.
std::string EscapeControls(const std::string& json) {
  static constexpr std::string_view kDigits = "0123456789abcdef";
  std::string escaped;
  escaped.reserve(json.size());
  for (std::string_view rest = json; !rest.empty();) {
    const CodePoint c = FirstCodePoint(rest);
    if (c.value >= ' ' && (IsControl(c.value) || IsDirectionOverride(c.value))) {
      escaped += "\\u";
      for (unsigned shift = 16; shift > 0; shift -= 4) {
        escaped += kDigits[c.value >> (shift - 4) & 15U];
      }
    } else {
      escaped += rest.substr(0, c.bytes);
    }
    rest.remove_prefix(c.bytes);
  }
  return escaped;
}

std::string Finished(JsonValue document, const char* key, JsonValue value,
                     DocumentForm form = DocumentForm::kIndented) {
  document[key] = std::move(value);
  return EscapeControls(document.dump(form == DocumentForm::kLine ? -1 : kIndent));
}

}  // namespace

std::string DocumentText(const std::string& name, const char* key, JsonValue value,
                         DocumentForm form) {
  JsonValue document = {{"format_version", kDocumentVersion},
                        {"file", SafeText(name, Lines::kOne)}};
  return Finished(std::move(document), key, std::move(value), form);
}

std::string DocumentText(const char* key, JsonValue value) {
  return Finished({{"format_version", kDocumentVersion}}, key, std::move(value));
}

void PrintDocument(const std::string& name, const char* key, JsonValue value, Output* output) {
  output->PrintLine(DocumentText(name, key, std::move(value)));
}

void PrintDocument(const char* key, JsonValue value, Output* output) {
  output->PrintLine(DocumentText(key, std::move(value)));
}

std::string JsonLine(const JsonValue& value) { return EscapeControls(value.dump()); }

JsonValue TextOrNull(const std::string& text) {
  return text.empty() ? JsonValue() : JsonValue(text);
}

JsonValue LineOrNull(const standin::String& string) { return TextOrNull(PlainLine(string)); }

}  // namespace zqv::cli
