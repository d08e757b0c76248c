// `zqv html2text` and `zqv decode`: convert texts that are not in a message.
#include "standin/convert.h"

#include <algorithm>
#include <exception>
#include <string>
#include <string_view>

#include "abi/encodings.h"
#include "cli/print_json.h"
#include "cli/print_text.h"
#include "cli/text.h"
#include "cli/verbs.h"
#include "standin/application.h"

namespace zqv::cli {
namespace {

using standin::String;

// Labels bytes that are not UTF-8 with the unknown encoding, for which the library has a rule.
String StringOf(const std::string& bytes) {
  const bool is_utf8 = standin::Convert(bytes, abi::kUtf8, abi::kUtf8).has_value();
  return standin::MakeString(bytes, is_utf8 ? abi::kUtf8 : abi::kUnknownEncoding);
}

String CallOnText(const char* declaration, const std::string& bytes) {
  const standin::Value result = standin::CallShared(kEmailClass, declaration, StringOf(bytes));
  const auto* const text = std::get_if<String>(&result);
  return text != nullptr ? *text : String();
}

std::string Decoded(const std::string& text, Lines lines) {
  const String decoded = CallOnText("DecodeInline(Text as String) as String", text);
  return lines == Lines::kOne ? SafeText(decoded, lines) : DataText(decoded);
}

// Calls `use` with each text. "-" stands for the lines of standard input.
template <typename Use>
void ForEachText(const std::vector<std::string>& texts, const Use& use) {
  for (const std::string& text : texts) {
    if (text != kStandardInput) {
      use(text);
      continue;
    }
    const std::string lines = ReadBytes(text);
    for (std::string_view rest = lines; !rest.empty();) {
      const std::string_view line = rest.substr(0, rest.find('\n'));
      use(std::string(line));
      rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    }
  }
}

}  // namespace

int HtmlToText(const Session&, const Request& request, Output* output) {
  const std::string& file = request.source.inputs.front();
  try {
    PrintText(CallOnText("HTMLToPlainText(HTMLText as String) as String", ReadBytes(file)), false,
              output);
    return 0;
  } catch (const std::exception& error) {
    Complain(file + ": " + ReasonOf(error));
    return 1;
  }
}

int Decode(const Session&, const Request& request, Output* output) {
  JsonValue list = JsonValue::array();
  ForEachText(request.source.inputs, [&](const std::string& text) {
    if (request.json) {
      list.push_back(
          {{"text", DataText(StringOf(text))}, {"decoded", Decoded(text, Lines::kMany)}});
    } else {
      // Prints an empty line for an empty result, too.
      output->PrintLine(Decoded(text, Lines::kOne));
    }
  });
  if (request.json) PrintDocument("texts", std::move(list), output);
  return 0;
}

}  // namespace zqv::cli
