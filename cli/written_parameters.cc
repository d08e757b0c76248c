#include "cli/written_parameters.h"

#include <algorithm>
#include <cstddef>
#include <map>

#include "base/ascii.h"
#include "cli/charset_text.h"
#include "cli/header_reading.h"
#include "cli/mail_text.h"
#include "cli/text.h"
#include "standin/text.h"

namespace zqv::cli {
namespace {

// Takes a quoted string from the front of a text (RFC 5322, section 3.2.4). A backslash escapes
// only quotes and backslashes, because some mailers write Windows paths without doubling the
// backslashes.
std::string TakeQuoted(std::string_view* text) {
  std::string value;
  std::size_t i = 1;
  for (; i < text->size() && (*text)[i] != '"'; ++i) {
    const char next = i + 1 < text->size() ? (*text)[i + 1] : '\0';
    if ((*text)[i] == '\\' && (next == '"' || next == '\\')) ++i;
    value += (*text)[i];
  }
  text->remove_prefix(std::min(i + 1, text->size()));
  return value;
}

// Skips a comment at the front of a text (RFC 5322, section 3.2.2). A comment without an end
// extends to the end of the text.
void SkipComment(std::string_view* text) {
  std::size_t depth = 0;
  for (std::size_t i = 0; i < text->size(); ++i) {
    if ((*text)[i] == '\\') {
      ++i;
    } else if ((*text)[i] == '(') {
      ++depth;
    } else if ((*text)[i] == ')' && --depth == 0) {
      text->remove_prefix(i + 1);
      return;
    }
  }
  *text = {};
}

void SkipBlanksAndComments(std::string_view* text) {
  while (!text->empty()) {
    if (base::IsBlank(text->front())) {
      text->remove_prefix(1);
    } else if (text->front() == '(') {
      SkipComment(text);
    } else {
      return;
    }
  }
}

std::string_view TakeUpTo(std::string_view ends, std::string_view* text) {
  const std::string_view piece = text->substr(0, text->find_first_of(ends));
  text->remove_prefix(piece.size());
  return Trim(piece);
}

// The parts of a value such as "utf-8'en'%C3%9C": the charset and the text.
struct Extended {
  std::string charset;
  std::string_view text;
};

Extended SplitExtended(std::string_view value) {
  const std::size_t first = value.find('\'');
  const std::size_t second = first == kNowhere ? kNowhere : value.find('\'', first + 1);
  if (second == kNowhere) return {{}, value};
  return {std::string(value.substr(0, first)), value.substr(second + 1)};
}

// Returns the number of a piece: 3 for "filename*3" and "filename*3*". `star` is "filename*".
// Nothing for other names.
std::optional<std::size_t> PieceNumber(std::string_view name, std::string_view star) {
  if (name.substr(0, star.size()) != star) return std::nullopt;
  std::string_view digits = name.substr(star.size());
  if (!digits.empty() && digits.back() == '*') digits.remove_suffix(1);
  return ReadNumber(digits);
}

std::string Decoded(const std::string& bytes, const std::string& charset) {
  return Utf8Of(bytes, charset).value_or(GuessedUtf8(bytes));
}

}  // namespace

WrittenParameters::WrittenParameters(std::string_view value) {
  const std::string line = Unfolded(value);
  std::string_view rest = line;
  SkipBlanksAndComments(&rest);
  main_ = standin::LowerName(TakeUpTo(";(", &rest));
  while (!rest.empty()) {
    SkipBlanksAndComments(&rest);
    if (rest.empty()) break;
    if (rest.front() == ';') {
      rest.remove_prefix(1);
      continue;
    }
    const std::string_view name = TakeUpTo("=;", &rest);
    if (rest.empty() || rest.front() == ';') continue;  // an empty parameter
    rest.remove_prefix(1);
    SkipBlanksAndComments(&rest);
    std::string text;
    if (!rest.empty() && rest.front() == '"') {
      text = TakeQuoted(&rest);
      TakeUpTo(";", &rest);  // text after the value is ignored
    } else {
      text = TakeUpTo(";", &rest);
    }
    list_.push_back({standin::LowerName(name), std::move(text)});
  }
}

const WrittenParameters::Written* WrittenParameters::Find(std::string_view name) const {
  const auto found = std::find_if(list_.begin(), list_.end(),
                                  [&](const Written& written) { return written.name == name; });
  return found == list_.end() ? nullptr : &*found;
}

std::optional<std::string> WrittenParameters::Text(std::string_view name) const {
  std::optional<std::string> text = ExtendedText(name);
  if (text) return text;
  const Written* const plain = Find(name);
  if (plain == nullptr) return std::nullopt;
  return ReadHeaderText(plain->value);
}

std::optional<std::string> WrittenParameters::ExtendedText(std::string_view name) const {
  const std::string star = std::string(name) + '*';
  if (const Written* const whole = Find(star)) {
    const Extended extended = SplitExtended(whole->value);
    return Decoded(Unescaped(extended.text), extended.charset);
  }
  std::map<std::size_t, const Written*> pieces;
  for (const Written& written : list_) {
    const std::optional<std::size_t> number = PieceNumber(written.name, star);
    if (number) pieces.emplace(*number, &written);
  }
  std::string bytes;
  std::string charset;
  std::size_t next = 0;
  for (const auto& [number, piece] : pieces) {
    if (number != next++) break;
    if (piece->name.back() != '*') {
      bytes += piece->value;
      continue;
    }
    const Extended extended =
        number == 0 ? SplitExtended(piece->value) : Extended{{}, piece->value};
    if (number == 0) charset = extended.charset;
    bytes += Unescaped(extended.text);
  }
  if (next == 0 || pieces.begin()->first != 0) return std::nullopt;
  if (charset.empty()) return ReadHeaderText(bytes);
  return Decoded(bytes, charset);
}

bool WrittenParameters::IsRepeated(std::string_view name) const {
  const Written* const first = Find(name);
  return first != nullptr && std::any_of(list_.begin(), list_.end(), [&](const Written& other) {
           return other.name == name && other.value != first->value;
         });
}

}  // namespace zqv::cli
