#include "cli/check_encoded_words.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "abi/encodings.h"
#include "base/ascii.h"
#include "cli/mail_text.h"
#include "cli/session.h"
#include "standin/application.h"

namespace zqv::cli {
namespace {

using standin::String;

// Decodes an ASCII text with the library. Nil when the library lacks that method.
String Decoded(std::string_view text) {
  try {
    const standin::Value result =
        standin::CallShared(kEmailClass, "DecodeInline(Text as String) as String",
                            standin::MakeString(text, abi::kAscii));
    const auto* const decoded = std::get_if<String>(&result);
    return decoded != nullptr ? *decoded : String();
  } catch (const std::invalid_argument&) {
    return {};
  }
}

// Whether the words have different charsets. Words in ASCII do not count.
bool IsMixed(const std::vector<String>& words, std::string_view value) {
  const abi::Encoding whole = Decoded(value).encoding();
  return std::any_of(words.begin(), words.end(), [&](const String& word) {
    return !word.IsNil() && word.encoding() != abi::kAscii && word.encoding() != whole;
  });
}

}  // namespace

void CheckEncodedWords(std::string_view name, std::string_view value, const Place& place,
                       Findings* findings) {
  const std::string unfolded = Unfolded(value);
  bool has_lower_case = false;
  bool has_unknown = false;
  std::vector<String> decoded_words;
  for (const EncodedWord& word : EncodedWordsOf(unfolded)) {
    if (word.letter == 'b' || word.letter == 'q') {
      if (std::exchange(has_lower_case, true)) continue;
      findings->Add(FindingKind::kLowerCaseWord, place,
                    {name, std::string_view(&word.letter, 1), Quoted(word.text)});
      continue;
    }
    decoded_words.push_back(Decoded(word.text));
    if (decoded_words.back().bytes() == word.text && !std::exchange(has_unknown, true)) {
      findings->Add(FindingKind::kUnknownWordCharset, place, {name, Quoted(word.charset)});
    }
  }
  if (!has_unknown && base::EqualsIgnoringCase(name, "Subject") &&
      IsMixed(decoded_words, unfolded)) {
    findings->Add(FindingKind::kMixedCharsets, place, {name});
  }
}

}  // namespace zqv::cli
