#include "cli/print_text.h"

#include <string>

#include "cli/text.h"

namespace zqv::cli {

void PrintText(const standin::String& string, bool raw, Output* output) {
  if (raw) {
    output->Print(string.bytes());
    return;
  }
  const std::string text = Output::IsTerminal() ? SafeText(string, Lines::kMany) : DataText(string);
  output->Print(text);
  if (!text.empty() && text.back() != '\n') output->PrintLine("");
}

}  // namespace zqv::cli
