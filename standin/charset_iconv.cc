// Conversion of charsets by iconv of the C library, which rejects surrogates and code points above
// U+10FFFF.
#include <iconv.h>
#include <locale.h>
#include <wctype.h>
#if defined(__APPLE__)
#include <xlocale.h>
#endif

#include <cerrno>
#include <cstring>
#include <map>
#include <memory>
#include <utility>

#include "standin/charset.h"
#include "standin/fatal.h"

namespace zqv::standin {
namespace {

struct CloseIconv {
  void operator()(iconv_t descriptor) const { iconv_close(descriptor); }
};
using IconvHandle = std::unique_ptr<std::remove_pointer_t<iconv_t>, CloseIconv>;

// Returns a converter that stays open until the thread ends; threads cannot share one. The names
// are literals of the table of encodings, so their addresses are the key.
iconv_t Converter(const char* from, const char* to) {
  thread_local std::map<std::pair<const char*, const char*>, IconvHandle> open;
  IconvHandle& handle = open[{from, to}];
  if (handle == nullptr) {
    iconv_t made = iconv_open(to, from);
    if (made == reinterpret_cast<iconv_t>(-1)) {
      Fatal(std::string("this machine cannot convert from ") + from + " to " + to);
    }
    handle.reset(made);
  }
  return handle.get();
}

// Converts the whole input. Nothing when that fails or is inexact.
std::optional<std::string> RunIconv(std::string_view bytes, const char* from, const char* to) {
  iconv_t converter = Converter(from, to);
  iconv(converter, nullptr, nullptr, nullptr, nullptr);
  char* in = const_cast<char*>(bytes.data());
  std::size_t in_left = bytes.size();
  std::string result(bytes.size() + 16, '\0');
  std::size_t used = 0;
  bool flushing = false;
  while (true) {
    char* out = &result[used];
    std::size_t out_left = result.size() - used;
    const std::size_t inexact = flushing ? iconv(converter, nullptr, nullptr, &out, &out_left)
                                         : iconv(converter, &in, &in_left, &out, &out_left);
    used = result.size() - out_left;
    if (inexact == static_cast<std::size_t>(-1)) {
      if (errno != E2BIG) return std::nullopt;
      result.resize(result.size() * 2);
    } else if (inexact != 0) {
      return std::nullopt;
    } else if (flushing) {
      result.resize(used);
      return result;
    } else {
      flushing = true;
    }
  }
}

// The locale that lower-case forms come from, whatever the locale of the process.
locale_t FoldingLocale() {
  static locale_t const made = [] {
    // The second for macOS, whose older systems lack the first.
    for (const char* const name : {"C.UTF-8", "en_US.UTF-8"}) {
      locale_t const locale = newlocale(LC_CTYPE_MASK, name, nullptr);
      if (locale != nullptr) return locale;
    }
    Fatal("this machine lacks the locale C.UTF-8");
  }();
  return made;
}

}  // namespace

std::optional<std::u32string> DecodeCharset(std::string_view bytes, const char* name) {
  const std::optional<std::string> raw = RunIconv(bytes, name, kUtf32Here);
  if (!raw) return std::nullopt;
  std::u32string text(raw->size() / sizeof(char32_t), U'\0');
  if (!text.empty()) std::memcpy(text.data(), raw->data(), raw->size());
  return text;
}

std::optional<std::string> EncodeCharset(std::u32string_view text, const char* name) {
  const std::string_view raw(static_cast<const char*>(static_cast<const void*>(text.data())),
                             text.size() * sizeof(char32_t));
  return RunIconv(raw, kUtf32Here, name);
}

char32_t FoldCase(char32_t c) {
  return static_cast<char32_t>(towlower_l(static_cast<wint_t>(c), FoldingLocale()));
}

}  // namespace zqv::standin
