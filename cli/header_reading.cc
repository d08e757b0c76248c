#include "cli/header_reading.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "base/ascii.h"
#include "cli/charset_text.h"
#include "cli/mail_text.h"
#include "cli/text.h"
#include "text/transfer_codes.h"

namespace zqv::cli {
namespace {

// Decodes the Q encoding (RFC 2047, section 4.2).
std::string DecodeQ(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool is_code = text[i] == '=' && i + 2 < text.size();
    const int high = is_code ? base::HexadecimalValue(text[i + 1]) : -1;
    const int low = is_code ? base::HexadecimalValue(text[i + 2]) : -1;
    if (high >= 0 && low >= 0) {
      bytes += static_cast<char>(high * 16 + low);
      i += 2;
    } else {
      bytes += text[i] == '_' ? ' ' : text[i];
    }
  }
  return bytes;
}

std::string BytesOf(const EncodedWord& word) {
  constexpr std::size_t kDelimiterBytes = 5;  // length of "=?" "?" letter "?"
  const std::size_t begin = word.charset.size() + kDelimiterBytes;
  const std::string_view text = word.text.substr(begin, word.text.size() - begin - 2);
  const bool is_base64 = word.letter == 'B' || word.letter == 'b';
  return is_base64 ? std::string(text::DecodeBase64(text).view()) : DecodeQ(text);
}

std::string_view CharsetOf(const EncodedWord& word) {
  return word.charset.substr(0, word.charset.find('*'));
}

bool IsBlank(std::string_view text) { return text.find_first_not_of(" \t") == kNowhere; }

// Returns the position after a nested construct at the start of `text`: a quoted string, comment or
// address in angle brackets. The end of the text when it is not closed.
std::size_t EndOfNested(std::string_view text) {
  const char open = text.front();
  const char close = open == '(' ? ')' : open == '<' ? '>' : open;
  std::size_t depth = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && open != '<') {
      ++i;
    } else if (text[i] == close && (open != '"' || i > 0)) {
      if (open == '(' ? --depth == 0 : true) return i + 1;
    } else if (text[i] == open && open == '(') {
      ++depth;
    }
  }
  return text.size();
}

}  // namespace

std::string ReadHeaderText(std::string_view value) {
  const std::string line = Unfolded(value);
  const std::vector<EncodedWord> words = EncodedWordsOf(line);
  std::string text;
  std::size_t at = 0;
  for (std::size_t i = 0; i < words.size();) {
    const auto begin = static_cast<std::size_t>(words[i].text.data() - line.data());
    const std::string_view between = std::string_view(line).substr(at, begin - at);
    // Blanks between two encoded words only separate them (RFC 2047, section 6.2).
    if (i == 0 || !IsBlank(between)) text += GuessedUtf8(between);
    // Some mailers split words within a character, so neighbouring words of one charset are decoded
    // together.
    std::string bytes = BytesOf(words[i]);
    std::size_t end = begin + words[i].text.size();
    std::size_t next = i + 1;
    for (; next < words.size(); ++next) {
      const auto start = static_cast<std::size_t>(words[next].text.data() - line.data());
      const bool is_neighbour =
          IsBlank(std::string_view(line).substr(end, start - end)) &&
          base::EqualsIgnoringCase(CharsetOf(words[next]), CharsetOf(words[i]));
      if (!is_neighbour) break;
      bytes += BytesOf(words[next]);
      end = start + words[next].text.size();
    }
    const std::optional<std::string> decoded = Utf8Of(bytes, CharsetOf(words[i]));
    text += decoded ? *decoded : line.substr(begin, end - begin);
    at = end;
    i = next;
  }
  return text += GuessedUtf8(std::string_view(line).substr(at));
}

std::vector<std::string> ReadAddresses(std::string_view value) {
  const std::string line = Unfolded(value);
  std::vector<std::string> entries;
  std::size_t begin = 0;
  bool is_group = false;
  const auto add = [&](std::size_t end) {
    const std::string_view entry = Trim(std::string_view(line).substr(begin, end - begin));
    if (!entry.empty()) entries.push_back(ReadHeaderText(entry));
  };
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '"' || line[i] == '(' || line[i] == '<') {
      i += EndOfNested(std::string_view(line).substr(i)) - 1;
    } else if (line[i] == ':') {
      is_group = true;
    } else if (line[i] == ';') {
      add(std::exchange(is_group, false) ? i + 1 : i);
      begin = i + 1;
    } else if (line[i] == ',' && !is_group) {
      add(i);
      begin = i + 1;
    }
  }
  add(line.size());
  return entries;
}

std::string MailboxOf(std::string_view entry) {
  const auto is_mailbox = [](std::string_view text) {
    const std::size_t at = text.rfind('@');
    return at != kNowhere && at > 0 && at + 1 < text.size() && text.back() != '"' &&
           text.find_first_of(" \t<>,;()") == kNowhere;
  };
  const std::size_t open = entry.rfind('<');
  if (open != kNowhere) {
    const std::size_t close = entry.find('>', open);
    const std::string_view inside =
        Trim(entry.substr(open + 1, close == kNowhere ? kNowhere : close - open - 1));
    return is_mailbox(inside) ? std::string(inside) : std::string();
  }
  // Matches "ada@example.com (Ada)" and "ada@example.com".
  while (!entry.empty()) {
    const std::string_view word = entry.substr(0, entry.find_first_of(" \t(),;:"));
    if (is_mailbox(word)) return std::string(word);
    entry.remove_prefix(std::min(entry.size(), word.size() + 1));
  }
  return {};
}

}  // namespace zqv::cli
