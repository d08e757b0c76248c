#include "tests/macho/core_foundation.h"

#include <iconv.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <string_view>

#include "abi/encodings.h"
#include "base/ascii.h"
#include "standin/invoke.h"
#include "tests/macho/symbols.h"
#include "tests/macho/variadic.h"

namespace zqv::macho {
namespace {

using Index = long;

// A string, or a URL, which is stored as its path. Constant strings in the library begin with the
// same fields; their text is at `constant`.
struct Object {
  const void* isa;
  std::uint64_t flags;
  const char* constant;
  Index length;
  std::u16string text;
};

// The class to which all constant strings point.
const void* g_constant_class[8] = {};

std::set<const Object*> g_live;

[[noreturn]] void Fail(const char* reason) {
  std::fprintf(stderr, "CoreFoundation: %s\n", reason);
  std::abort();
}

// iconv's name of an encoding; null for an encoding that the library does not use.
const char* NameOf(std::uint32_t encoding) {
  switch (encoding) {
    case abi::kMacRoman:
      return "MACINTOSH";
    case abi::kIsoLatin1:
      return "ISO-8859-1";
    case abi::kWindowsLatin1:
      return "CP1252";
    case abi::kAscii:
      return "ASCII";
    case abi::kUtf8:
      return "UTF-8";
    case abi::kUtf16:
    case abi::kUtf16LittleEndian:
      return "UTF-16LE";
    case abi::kUtf16BigEndian:
      return "UTF-16BE";
    case abi::kUtf32:
      return "UTF-32LE";
    default:
      return nullptr;
  }
}

// The converted bytes; nothing when the bytes are not valid in the encoding `from`.
std::optional<std::string> Convert(std::string_view bytes, const char* from, const char* to) {
  const iconv_t converter = iconv_open(to, from);
  if (converter == reinterpret_cast<iconv_t>(-1)) Fail("an encoding that this system lacks");
  std::string converted(4 * bytes.size() + 8, '\0');
  char* in = const_cast<char*>(bytes.data());
  char* out = converted.data();
  std::size_t in_left = bytes.size();
  std::size_t out_left = converted.size();
  const bool failed =
      iconv(converter, &in, &in_left, &out, &out_left) == static_cast<std::size_t>(-1);
  iconv_close(converter);
  if (failed) return std::nullopt;
  converted.resize(converted.size() - out_left);
  return converted;
}

std::string ToUtf8(const std::u16string& text) {
  const std::string_view bytes(reinterpret_cast<const char*>(text.data()), 2 * text.size());
  const std::optional<std::string> converted = Convert(bytes, "UTF-16LE", "UTF-8");
  if (!converted) Fail("a string that is no text");
  return *converted;
}

Object* Make(std::u16string text) {
  auto* const object = new Object{nullptr, 0, nullptr, 0, std::move(text)};
  g_live.insert(object);
  return object;
}

// Makes a string; null for an unknown encoding, and for bytes that are not valid in it.
Object* MakeFromBytes(std::string_view bytes, std::uint32_t encoding) {
  const char* const name = NameOf(encoding);
  if (name == nullptr) return nullptr;
  const std::optional<std::string> converted = Convert(bytes, name, "UTF-16LE");
  if (!converted) return nullptr;
  std::u16string text(converted->size() / 2, u'\0');
  std::memcpy(text.data(), converted->data(), converted->size());
  return Make(std::move(text));
}

bool IsConstant(const Object* object) { return object->isa == g_constant_class; }

const std::u16string& TextOf(const Object* object) {
  if (g_live.count(object) == 0) Fail("an object is used that is not there");
  return object->text;
}

void Release(const Object* object) {
  if (g_live.erase(object) == 0) Fail("an object is given back that is not there");
  delete object;
}

const Object* CreateWithBytes(const void*, const char* bytes, Index count, std::uint32_t encoding,
                              unsigned char) {
  return MakeFromBytes({bytes, static_cast<std::size_t>(count)}, encoding);
}

const Object* CreateWithCharacters(const void*, const char16_t* units, Index count) {
  return Make(std::u16string(units, static_cast<std::size_t>(count)));
}

Object* CreateMutableCopy(const void*, Index, const Object* string) { return Make(TextOf(string)); }

Index GetLength(const Object* string) { return static_cast<Index>(TextOf(string).size()); }

unsigned char GetCString(const Object* string, char* buffer, Index size, std::uint32_t encoding) {
  if (encoding != abi::kUtf8) Fail("the library asks for UTF-8 alone");
  const std::string text = ToUtf8(TextOf(string));
  if (text.size() >= static_cast<std::size_t>(size)) return 0;
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  return 1;
}

// Letters with accents (Unicode, Latin-1 Supplement) and their decompositions. Combining accents:
// 0300 grave, 0301 acute, 0302 circumflex, 0303 tilde, 0308 diaeresis, 030A ring, 0327 cedilla.
struct Composed {
  const char16_t* letters;
  const char16_t* bases;
  char16_t accent;
};
constexpr Composed kComposed[] = {
    {u"\u00C0\u00C8\u00CC\u00D2\u00D9\u00E0\u00E8\u00EC\u00F2\u00F9", u"AEIOUaeiou", u'\u0300'},
    {u"\u00C1\u00C9\u00CD\u00D3\u00DA\u00DD\u00E1\u00E9\u00ED\u00F3\u00FA\u00FD", u"AEIOUYaeiouy",
     u'\u0301'},
    {u"\u00C2\u00CA\u00CE\u00D4\u00DB\u00E2\u00EA\u00EE\u00F4\u00FB", u"AEIOUaeiou", u'\u0302'},
    {u"\u00C3\u00D1\u00D5\u00E3\u00F1\u00F5", u"ANOano", u'\u0303'},
    {u"\u00C4\u00CB\u00CF\u00D6\u00DC\u00E4\u00EB\u00EF\u00F6\u00FC\u00FF", u"AEIOUaeiouy",
     u'\u0308'},
    {u"\u00C5\u00E5", u"Aa", u'\u030A'},
    {u"\u00C7\u00E7", u"Cc", u'\u0327'},
};

std::u16string Decompose(const std::u16string& text) {
  std::u16string decomposed;
  for (const char16_t c : text) {
    const auto* const row =
        std::find_if(std::begin(kComposed), std::end(kComposed), [c](const Composed& composed) {
          return std::u16string_view(composed.letters).find(c) != std::u16string_view::npos;
        });
    if (row == std::end(kComposed)) {
      decomposed += c;
      continue;
    }
    decomposed += row->bases[std::u16string_view(row->letters).find(c)];
    decomposed += row->accent;
  }
  return decomposed;
}

std::u16string Compose(const std::u16string& text) {
  std::u16string composed;
  for (const char16_t c : text) {
    const auto* const row =
        std::find_if(std::begin(kComposed), std::end(kComposed),
                     [c](const Composed& composed_row) { return composed_row.accent == c; });
    const std::size_t base = row == std::end(kComposed) || composed.empty()
                                 ? std::u16string_view::npos
                                 : std::u16string_view(row->bases).find(composed.back());
    if (base == std::u16string_view::npos) {
      composed += c;
    } else {
      composed.back() = row->letters[base];
    }
  }
  return composed;
}

void Normalize(Object* string, Index form) {
  if (form != 0) Fail("the library asks for form D alone");
  string->text = Decompose(TextOf(string));
}

const Object* CreateUrlWithPath(const void*, const Object* path, Index style, unsigned char) {
  if (style != 0) Fail("the library asks for POSIX paths alone");
  return Make(TextOf(path));
}

int HexadecimalValue(char16_t c) {
  return c < 0x80 ? base::HexadecimalValue(static_cast<char>(c)) : -1;
}

// Makes a URL from ASCII text in which bytes of UTF-8 are percent escapes. Null for any other text.
const Object* CreateUrlWithString(const void*, const Object* string, const void*) {
  const std::u16string& url = TextOf(string);
  std::string path;
  for (std::size_t i = 0; i < url.size(); ++i) {
    if (url[i] > u' ' && url[i] < 0x7F && url[i] != u'%') {
      path += static_cast<char>(url[i]);
      continue;
    }
    const int high = url[i] == u'%' && i + 2 < url.size() ? HexadecimalValue(url[i + 1]) : -1;
    const int low = high >= 0 ? HexadecimalValue(url[i + 2]) : -1;
    if (low < 0) return nullptr;
    path += static_cast<char>(16 * high + low);
    i += 2;
  }
  return MakeFromBytes(path, abi::kUtf8);
}

// The path of a URL, which is the text after the host name, whatever the scheme.
const Object* CopyPath(const Object* url, Index style) {
  if (style != 0) Fail("the library asks for POSIX paths alone");
  std::u16string path = TextOf(url);
  const std::size_t authority = path.find(u"://");
  if (authority != std::u16string::npos) {
    path.erase(0, std::min(path.find(u'/', authority + 3), path.size()));
  }
  return Make(std::move(path));
}

// Wraps a function so that it counts as the host's and not the library's code: tests that let the
// library's allocations fail do not let its allocations fail.
template <auto function>
struct Outside;
template <class Result, class... Arguments, Result (*function)(Arguments...)>
struct Outside<function> {
  static Result Call(Arguments... arguments) {
    const standin::PluginScope scope(false);
    return function(arguments...);
  }
};

template <auto function>
void* At() {
  return reinterpret_cast<void*>(&Outside<function>::Call);
}

const Symbol kRows[] = {
    {"___CFConstantStringClassReference", static_cast<void*>(g_constant_class)},
    {"_CFRelease", At<&Release>()},
    {"_CFStringCreateWithBytes", At<&CreateWithBytes>()},
    {"_CFStringCreateWithCharacters", At<&CreateWithCharacters>()},
    {"_CFStringCreateMutableCopy", At<&CreateMutableCopy>()},
    {"_CFStringGetLength", At<&GetLength>()},
    {"_CFStringGetCString", At<&GetCString>()},
    {"_CFStringNormalize", At<&Normalize>()},
    {"_CFURLCreateWithFileSystemPath", At<&CreateUrlWithPath>()},
    {"_CFURLCreateWithString", At<&CreateUrlWithString>()},
    {"_CFURLCopyFileSystemPath", At<&CopyPath>()},
};

}  // namespace

void* FindCoreFoundationSymbol(const std::string& name) { return FindSymbol(kRows, name); }

std::string ComposedPath(const std::string& path) {
  const std::optional<std::string> bytes = Convert(path, "UTF-8", "UTF-16LE");
  if (!bytes) Fail("a path that is no text");
  std::u16string text(bytes->size() / 2, u'\0');
  std::memcpy(text.data(), bytes->data(), bytes->size());
  if (Decompose(text) != text) Fail("a path that is not in form D");
  return ToUtf8(Compose(text));
}

std::size_t LiveCoreFoundationObjects() { return g_live.size(); }

void WriteLog(const void* format, VariadicPointers arguments) {
  const standin::PluginScope scope(false);
  const auto* const string = static_cast<const Object*>(format);
  if (!IsConstant(string)) Fail("a format that is no constant");
  const std::string_view text(string->constant, static_cast<std::size_t>(string->length));
  std::string line;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      line += text[i];
    } else if (text[++i] == 's') {
      line += static_cast<const char*>(arguments.Next());
    } else if (text[i] == '@') {
      const auto* const argument = static_cast<const Object*>(arguments.Next());
      line += argument == nullptr ? "(null)" : ToUtf8(TextOf(argument));
    } else {
      Fail("a format with something else");
    }
  }
  if (line.empty() || line.back() != '\n') line += '\n';
  if (write(STDERR_FILENO, line.data(), line.size()) < 0) Fail("the log cannot be written");
}

}  // namespace zqv::macho
