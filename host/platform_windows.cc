// The Windows port: paths are UTF-8 until they are opened by their UTF-16 form, local time is that
// of the system's settings.
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

// A path that is taken as it stands and may be long; where devices are; where servers are.
constexpr WideView kVerbatim = L"\\\\?\\";
constexpr WideView kDevices = L"\\\\.\\";
constexpr WideView kServers = L"\\\\";

bool StartsWith(WideView path, WideView prefix) { return path.substr(0, prefix.size()) == prefix; }

// Empty when the bytes are no UTF-8.
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

// The whole path with backslashes and without ".." in it, or, for what the system takes for a
// device such as NUL or COM1, a path among the devices. Empty when there is none.
std::wstring WholePath(const std::wstring& path) {
  const DWORD room = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
  std::wstring whole(room, L'\0');
  const DWORD length = room != 0 ? GetFullPathNameW(path.c_str(), room, whole.data(), nullptr) : 0;
  whole.resize(length < room ? length : 0);
  return whole;
}

// A colon behind a name opens a stream beside the file's bytes; no file has one in its name.
bool NamesStream(WideView path) {
  const std::size_t drive = path.find(L':');
  if (drive == WideView::npos) return false;
  const bool is_drive = drive == 1 || (drive == 5 && StartsWith(path, kVerbatim));
  return !is_drive || path.find(L':', drive + 1) != WideView::npos;
}

// The form that has no limit but that of the system, 32,767 units.
std::wstring Verbatim(std::wstring path) {
  if (StartsWith(path, kVerbatim)) return path;
  if (StartsWith(path, kServers)) return L"\\\\?\\UNC" + path.substr(1);
  return std::wstring(kVerbatim) + path;
}

// What CreateFileW is given; empty for what is none of the files on a disk by its name.
std::wstring OpenableForm(const std::string& path) {
  std::wstring whole = WholePath(ToUtf16(path));
  if (whole.empty() || StartsWith(whole, kDevices) || NamesStream(whole)) return {};
  return Verbatim(std::move(whole));
}

HANDLE OpenHandle(const std::wstring& path) {
  // Whoever writes, renames or deletes the file is not kept from it. A pipe's server, on another
  // machine perhaps, may learn who asks and not act for them.
  constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  constexpr DWORD kFlags =
      FILE_FLAG_SEQUENTIAL_SCAN | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION;
  return CreateFileW(path.c_str(), GENERIC_READ, kShare, nullptr, OPEN_EXISTING, kFlags, nullptr);
}

// Files have attributes; volumes and the like, which are of the same type, have none.
bool IsFileOnDisk(HANDLE handle) {
  BY_HANDLE_FILE_INFORMATION information;
  return GetFileType(handle) == FILE_TYPE_DISK &&
         GetFileInformationByHandle(handle, &information) != 0 &&
         (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

// Takes the handle over, also when it fails.
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

// "/C:/a" is C:\a; a server's "/share/a" is \\server\share\a (RFC 8089, appendix E).
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
  LONG minutes = 0;  // that UTC is ahead of local time
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
