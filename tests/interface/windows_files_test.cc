// Files on Windows: devices by name, streams, locks, long paths, drives and servers.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "tests/interface/files.h"
#include "tests/interface/messages.h"
#include "tests/interface/refusals.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

class Files : public InterfaceTest {};

// An open handle of a file, with the rights that other handles have meanwhile.
class Holder {
 public:
  Holder(const std::string& path, DWORD share)
      : handle_(CreateFileW(std::filesystem::u8path(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                            share, nullptr, OPEN_EXISTING, 0, nullptr)) {
    EXPECT_NE(handle_, INVALID_HANDLE_VALUE) << path;
  }
  ~Holder() { CloseHandle(handle_); }
  Holder(const Holder&) = delete;
  Holder& operator=(const Holder&) = delete;

  // Locks `length` bytes from `start` on against reading and writing by others.
  void Lock(DWORD start, DWORD length) const {
    OVERLAPPED range = {};
    range.Offset = start;
    EXPECT_NE(LockFileEx(handle_, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, length, 0,
                         &range),
              0);
  }

  void CutTo(LONG length) const {
    EXPECT_EQ(SetFilePointer(handle_, length, nullptr, FILE_BEGIN), static_cast<DWORD>(length));
    EXPECT_NE(SetEndOfFile(handle_), 0);
  }

  bool CanRead() const {
    char byte = 0;
    DWORD read = 0;
    return ReadFile(handle_, &byte, 1, &read, nullptr) != 0;
  }

 private:
  const HANDLE handle_;
};

// While an instance exists, it runs an action once: after the library has determined the length of
// an opened file, and before it reads the file. It uses the line that the library then writes to
// the log.
class OnceLengthIsKnown {
 public:
  explicit OnceLengthIsKnown(std::function<void()> action)
      : handler_(AddVectoredExceptionHandler(1, &SeeLine)) {
    g_action = std::move(action);
    SetShared("MimeEmailZQV", "Debugging", true);
  }
  ~OnceLengthIsKnown() {
    RemoveVectoredExceptionHandler(handler_);
    EXPECT_EQ(g_action, nullptr) << "the log had no such line";
  }
  OnceLengthIsKnown(const OnceLengthIsKnown&) = delete;
  OnceLengthIsKnown& operator=(const OnceLengthIsKnown&) = delete;

 private:
  static LONG CALLBACK SeeLine(EXCEPTION_POINTERS* raised) {
    constexpr DWORD kPrinted = 0x40010006;  // DBG_PRINTEXCEPTION_C: length with the NUL, address
    const EXCEPTION_RECORD& record = *raised->ExceptionRecord;
    if (record.ExceptionCode != kPrinted) return EXCEPTION_CONTINUE_SEARCH;
    const std::string_view line = reinterpret_cast<const char*>(record.ExceptionInformation[1]);
    if (line.find("fileLen") != std::string_view::npos) std::exchange(g_action, nullptr)();
    return EXCEPTION_CONTINUE_EXECUTION;
  }

  static inline std::function<void()> g_action;
  void* const handler_;
};

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

TEST_F(Files, ThatVanishAreNotOpened) {
  Start();
  const TemporaryFolder folder;
  const std::string path = folder.Write("a.eml", PlainMessage());
  const Object file = MakeFolderItem(path);
  EXPECT_EQ(ConstructWith(kFromFile, file).raised, "");
  ASSERT_TRUE(std::filesystem::remove(path));
  ExpectNothingSet(ConstructWith(kFromFile, file), kNotOpened);
}

TEST_F(Files, ThatOthersLockAreNotOpened) {
  Start();
  const TemporaryFolder folder;
  const std::string path = folder.Write("a.eml", PlainMessage());
  {
    const Holder holder(path, 0);
    ExpectNothingSet(ConstructWith(kFromFile, MakeFolderItem(path)), kNotOpened);
  }
  EXPECT_EQ(RaisedByFile(path), "");
}

TEST_F(Files, WithBytesThatOthersLockAreNotRead) {
  Start();
  const TemporaryFolder folder;
  const std::string path = folder.Write("a.eml", PlainMessage());
  {
    const Holder holder(path, kShareAll);
    holder.Lock(0, 10);
    if (Holder(path, kShareAll).CanRead())
      GTEST_SKIP() << "locks do not prevent reading on this system";
    ExpectNothingSet(ConstructWith(kFromFile, MakeFolderItem(path)), kNotRead);
  }
  EXPECT_EQ(RaisedByFile(path), "");
}

TEST_F(Files, ThatShrinkMeanwhileAreNotRead) {
  Start();
  const TemporaryFolder folder;
  const std::string path = folder.Write("a.eml", PlainMessage());
  const OnceLengthIsKnown shrink([&] { Holder(path, kShareAll).CutTo(10); });
  ExpectNothingSet(ConstructWith(kFromFile, MakeFolderItem(path)), kNotRead);
}

TEST_F(Files, ThatVanishMeanwhileAreRead) {
  Start();
  const TemporaryFolder folder;
  const std::string path = folder.Write("a.eml", PlainMessage());
  const OnceLengthIsKnown vanish([&] {
    std::error_code refused;
    EXPECT_TRUE(std::filesystem::remove(path, refused));
  });
  EXPECT_EQ(RaisedByFile(path), "");
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(Files, ThatOthersWriteAreRead) {
  Start();
  const TemporaryFolder folder;
  const std::string path = folder.Write("a.eml", PlainMessage());
  const Holder holder(path, kShareAll);
  EXPECT_EQ(RaisedByFile(path), "");
}

TEST_F(Files, DevicesAreNotOpened) {
  Start();
  const TemporaryFolder folder;
  for (const char* name :
       {"NUL", "nul", "CON", "CONIN$", "CONOUT$", "PRN", "AUX", "COM1", "LPT1", "\\\\.\\NUL",
        "\\\\.\\COM1", "\\\\.\\C:", "\\\\.\\PhysicalDrive0", "\\\\?\\C:", "//./NUL"}) {
    EXPECT_EQ(RaisedByFile(name), kNotOpened) << name;
  }
  EXPECT_EQ(RaisedByFile(folder.Path("NUL")), kNotOpened);
  EXPECT_EQ(RaisedByFile(folder.Path("COM1")), kNotOpened);
}

// The library does not even connect to the pipe.
TEST_F(Files, PipesAreNotOpened) {
  Start();
  constexpr const char* kPipe = "\\\\.\\pipe\\zqv-interface-test";
  const HANDLE pipe = CreateNamedPipeA(kPipe, PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE | PIPE_NOWAIT, 1,
                                       64, 64, 0, nullptr);
  ASSERT_NE(pipe, INVALID_HANDLE_VALUE);
  EXPECT_EQ(RaisedByFile(kPipe), kNotOpened);
  DWORD read = 0;
  char byte = 0;
  EXPECT_EQ(ReadFile(pipe, &byte, 1, &read, nullptr), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PIPE_LISTENING)) << "somebody called";
  CloseHandle(pipe);
}

TEST_F(Files, StreamsAreNotOpened) {
  Start();
  const TemporaryFolder folder;
  const std::string path = folder.Write("a.eml", PlainMessage());
  for (const char* stream : {":x", "::$DATA", ":x:$DATA", ":"}) {
    EXPECT_EQ(RaisedByFile(path + stream), kNotOpened) << stream;
  }
}

// Other systems open a folder and report a length for which there is no memory.
TEST_F(Files, FoldersAreNotOpened) {
  Start();
  const TemporaryFolder folder;
  EXPECT_EQ(RaisedByFile(folder.path()), kNotOpened);
  EXPECT_EQ(RaisedByFile(folder.path() + "\\"), kNotOpened);
  EXPECT_EQ(RaisedByFile("C:\\"), kNotOpened);
}

TEST_F(Files, PathsMayBeLong) {
  Start();
  const TemporaryFolder folder;
  const std::string name(200, 'n');
  std::string deep = folder.path();
  for (int level = 0; level < 5; ++level) deep += "\\" + name;
  const std::filesystem::path whole = "\\\\?\\" + std::filesystem::absolute(deep).string();
  ASSERT_TRUE(std::filesystem::create_directories(whole));
  const std::string bytes = PlainMessage();
  const HANDLE file =
      CreateFileW((whole / "a.eml").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
  ASSERT_NE(file, INVALID_HANDLE_VALUE);
  DWORD written = 0;
  WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
  CloseHandle(file);
  EXPECT_EQ(RaisedByFile(deep + "\\a.eml"), "");
  EXPECT_EQ(RaisedByFile(deep + "\\b.eml"), kNotOpened);
  DeleteFileW((whole / "a.eml").c_str());
  std::filesystem::path left = whole;
  for (int level = 0; level < 5; ++level, left = left.parent_path()) {
    EXPECT_NE(RemoveDirectoryW(left.c_str()), 0);
  }
}

TEST_F(Files, PathsMayBeTooLong) {
  Start();
  for (const std::size_t length : {300U, 32'000U, 40'000U, 200'000U}) {
    EXPECT_EQ(RaisedByFile("C:\\" + std::string(length, 'a')), kNotOpened) << length;
  }
}

TEST_F(Files, PathsAreUtf8) {
  Start();
  const TemporaryFolder folder;
  const std::string emoji = "\xF0\x9F\x93\xA7 \xC3\xA9 \xE4\xBD\xA0.eml";
  EXPECT_EQ(RaisedByFile(folder.Write(emoji, PlainMessage())), "");
  for (const char* bad : {"\xFF.eml", "\xED\xA0\x80.eml", "a\xC3.eml"}) {
    EXPECT_EQ(RaisedByFile(folder.Path(bad)), kNotOpened) << bad;
  }
}

TEST_F(Files, PathsComeInManyForms) {
  Start();
  const TemporaryFolder folder;
  const std::string path =
      std::filesystem::absolute(folder.Write("a.eml", PlainMessage())).string();
  std::string slashes = path;
  for (char& c : slashes) c = c == '\\' ? '/' : c;
  const std::string name = path.substr(path.find_last_of("\\/") + 1);
  const std::string above = path.substr(0, path.size() - name.size());
  for (const std::string& form : {path, slashes, "\\\\?\\" + path, above + ".\\x\\..\\" + name}) {
    EXPECT_EQ(RaisedByFile(form), "") << form;
  }
  const TemporaryFolder unused;
  std::filesystem::current_path(above);
  EXPECT_EQ(RaisedByFile(name), "");
  std::filesystem::current_path(std::filesystem::temp_directory_path());
}

std::string RaisedByUrl(const std::string& url) {
  const Object file = MakeFolderItem("");
  auto& state = *static_cast<standin::NativeThing*>(file.thing())->state;
  std::get<standin::FolderItem>(state).url_path = url;
  return ConstructWith(kFromFile, file).raised;
}

TEST_F(Files, UrlsHaveADriveOrAServer) {
  StartVersion(2012.9);
  const TemporaryFolder folder;
  const std::string path =
      std::filesystem::absolute(folder.Write("a b.eml", PlainMessage())).string();
  EXPECT_EQ(RaisedByFile(path), "") << "as the host writes the URL";
  std::string local = "/" + path;
  for (char& c : local) c = c == '\\' ? '/' : c;
  EXPECT_EQ(RaisedByUrl("file://" + local), "");
  EXPECT_EQ(RaisedByUrl("FILE://LocalHost" + local), "");
  EXPECT_EQ(RaisedByUrl("file://" + local.substr(1)), kNotOpened);
  EXPECT_EQ(RaisedByUrl("file:///no-drive/a.eml"), kNotOpened);
  EXPECT_EQ(RaisedByUrl("file://zqv.invalid/share/a.eml"), kNotOpened);
  EXPECT_EQ(RaisedByUrl("file://./NUL"), kNotOpened);
  EXPECT_EQ(RaisedByUrl("http://localhost" + local), kNotOpened);
}

// A header and zeros up to three gigabytes, a length that needs more than 32 bits.
TEST_F(Files, OfGigabytesAreReadOrRefused) {
  MEMORYSTATUSEX memory = {};
  memory.dwLength = sizeof memory;
  GlobalMemoryStatusEx(&memory);
  if (memory.ullAvailPhys < 14ULL << 30U) GTEST_SKIP() << "not enough free memory here";
  Start();
  const TemporaryFolder folder;
  const std::string path = folder.Write("huge.eml", "Subject: Huge\n\nText\n");
  std::filesystem::resize_file(path, 3'000'000'000U);
  const Constructed constructed = ConstructWith(kFromFile, MakeFolderItem(path));
  if (constructed.raised.empty()) {
    EXPECT_EQ(ShowProperty(constructed.message, "Subject"), "0x600 Huge");
  } else {
    EXPECT_EQ(constructed.raised.substr(0, 24), std::string(kNoMemory).substr(0, 24));
  }
}

DWORD OpenHandles() {
  DWORD count = 0;
  GetProcessHandleCount(GetCurrentProcess(), &count);
  return count;
}

// Files are closed after each outcome: parsed, refused, not opened.
TEST_F(Files, AreClosed) {
  Start();
  const TemporaryFolder folder;
  const std::string paths[] = {folder.Write("a.eml", PlainMessage()),
                               folder.Write("b.eml", ""),
                               folder.Write("c.eml", "\xFF"),
                               folder.path(),
                               "NUL",
                               folder.Path("absent")};
  static_cast<void>(RaisedByFile(paths[0]));
  const DWORD before = OpenHandles();
  for (int i = 0; i < 20; ++i) {
    for (const std::string& path : paths) static_cast<void>(RaisedByFile(path));
  }
  EXPECT_EQ(OpenHandles(), before);
}

}  // namespace
}  // namespace zqv::interface_test
