// Conversion of charsets by a file of tables, and of Unicode's encoding forms by code.
#include "standin/charset_tables.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <vector>

#include "standin/charset.h"
#include "standin/fatal.h"

namespace zqv::standin {
namespace {

constexpr char32_t kLast = 0x10FFFF;
constexpr bool IsSurrogate(char32_t c) { return c >= 0xD800 && c < 0xE000; }

// The runs of one table, sorted by the length of the key and then by the key.
class Mapping {
 public:
  void Add(const Run& run) {
    runs_.push_back(run);
    longest_ = std::max<std::size_t>(longest_, run.length);
  }
  std::size_t longest() const { return longest_; }

  // Finds the run that contains the key. Null when there is none.
  const Run* Find(std::size_t length, std::uint32_t key) const {
    const auto after = std::upper_bound(
        runs_.begin(), runs_.end(), key, [length](std::uint32_t wanted, const Run& run) {
          return run.length != length ? length < run.length : wanted < run.key;
        });
    if (after == runs_.begin()) return nullptr;
    const Run& run = *std::prev(after);
    return run.length == length && key - run.key < run.count ? &run : nullptr;
  }

 private:
  std::vector<Run> runs_;
  std::size_t longest_ = 0;
};

struct Charset {
  std::map<std::string, Mapping> states;  // by the sequence that switches to the state
  Mapping encode;
};

struct Tables {
  std::map<std::string, Charset, std::less<>> charsets;
  Mapping small_letters;
};

template <typename T>
bool Read(std::ifstream* file, T* value) {
  return static_cast<bool>(file->read(reinterpret_cast<char*>(value), sizeof *value));
}

Mapping* PlaceFor(Tables* tables, const Table& table) {
  if (table.kind == TableKind::kFoldCase) return &tables->small_letters;
  Charset& charset = tables->charsets[table.charset];
  return table.kind == TableKind::kEncode ? &charset.encode : &charset.states[table.state];
}

Tables LoadTables() {
  Tables tables;
  std::ifstream file(ZQV_CHARSET_TABLES, std::ios::binary);
  char magic[sizeof kTableMagic] = {};
  if (!Read(&file, &magic) || std::memcmp(magic, kTableMagic, sizeof magic) != 0) {
    Fatal("no tables of charsets in " ZQV_CHARSET_TABLES);
  }
  Table table;
  while (Read(&file, &table)) {
    Mapping* const mapping = PlaceFor(&tables, table);
    for (std::uint32_t i = 0; i < table.runs; ++i) {
      Run run;
      if (!Read(&file, &run)) Fatal("the tables of charsets end too soon");
      mapping->Add(run);
    }
  }
  return tables;
}

const Tables& TheTables() {
  static const Tables tables = LoadTables();
  return tables;
}

const Charset& CharsetOf(std::string_view name) {
  const auto found = TheTables().charsets.find(name);
  if (found == TheTables().charsets.end()) {
    Fatal("there is no table of the charset " + std::string(name));
  }
  return found->second;
}

// Decodes a text with the tables of one charset.
class Decoder {
 public:
  Decoder(const Charset& charset, std::string_view bytes)
      : charset_(charset), state_(&charset.states.at("")), rest_(bytes) {}

  std::optional<std::u32string> Run() {
    while (!rest_.empty()) {
      if (!TakeShift() && !TakeCharacter()) return std::nullopt;
    }
    return std::move(text_);
  }

 private:
  bool TakeShift() {
    for (const auto& [shift, mapping] : charset_.states) {
      if (shift.empty() || rest_.substr(0, shift.size()) != shift) continue;
      state_ = &mapping;
      rest_.remove_prefix(shift.size());
      return true;
    }
    return false;
  }

  // Takes the longest match, because a letter with an accent may have an entry of its own. False
  // when there is no match.
  bool TakeCharacter() {
    for (std::size_t length = std::min(state_->longest(), rest_.size()); length > 0; --length) {
      std::uint32_t key = 0;
      for (std::size_t i = 0; i < length; ++i)
        key = key << 8U | static_cast<unsigned char>(rest_[i]);
      const zqv::standin::Run* const run = state_->Find(length, key);
      if (run == nullptr) continue;
      for (std::uint32_t i = 0; i < run->size; ++i) {
        text_ += run->values[i] + (i + 1 == run->size ? key - run->key : 0);
      }
      rest_.remove_prefix(length);
      return true;
    }
    return false;
  }

  const Charset& charset_;
  const Mapping* state_;
  std::string_view rest_;
  std::u32string text_;
};

void AppendBytes(std::uint32_t number, std::size_t count, std::string* bytes) {
  while (count > 0) *bytes += static_cast<char>(number >> 8U * --count & 0xFFU);
}

std::optional<std::string> EncodeByTable(std::u32string_view text, const Mapping& mapping) {
  std::string bytes;
  for (const char32_t c : text) {
    const Run* const run = mapping.Find(4, c);
    if (run == nullptr) return std::nullopt;
    AppendBytes(run->values[0] + (c - run->key), run->size, &bytes);
  }
  return bytes;
}

// Decodes UTF-8, UTF-16 and UTF-32, one character at a time.
class UnicodeBytes {
 public:
  explicit UnicodeBytes(std::string_view bytes) : rest_(bytes) {}

  bool IsAtEnd() const { return rest_.empty(); }

  // Each function below returns nothing when no well-formed character follows.
  std::optional<char32_t> TakeUtf8() {
    const auto first = static_cast<unsigned char>(rest_[0]);
    if (first < 0x80) return TakeUnit(1, false);
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || rest_.size() < length) return std::nullopt;
    static constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    char32_t c = first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
      const auto byte = static_cast<unsigned char>(rest_[i]);
      if ((byte & 0xC0U) != 0x80) return std::nullopt;
      c = c << 6U | (byte & 0x3FU);
    }
    rest_.remove_prefix(length);
    return c < kLeast[length] ? std::nullopt : Checked(c);
  }

  std::optional<char32_t> TakeUtf16(bool is_little) {
    const std::optional<char32_t> high = TakeUnit(2, is_little);
    if (!high || *high < 0xD800 || *high >= 0xDC00) return high ? Checked(*high) : high;
    const std::optional<char32_t> low = TakeUnit(2, is_little);
    if (!low || *low < 0xDC00 || *low >= 0xE000) return std::nullopt;
    return 0x10000 + ((*high - 0xD800) << 10U) + (*low - 0xDC00);
  }

  std::optional<char32_t> TakeUtf32(bool is_little) {
    const std::optional<char32_t> c = TakeUnit(4, is_little);
    return c ? Checked(*c) : c;
  }

 private:
  static std::optional<char32_t> Checked(char32_t c) {
    if (c > kLast || IsSurrogate(c)) return std::nullopt;
    return c;
  }

  std::optional<char32_t> TakeUnit(std::size_t size, bool is_little) {
    if (rest_.size() < size) return std::nullopt;
    char32_t unit = 0;
    for (std::size_t i = 0; i < size; ++i) {
      unit = unit << 8U | static_cast<unsigned char>(rest_[is_little ? size - 1 - i : i]);
    }
    rest_.remove_prefix(size);
    return unit;
  }

  std::string_view rest_;
};

void AppendUnit(char32_t unit, std::size_t size, bool is_little, std::string* bytes) {
  for (std::size_t i = 0; i < size; ++i) {
    *bytes += static_cast<char>(unit >> 8U * (is_little ? i : size - 1 - i) & 0xFFU);
  }
}

void AppendUtf16(char32_t c, bool is_little, std::string* bytes) {
  if (c >= 0x10000) {
    AppendUnit(0xD800 + ((c - 0x10000) >> 10U), 2, is_little, bytes);
    c = 0xDC00 + (c & 0x3FFU);
  }
  AppendUnit(c, 2, is_little, bytes);
}

// Decodes UTF-7 (RFC 2152): UTF-16 in base64, between "+" and the first character that is not a
// base64 digit. Encoding is not supported.
std::optional<std::u32string> DecodeUtf7(std::string_view bytes) {
  static constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::u32string text;
  while (!bytes.empty()) {
    const char first = bytes[0];
    bytes.remove_prefix(1);
    if (static_cast<unsigned char>(first) >= 0x80 || first == '~' || first == '\\') {
      return std::nullopt;
    }
    if (first != '+') {
      text += static_cast<unsigned char>(first);
      continue;
    }
    std::string units;
    std::uint32_t bits = 0;
    std::size_t count = 0;
    std::size_t digits = 0;
    for (; digits < bytes.size() && kDigits.find(bytes[digits]) != std::string_view::npos;
         ++digits) {
      bits = bits << 6U | static_cast<std::uint32_t>(kDigits.find(bytes[digits]));
      for (count += 6; count >= 8;) AppendBytes(bits >> (count -= 8) & 0xFFU, 1, &units);
      bits &= (1U << count) - 1;
    }
    const bool is_plus = digits == 0 && !bytes.empty() && bytes[0] == '-';
    bytes.remove_prefix(digits);
    if (!bytes.empty() && bytes[0] == '-') bytes.remove_prefix(1);
    if (is_plus) text += U'+';
    if ((digits == 0 && !is_plus) || bits != 0 || units.size() % 2 != 0) return std::nullopt;
    for (UnicodeBytes rest(units); !rest.IsAtEnd();) {
      const std::optional<char32_t> c = rest.TakeUtf16(false);
      if (!c) return std::nullopt;
      text += *c;
    }
  }
  return text;
}

// Unicode's encoding forms, and ASCII.
struct Form {
  enum class Kind { kAscii, kUtf8, kUtf16, kUtf32 };
  Kind kind;
  bool is_little;
};

std::optional<Form> FormOf(std::string_view name) {
  const bool is_little = name.substr(std::max<std::size_t>(name.size(), 2) - 2) == "LE";
  if (name == "US-ASCII") return Form{Form::Kind::kAscii, false};
  if (name == "UTF-8") return Form{Form::Kind::kUtf8, false};
  if (name.substr(0, 6) == "UTF-16") return Form{Form::Kind::kUtf16, is_little};
  if (name.substr(0, 6) == "UTF-32") return Form{Form::Kind::kUtf32, is_little};
  return std::nullopt;
}

std::optional<char32_t> Take(const Form& form, UnicodeBytes* bytes) {
  switch (form.kind) {
    case Form::Kind::kAscii: {
      const std::optional<char32_t> c = bytes->TakeUtf8();
      return c && *c < 0x80 ? c : std::nullopt;
    }
    case Form::Kind::kUtf8:
      return bytes->TakeUtf8();
    case Form::Kind::kUtf16:
      return bytes->TakeUtf16(form.is_little);
    case Form::Kind::kUtf32:
      break;
  }
  return bytes->TakeUtf32(form.is_little);
}

bool Append(const Form& form, char32_t c, std::string* bytes) {
  if (c > kLast || IsSurrogate(c) || (form.kind == Form::Kind::kAscii && c >= 0x80)) return false;
  if (form.kind == Form::Kind::kUtf16) {
    AppendUtf16(c, form.is_little, bytes);
  } else if (form.kind == Form::Kind::kUtf32) {
    AppendUnit(c, 4, form.is_little, bytes);
  } else {
    AppendUtf8(c, bytes);
  }
  return true;
}

}  // namespace

std::optional<std::u32string> DecodeCharset(std::string_view bytes, const char* name) {
  const std::optional<Form> form = FormOf(name);
  if (name == std::string_view("UTF-7")) return DecodeUtf7(bytes);
  if (!form) return Decoder(CharsetOf(name), bytes).Run();
  std::u32string text;
  for (UnicodeBytes rest(bytes); !rest.IsAtEnd();) {
    const std::optional<char32_t> c = Take(*form, &rest);
    if (!c) return std::nullopt;
    text += *c;
  }
  return text;
}

std::optional<std::string> EncodeCharset(std::u32string_view text, const char* name) {
  const std::optional<Form> form = FormOf(name);
  if (!form) return EncodeByTable(text, CharsetOf(name).encode);
  std::string bytes;
  for (const char32_t c : text) {
    if (!Append(*form, c, &bytes)) return std::nullopt;
  }
  return bytes;
}

char32_t FoldCase(char32_t c) {
  const Run* const run = TheTables().small_letters.Find(4, c);
  return run != nullptr ? run->values[0] + (c - run->key) : c;
}

}  // namespace zqv::standin
