// The Windows port. Paths are UTF-8 and are converted to UTF-16 when a file is opened:
//
//   C:/mail/a.eml            \\?\C:\mail\a.eml
//   \\server\share\a.eml     \\?\UNC\server\share\a.eml
//   NUL, C:\a.eml:stream     refused: a device, an alternate data stream
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "base/ascii.h"
#include "host/file_url.h"
#include "host/platform.h"

namespace zqv::host {
namespace {

using WideView = std::wstring_view;

// Prefixes of paths: not parsed further by the system, and longer than 260 characters if need be; a
// device; a server.
constexpr WideView kVerbatim = L"\\\\?\\";
constexpr WideView kDevices = L"\\\\.\\";
constexpr WideView kServers = L"\\\\";

bool StartsWith(WideView path, WideView prefix) { return path.substr(0, prefix.size()) == prefix; }

// Converts UTF-8 to UTF-16; empty when the text is not well-formed UTF-8.
std::wstring ToUtf16(const std::string& text) {
  if (text.size() > INT_MAX) return {};
  const int size = static_cast<int>(text.size());
  const int units =
      MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, nullptr, 0);
  if (units <= 0) return {};
  std::wstring wide(static_cast<std::size_t>(units), L'\0');
  MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, wide.data(), units);
  return wide;
}

// The absolute path, with backslashes and without "..". For the name of a device, such as NUL or
// COM1, it begins with kDevices. Empty on failure.
std::wstring FullPath(const std::wstring& path) {
  const DWORD room = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
  std::wstring whole(room, L'\0');
  const DWORD length = room != 0 ? GetFullPathNameW(path.c_str(), room, whole.data(), nullptr) : 0;
  whole.resize(length < room ? length : 0);
  return whole;
}

// Whether a path names an alternate data stream: it has a colon other than that of the drive.
bool NamesStream(WideView path) {
  const std::size_t drive = path.find(L':');
  if (drive == WideView::npos) return false;
  const bool is_drive = drive == 1 || (drive == 5 && StartsWith(path, kVerbatim));
  return !is_drive || path.find(L':', drive + 1) != WideView::npos;
}

// Adds the prefix that raises the limit of a path's length to 32,767 UTF-16 units.
std::wstring Verbatim(std::wstring path) {
  if (StartsWith(path, kVerbatim)) return path;
  if (StartsWith(path, kServers)) return L"\\\\?\\UNC" + path.substr(1);
  return std::wstring(kVerbatim) + path;
}

// The path for CreateFileW; empty for a device or a stream, and when `path` cannot be converted.
std::wstring OpenableForm(const std::string& path) {
  std::wstring whole = FullPath(ToUtf16(path));
  if (whole.empty() || StartsWith(whole, kDevices) || NamesStream(whole)) return {};
  return Verbatim(std::move(whole));
}

HANDLE OpenHandle(const std::wstring& path) {
  // Other processes may write, rename and delete the file while it is open. Should the path be a
  // named pipe, its server may identify this process's user but not impersonate them.
  constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  constexpr DWORD kFlags =
      FILE_FLAG_SEQUENTIAL_SCAN | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION;
  return CreateFileW(path.c_str(), GENERIC_READ, kShare, nullptr, OPEN_EXISTING, kFlags, nullptr);
}

// Whether a handle is a regular file. Volumes have the same file type but no file information.
bool IsFileOnDisk(HANDLE handle) {
  BY_HANDLE_FILE_INFORMATION information;
  return GetFileType(handle) == FILE_TYPE_DISK &&
         GetFileInformationByHandle(handle, &information) != 0 &&
         (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

// Wraps a handle in a FILE. Takes ownership of the handle, also on failure. Null on failure.
File AsFile(HANDLE handle) {
  const int descriptor = _open_osfhandle(reinterpret_cast<std::intptr_t>(handle),
                                         _O_RDONLY | _O_BINARY | _O_NOINHERIT);
  if (descriptor < 0) {
    CloseHandle(handle);
    return nullptr;
  }
  File file(_fdopen(descriptor, "rb"));
  if (file == nullptr) _close(descriptor);
  return file;
}

}  // namespace

// Maps "/C:/a" to C:\a, and "/share/a" on a server to \\server\share\a (RFC 8089, appendix E).
std::string PathOfUrl(const FileUrl& url) {
  std::string path = url.path;
  std::replace(path.begin(), path.end(), '/', '\\');
  if (!url.server.empty()) return "\\\\" + std::string(url.server) + path;
  const bool has_drive = path.size() > 2 && base::IsLetter(path[1]) && path[2] == ':';
  return has_drive ? path.substr(1) : std::string();
}

File OpenForReading(const std::string& path) {
  const std::wstring openable = OpenableForm(path);
  if (openable.empty()) return nullptr;
  const HANDLE handle = OpenHandle(openable);
  if (handle == INVALID_HANDLE_VALUE) return nullptr;
  if (IsFileOnDisk(handle)) return AsFile(handle);
  CloseHandle(handle);
  return nullptr;
}

std::int64_t LengthOf(std::FILE* file) {
  return _fseeki64(file, 0, SEEK_END) == 0 ? _ftelli64(file) : -1;
}

std::optional<std::int64_t> LocalTimeOffset() {
  TIME_ZONE_INFORMATION zone;
  LONG minutes = 0;  // UTC minus local time, in minutes
  switch (GetTimeZoneInformation(&zone)) {
    case TIME_ZONE_ID_UNKNOWN:  // a zone without daylight saving time
      minutes = zone.Bias;
      break;
    case TIME_ZONE_ID_STANDARD:
      minutes = zone.Bias + zone.StandardBias;
      break;
    case TIME_ZONE_ID_DAYLIGHT:
      minutes = zone.Bias + zone.DaylightBias;
      break;
    default:
      return std::nullopt;
  }
  return std::int64_t{-60} * minutes;
}

}  // namespace zqv::host
