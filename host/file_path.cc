// A file reference as a path, where the host's own strings will do: a path or a file URL.
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

constexpr double kHasNativePath = 2013.0;

std::string PropertyText(abi::REALobject object, const char* property) {
  abi::REALstring value = nullptr;
  if (entry::REALGetPropValueString(object, property, &value) == 0) return {};
  const auto text = StringRef::Adopt(value);
  return std::string(rbText(text.get()).Utf8());
}

// RFC 3986, section 2.1; empty when an escape is broken.
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

// The path of a file URL; empty for anything else. Scheme and host name are compared without regard
// to case (RFC 3986, section 6.2.2.1).
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

// As the other platform says it, which has a null string where there is no text.
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
  // A NUL would cut the path and name another file.
  return path.find('\0') == std::string::npos ? path : std::string();
}

}  // namespace zqv::host
