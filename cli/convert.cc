// `zqv html2text` and `zqv decode`: texts that are in no message.
#include "standin/convert.h"

#include <algorithm>
#include <exception>
#include <string>
#include <string_view>

#include "abi/encodings.h"
#include "cli/print_text.h"
#include "cli/text.h"
#include "cli/verbs.h"
#include "standin/application.h"

namespace zqv::cli {
namespace {

using standin::String;

// Bytes that are no UTF-8 are of unknown encoding; the library has a rule for those.
String StringOf(const std::string& bytes) {
  const bool is_utf8 = standin::Convert(bytes, abi::kUtf8, abi::kUtf8).has_value();
  return standin::MakeString(bytes, is_utf8 ? abi::kUtf8 : abi::kUnknownEncoding);
}

String CallOnText(const char* declaration, const std::string& bytes) {
  const standin::Value result = standin::CallShared(kEmailClass, declaration, StringOf(bytes));
  const auto* const text = std::get_if<String>(&result);
  return text != nullptr ? *text : String();
}

// One line for each text, whatever it decodes to.
void PrintDecoded(const std::string& text, Output* output) {
  const String decoded = CallOnText("DecodeInline(Text as String) as String", text);
  output->PrintLine(SafeText(decoded, Lines::kOne));
}

}  // namespace

int HtmlToText(const Session&, const Request& request, Output* output) {
  const std::string& file = request.inputs.front();
  try {
    PrintText(CallOnText("HTMLToPlainText(HTMLText as String) as String", ReadBytes(file)), false,
              output);
    return 0;
  } catch (const std::exception& error) {
    Complain(file + ": " + error.what());
    return 1;
  }
}

int Decode(const Session&, const Request& request, Output* output) {
  for (const std::string& text : request.inputs) {
    if (text != "-") {
      PrintDecoded(text, output);
      continue;
    }
    const std::string lines = ReadBytes(text);
    for (std::string_view rest = lines; !rest.empty();) {
      const std::string_view line = rest.substr(0, rest.find('\n'));
      PrintDecoded(std::string(line), output);
      rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    }
  }
  return 0;
}

}  // namespace zqv::cli
