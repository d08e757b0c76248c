#include "objects/words.h"

#include <cstdint>
#include <string>

#include "base/log.h"
#include "host/errors.h"
#include "host/strings.h"
#include "host/text_reader.h"
#include "objects/switches.h"
#include "text/html_to_text.h"

namespace zqv::objects {
namespace {

// Raises the exception of ReportUnknownCharset with the message `start` + `charset`.
void Report(const char* start, std::string_view charset) {
  if (charset.empty() || !RaisesUnknownFormats()) return;
  const std::string message = std::string(start).append(charset);
  host::RaiseException(host::kUnsupportedFormatException, message.c_str());
}

// A function of its own, so that the reader's copy of the text is freed before the result is used.
std::u32string ConvertHtml(abi::REALstring html) {
  host::rbText reader(html);
  return reader.CheckASCII() ? text::HtmlToPlainText(reader.Utf8())
                             : text::HtmlToPlainText(reader.Utf32());
}

}  // namespace

void ReportUnknownCharset(std::string_view charset) { Report("Unhandled charset: ", charset); }

host::StringRef BuildHeaderText(const text::HeaderText& text) {
  ReportUnknownCharset(text.unknown_charset);
  Report("Unhandled encoding: ", text.charset_without_encoding);
  return host::BuildString(text.bytes(), text.encoding());
}

host::StringRef DecodeInlineEncodings(std::string_view text, bool unquote) {
  if (text.empty()) return {};
  return BuildHeaderText(text::DecodeEncodedWords(text, unquote));
}

host::StringRef NewPlainText(abi::REALstring html) {
  if (html == nullptr) return {};
  const std::u32string text = ConvertHtml(html);
  const std::size_t size = text.size();
  ZQV_LOG("output.size %zu", size);
  if (text.empty()) return {};
  ZQV_LOG("dlen %zu", size);
  return host::REALBuildUnicodeString(
      text.data(), static_cast<std::int64_t>(size * sizeof(char32_t)), abi::kUtf32);
}

abi::REALstring DecodeInline(abi::REALstring text) {
  return host::Guard([=] { return DecodeInlineEncodings(host::ReadUtf8(text), false); });
}

abi::REALstring HTMLToPlainText(abi::REALstring html) {
  return host::Guard([=] { return NewPlainText(html); });
}

}  // namespace zqv::objects
