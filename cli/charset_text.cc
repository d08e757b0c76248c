#include "cli/charset_text.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <type_traits>
#include <unordered_map>

#include "base/ascii.h"
#include "base/unicode.h"
#include "cli/text.h"
#include "cli/utf8.h"
#include "standin/text.h"

namespace zqv::cli {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr std::size_t kMostNameBytes = 40;
constexpr std::size_t kMostConverters = 64;

struct CloseIconv {
  void operator()(iconv_t descriptor) const {
    if (descriptor != reinterpret_cast<iconv_t>(-1)) iconv_close(descriptor);
  }
};
using Converter = std::unique_ptr<std::remove_pointer_t<iconv_t>, CloseIconv>;

// Whether a text can be the name of a charset, such as "iso-8859-1", "ks_c_5601-1987" or
// "ISO_8859-1:1987". A slash is not allowed, because iconv takes the text after it for options.
bool IsName(std::string_view name) {
  return !name.empty() && name.size() <= kMostNameBytes &&
         std::all_of(name.begin(), name.end(), [](char c) {
           return base::IsAlphanumeric(c) ||
                  std::string_view("-_.:+()").find(c) != std::string_view::npos;
         });
}

// Returns a converter from a charset to UTF-8, null when the system does not know the charset.
// Opening a converter takes longer than using it, so converters are cached.
iconv_t ConverterFrom(const std::string& charset) {
  static std::unordered_map<std::string, Converter> converters;
  const auto found = converters.find(charset);
  iconv_t converter = reinterpret_cast<iconv_t>(-1);
  if (found != converters.end()) {
    converter = found->second.get();
  } else {
    if (converters.size() == kMostConverters) converters.clear();
    converter = iconv_open("UTF-8", charset.c_str());
    converters.emplace(charset, converter);
  }
  if (converter == reinterpret_cast<iconv_t>(-1)) return nullptr;
  iconv(converter, nullptr, nullptr, nullptr, nullptr);
  return converter;
}

std::string Converted(iconv_t converter, std::string_view bytes) {
  std::string text;
  std::array<char, 4096> buffer{};
  char* in = const_cast<char*>(bytes.data());
  std::size_t in_left = bytes.size();
  bool is_flushed = false;
  while (!is_flushed) {
    char* out = buffer.data();
    std::size_t out_left = buffer.size();
    is_flushed = in_left == 0;
    const std::size_t result =
        iconv(converter, is_flushed ? nullptr : &in, &in_left, &out, &out_left);
    text.append(buffer.data(), buffer.size() - out_left);
    if (result != static_cast<std::size_t>(-1) || errno == E2BIG || in_left == 0) continue;
    text += kReplacement;
    ++in;
    --in_left;
  }
  return text;
}

}  // namespace

std::optional<std::string> Utf8Of(std::string_view bytes, std::string_view charset) {
  if (!IsName(charset)) return std::nullopt;
  const std::string name = standin::LowerName(charset);
  if (name == "us-ascii" || name == "ascii") return GuessedUtf8(bytes);
  if ((name == "utf-8" || name == "utf8") && IsWellFormedUtf8(bytes)) return std::string(bytes);
  const iconv_t converter = ConverterFrom(name);
  if (converter == nullptr) return std::nullopt;
  return Converted(converter, bytes);
}

std::string GuessedUtf8(std::string_view bytes) {
  if (IsWellFormedUtf8(bytes)) return std::string(bytes);
  return Converted(ConverterFrom("windows-1252"), bytes);
}

bool IsWellFormedUtf8(std::string_view bytes) {
  if (base::IsAscii(bytes)) return true;
  while (!bytes.empty()) {
    const CodePoint c = FirstCodePoint(bytes);
    if (!c.valid) return false;
    bytes.remove_prefix(c.bytes);
  }
  return true;
}

}  // namespace zqv::cli
