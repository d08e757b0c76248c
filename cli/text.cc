#include "cli/text.h"

#include <locale.h>
#include <wchar.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <system_error>

#include "abi/encodings.h"
#include "base/ascii.h"
#include "cli/utf8.h"

namespace zqv::cli {
namespace {

// Formats a number with at least `digits` hexadecimal digits.
std::string Hex(char32_t value, std::size_t digits) {
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  for (; value != 0; value >>= 4U) text.insert(text.begin(), kDigits[value & 15U]);
  return std::string(digits - std::min(digits, text.size()), '0') + text;
}

std::string EscapedByte(char32_t byte) { return "\\x" + Hex(byte, 2); }

// Converts CR and CRLF to line feeds.
std::string WithLineFeeds(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r') {
      result += text[i];
    } else if (i + 1 == text.size() || text[i + 1] != '\n') {
      result += '\n';
    }
  }
  return result;
}

// Escapes a text. Unless `is_utf8`, escapes every byte above 0x7F.
std::string EscapeAll(std::string_view text, Lines lines, bool is_utf8) {
  std::string safe;
  safe.reserve(text.size());
  while (!text.empty()) {
    const CodePoint c = FirstCodePoint(text);
    const bool kept = c.value == '\t' || (c.value == '\n' && lines == Lines::kMany);
    if (!kept && (!c.valid || IsControl(c.value))) {
      safe += EscapedByte(c.value);
    } else if (IsDirectionOverride(c.value) ||
               (lines == Lines::kOne && c.valid && IsInvisible(c.value))) {
      safe += "\\u{" + Hex(c.value, 4) + "}";
    } else if (c.bytes > 1 && !is_utf8) {
      for (const char byte : text.substr(0, c.bytes)) {
        safe += EscapedByte(static_cast<unsigned char>(byte));
      }
    } else {
      safe += text.substr(0, c.bytes);
    }
    text.remove_prefix(c.bytes);
  }
  return safe;
}

std::string Escape(std::string_view text, Lines lines, bool is_utf8) {
  if (lines == Lines::kOne) return EscapeAll(text, lines, is_utf8);
  return EscapeAll(WithLineFeeds(text), lines, is_utf8);
}

#if defined(_WIN32)
// On Windows only tests use this, and none of them prints columns.
struct WidthLocale {
  WidthLocale() {}
};
int wcwidth(wchar_t) { return 1; }
#else
// Sets a UTF-8 locale for wcwidth in this thread only, because the library must not notice it.
class WidthLocale {
 public:
  WidthLocale() : before_(uselocale(Utf8Locale())) {}
  ~WidthLocale() { uselocale(before_); }
  WidthLocale(const WidthLocale&) = delete;
  WidthLocale& operator=(const WidthLocale&) = delete;

 private:
  // Null when the system lacks the locale; then uselocale changes nothing.
  static locale_t Utf8Locale() {
    static const locale_t kLocale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return kLocale;
  }

  const locale_t before_;
};
#endif

constexpr std::size_t kAnyWidth = std::numeric_limits<std::size_t>::max();

// The longest start of a text that fits into a number of columns.
struct Fitting {
  std::size_t bytes = 0;
  std::size_t columns = 0;
};

Fitting Fit(std::string_view text, std::size_t width) {
  const WidthLocale locale;
  Fitting fitting;
  while (fitting.bytes < text.size()) {
    const CodePoint c = FirstCodePoint(text.substr(fitting.bytes));
    const int columns = wcwidth(static_cast<wchar_t>(c.value));
    const std::size_t more = columns < 0 ? 1 : static_cast<std::size_t>(columns);
    if (more > width - fitting.columns) break;
    fitting.bytes += c.bytes;
    fitting.columns += more;
  }
  return fitting;
}

}  // namespace

std::string SafeText(std::string_view text, Lines lines) { return Escape(text, lines, true); }

std::string SafeText(const standin::String& string, Lines lines) {
  const std::optional<std::string> utf8 = string.Utf8();
  if (utf8) return SafeText(*utf8, lines);
  return Escape(string.bytes(), lines, string.encoding() == abi::kUtf8);
}

std::string DataText(const standin::String& string) {
  const std::optional<std::string> utf8 = string.Utf8();
  return utf8 ? WithLineFeeds(*utf8) : SafeText(string, Lines::kMany);
}

std::string SafeLine(const standin::String& string) {
  return std::string(Trim(SafeText(string, Lines::kOne)));
}

std::string PlainLine(const standin::String& string) {
  const std::optional<std::string> utf8 = string.Utf8();
  return std::string(Trim(utf8 ? *utf8 : SafeText(string, Lines::kOne)));
}

std::optional<std::size_t> ReadNumber(std::string_view text) {
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

bool StartsWith(std::string_view text, std::string_view start) {
  return base::EqualsIgnoringCase(text.substr(0, start.size()), start);
}

std::size_t DisplayWidth(std::string_view text) { return Fit(text, kAnyWidth).columns; }

std::string CutToWidth(std::string_view text, std::size_t width) {
  const Fitting whole = Fit(text, width);
  if (whole.bytes == text.size()) return std::string(text);
  constexpr std::string_view kEllipsis = "\xE2\x80\xA6";
  const Fitting part = Fit(text, width - std::min<std::size_t>(width, 1));
  return std::string(text.substr(0, part.bytes)).append(kEllipsis);
}

std::string_view Trim(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string Grouped(std::size_t number) {
  constexpr std::size_t kGroup = 3;
  std::string text = std::to_string(number);
  for (std::size_t i = text.size(); i > kGroup; i -= kGroup) text.insert(i - kGroup, ",");
  return text;
}

std::string Counted(std::size_t number, const std::string& noun) {
  return Grouped(number) + " " + noun + (number == 1 ? "" : "s");
}

std::string ByteCount(std::size_t bytes) {
  return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
}

}  // namespace zqv::cli
