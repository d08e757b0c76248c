// `zqv json`: everything that the classes give about a message.
//
// One document for each file, {"format_version", "file", "message"}, one after the other. A JSON
// text holds control characters as escapes; those that steer terminals beside them are escaped too.
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "cli/document.h"
#include "cli/text.h"
#include "cli/utf8.h"
#include "cli/verbs.h"

namespace zqv::cli {
namespace {

using standin::Object;

constexpr int kIndent = 2;

// The same JSON. All that is not ASCII stands inside its strings, and so does DEL.
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

}  // namespace

int Json(const Session& session, const Request& request, Output* output) {
  const auto visit = [&](const std::string& file, const Object& email) {
    const nlohmann::ordered_json document = {
        {"format_version", kDocumentVersion},
        {"file", SafeText(file, Lines::kOne)},
        {"message", DescribeMessage(email, request.raw ? RawText : ReadableText)}};
    output->PrintLine(EscapeControls(document.dump(kIndent)));
    return true;
  };
  return ForEachFile(session, request.inputs, output, visit, Headings::kNone);
}

}  // namespace zqv::cli
