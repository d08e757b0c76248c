// FilePath for Linux and Windows. From host version 2013 on a FolderItem has a property NativePath;
// in older hosts the path is made from its URLPath:
//
//   file:///mail/a%20b.eml    path "/mail/a b.eml", which PathOfUrl adapts to the platform
#include <string>
#include <string_view>

#include "base/ascii.h"
#include "base/log.h"
#include "host/entry_points.h"
#include "host/file_url.h"
#include "host/platform.h"
#include "host/ref.h"
#include "host/text_reader.h"

namespace zqv::host {
namespace {

constexpr double kHasNativePath = 2013.0;  // host version

// A string property of a host object, as UTF-8; empty when it cannot be read.
std::string PropertyText(abi::REALobject object, const char* property) {
  abi::REALstring value = nullptr;
  if (entry::REALGetPropValueString(object, property, &value) == 0) return {};
  const auto text = StringRef::Adopt(value);
  return std::string(rbText(text.get()).Utf8());
}

// Decodes percent escapes (RFC 3986, section 2.1). Returns an empty string when one is malformed.
std::string DecodePercentEscapes(std::string_view text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      decoded += text[i];
      continue;
    }
    const int high = i + 2 < text.size() ? base::HexadecimalValue(text[i + 1]) : -1;
    const int low = i + 2 < text.size() ? base::HexadecimalValue(text[i + 2]) : -1;
    if (high < 0 || low < 0) return {};
    decoded += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return decoded;
}

// The path of a file URL (RFC 8089); empty for any other text. Scheme and host name are compared
// ignoring case (RFC 3986, section 6.2.2.1).
std::string PathOfText(std::string_view text) {
  constexpr std::string_view kScheme = "file://";
  constexpr std::string_view kLocalHost = "localhost";
  if (!base::EqualsIgnoringCase(text.substr(0, kScheme.size()), kScheme)) return {};
  text.remove_prefix(kScheme.size());
  const std::size_t slash = text.find('/');
  if (slash == std::string_view::npos) return {};
  FileUrl url;
  url.server = text.substr(0, slash);
  url.path = DecodePercentEscapes(text.substr(slash));
  if (base::EqualsIgnoringCase(url.server, kLocalHost)) url.server = {};
  return url.path.empty() ? std::string() : PathOfUrl(url);
}

// Writes the same line as on macOS, where an empty path is logged as a null string.
void LogPath(const char* format, const std::string& text) {
  if (base::IsLogging()) base::LogMessageX(format, text.empty() ? "(null)" : text.c_str());
}

}  // namespace

std::string FilePath(abi::REALobject file) {
  std::string path;
  if (HostVersion() >= kHasNativePath) {
    path = PropertyText(file, "NativePath");
    LogPath("native path: %s", path);
  } else {
    const std::string url = PropertyText(file, "URLPath");
    LogPath("url path: %s", url);
    path = PathOfText(url);
  }
  // Functions that open files take NUL-terminated paths: one with a NUL would name another file.
  return path.find('\0') == std::string::npos ? path : std::string();
}

}  // namespace zqv::host
