// Files on POSIX systems: folders, pipes, devices, unreadable files and files of gigabytes.
// windows_files_test.cc has the cases of Windows.
#include "tests/interface/files.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#if defined(__linux__)
#include <sys/prctl.h>
#endif

#include <cstdio>
#include <filesystem>
#include <iterator>
#include <limits>
#include <memory>
#include <string>

#include "tests/interface/child.h"
#include "tests/interface/messages.h"
#include "tests/interface/refusals.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

class Files : public InterfaceTest {};

// The expected exception for a folder. It depends on the length that the file system reports for
// the folder, and on whether it can be opened.
std::string RuleForDirectory(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(path.c_str(), "rb"),
                                                               &std::fclose);
  if (stream == nullptr) return kNotOpened;
  if (std::fseek(stream.get(), 0, SEEK_END) != 0) return kNotRead;
  const long length = std::ftell(stream.get());
  if (length > std::numeric_limits<long>::max() - 4 || length + 4 <= 0) return kNoMemory;
  return length == 0 ? kEmpty : kNotRead;
}

TEST_F(Files, DirectoryIsNoFile) {
  Start();
  const TemporaryFolder folder;
  for (const std::string& path : {folder.path(), std::string("/dev/shm"), std::string("/proc")}) {
    if (access(path.c_str(), R_OK) != 0) continue;
    EXPECT_EQ(RaisedByFile(path), RuleForDirectory(path)) << path;
  }
}

void ReadsUnreadableFile(const std::string& path) {
  const bool is_root = geteuid() == 0;
  if (is_root) {
    ASSERT_EQ(seteuid(65534), 0);
  }
  {
    ASSERT_EQ(access(path.c_str(), F_OK), 0);
    Session session;
    ExpectNothingSet(ConstructWith(kFromFile, MakeFolderItem(path)), kNotOpened);
  }
  if (!is_root) return;
  // The leak checker needs the process's original user to examine the process.
  ASSERT_EQ(seteuid(0), 0);
#if defined(__linux__)
  ASSERT_EQ(prctl(PR_SET_DUMPABLE, 1), 0);
#endif
}

TEST_F(Files, UnreadableFile) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("secret.eml", PlainMessage());
  ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
  ASSERT_EQ(chmod(path.c_str(), 0), 0);
  LoadLibraryFile();
  InChild("unreadable", [&] { ReadsUnreadableFile(path); });
}

TEST_F(Files, PipeDoesNotHang) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
  ASSERT_EQ(symlink("pipe", folder.Path("link").c_str()), 0);
  LoadLibraryFile();
  for (const char* name : {"pipe", "link"}) {
    const auto body = [&] {
      Session session;
      ExpectNothingSet(ConstructWith(kFromFile, MakeFolderItem(folder.Path(name))), kNotOpened);
    };
    InChild(name, body, 20);
  }
}

std::ptrdiff_t OpenDescriptors() {
  const std::filesystem::directory_iterator descriptors("/dev/fd");
  return std::distance(begin(descriptors), end(descriptors));
}

// Files are closed after each outcome: parsed, refused, not read, not opened.
TEST_F(Files, FilesAreClosed) {
  Start();
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
  const std::string paths[] = {folder.Write("a.eml", PlainMessage()),
                               folder.Write("b.eml", ""),
                               folder.Write("c.eml", "\xFF"),
                               folder.path(),
                               "/dev/null",
                               folder.Path("pipe"),
                               folder.Path("absent")};
  const std::ptrdiff_t before = OpenDescriptors();
  for (const std::string& path : paths) {
    static_cast<void>(RaisedByFile(path));
    EXPECT_EQ(OpenDescriptors(), before) << path;
  }
}

TEST_F(Files, DevicesAreEmptyFiles) {
  Start();
  EXPECT_EQ(RaisedByFile("/dev/null"), kEmpty);
}

// macOS has no such files, limits no address space, and does not tell what memory is free.
#if defined(__linux__)
// A file system may report a wrong length; fewer bytes than reported are an error.
TEST_F(Files, FileShorterThanItsLength) {
  Start();
  std::FILE* const probe = std::fopen("/sys/kernel/mm/transparent_hugepage/enabled", "rb");
  if (probe == nullptr) GTEST_SKIP() << "no file with a wrong length here";
  std::fseek(probe, 0, SEEK_END);
  const long length = std::ftell(probe);
  std::fseek(probe, 0, SEEK_SET);
  std::string bytes(static_cast<std::size_t>(length), '\0');
  const bool is_short = std::fread(bytes.data(), 1, bytes.size(), probe) < bytes.size();
  std::fclose(probe);
  if (!is_short) GTEST_SKIP() << "its length is right";
  ExpectNothingSet(
      ConstructWith(kFromFile, MakeFolderItem("/sys/kernel/mm/transparent_hugepage/enabled")),
      kNotRead);
}

// A header followed by a hole of three gigabytes, which reads as zeros and takes no space on the
// disk.
std::string WriteHugeFile(const TemporaryFolder& folder) {
  const std::string path = folder.Write("huge.eml", "Subject: Huge\n\nText\n");
  EXPECT_EQ(truncate(path.c_str(), 3'000'000'000L), 0);
  return path;
}

// The file is either parsed, or refused because there is not enough memory.
void ReadsHugeFile(const std::string& path) {
  Session session;
  const Constructed constructed = ConstructWith(kFromFile, MakeFolderItem(path));
  if (constructed.raised.empty()) {
    EXPECT_EQ(ShowProperty(constructed.message, "Subject"), "0x600 Huge");
    EXPECT_EQ(ShowProperty(constructed.message, "Source"), "nil") << "too long for a string";
  } else {
    EXPECT_EQ(constructed.raised.substr(0, 24), std::string(kNoMemory).substr(0, 24));
  }
}

TEST_F(Files, HugeFileWithLittleMemory) {
  if (kSanitized) GTEST_SKIP() << "AddressSanitizer needs more address space than that";
  const TemporaryFolder folder;
  const std::string path = WriteHugeFile(folder);
  LoadLibraryFile();
  for (const rlim_t gigabytes : {2U, 4U}) {
    const auto body = [&] {
      const rlimit limit{gigabytes << 30U, gigabytes << 30U};
      ASSERT_EQ(setrlimit(RLIMIT_AS, &limit), 0);
      ReadsHugeFile(path);
    };
    InChild(std::to_string(gigabytes) + " GB", body, 280);
  }
}

// The memory needed is the file, the parsed body while it grows, and a reserve.
TEST_F(Files, HugeFile) {
  constexpr long kWanted = 14L << 30U;
  if (kSanitized) GTEST_SKIP() << "takes minutes under AddressSanitizer";
  if (sysconf(_SC_AVPHYS_PAGES) * sysconf(_SC_PAGESIZE) < kWanted) {
    GTEST_SKIP() << "this machine has not enough free memory";
  }
  const TemporaryFolder folder;
  const std::string path = WriteHugeFile(folder);
  LoadLibraryFile();
  InChild(
      "all memory", [&] { ReadsHugeFile(path); }, 280);
}
#endif

}  // namespace
}  // namespace zqv::interface_test
