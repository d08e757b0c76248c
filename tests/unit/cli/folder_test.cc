// Writes files in folders of several kinds of system: with unnamed files (O_TMPFILE), on a file
// system or kernel without them, and without /proc.
#include "cli/folder.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

// Errors that the replaced system calls return; 0 makes the real call.
int g_unnamed_error = 0;  // of openat for an unnamed file
int g_link_error = 0;     // of linkat, which gives it a name
int g_rename_error = 0;   // of renameat2
std::optional<std::size_t>
    g_free_bytes;  // bytes that can be written until the disk is full; empty: no limit
std::function<void()> g_at_write;

int Failed(int error) {
  errno = error;
  return -1;
}

}  // namespace

// The linker uses these instead of the functions whose names they contain.
extern "C" {
int __real_openat(int folder, const char* path, int flags, ...);
int __wrap_openat(int folder, const char* path, int flags, ...);
int __real_linkat(int from_folder, const char* from, int to_folder, const char* to, int flags);
int __wrap_linkat(int from_folder, const char* from, int to_folder, const char* to, int flags);
int __real_renameat2(int from_folder, const char* from, int to_folder, const char* to,
                     unsigned flags);
int __wrap_renameat2(int from_folder, const char* from, int to_folder, const char* to,
                     unsigned flags);
ssize_t __real_write(int file, const void* bytes, std::size_t size);
ssize_t __wrap_write(int file, const void* bytes, std::size_t size);
}

int __wrap_openat(int folder, const char* path, int flags, ...) {
  if ((flags & O_TMPFILE) == O_TMPFILE && g_unnamed_error != 0) return Failed(g_unnamed_error);
  mode_t mode = 0;
  if ((flags & (O_CREAT | __O_TMPFILE)) != 0) {
    std::va_list rest;
    va_start(rest, flags);
    mode = va_arg(rest, mode_t);
    va_end(rest);
  }
  return __real_openat(folder, path, flags, mode);
}

int __wrap_linkat(int from_folder, const char* from, int to_folder, const char* to, int flags) {
  return g_link_error != 0 ? Failed(g_link_error)
                           : __real_linkat(from_folder, from, to_folder, to, flags);
}

int __wrap_renameat2(int from_folder, const char* from, int to_folder, const char* to,
                     unsigned flags) {
  return g_rename_error != 0 ? Failed(g_rename_error)
                             : __real_renameat2(from_folder, from, to_folder, to, flags);
}

ssize_t __wrap_write(int file, const void* bytes, std::size_t size) {
  if (g_at_write) g_at_write();
  if (!g_free_bytes) return __real_write(file, bytes, size);
  size = std::min(size, *g_free_bytes);
  if (size == 0) return Failed(ENOSPC);
  *g_free_bytes -= size;
  return __real_write(file, bytes, size);
}

namespace zqv::cli {
namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

struct System {
  const char* name;
  int unnamed_error;
  int link_error;
};

void PrintTo(const System& system, std::ostream* out) { *out << system.name; }

class FolderTest : public testing::Test {
 protected:
  FolderTest() {
    std::string name = (fs::temp_directory_path() / "zqv-folder-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error(name);
    path_ = name;
  }
  ~FolderTest() override {
    g_unnamed_error = g_link_error = g_rename_error = 0;
    g_free_bytes.reset();
    g_at_write = nullptr;
    fs::remove_all(path_);
  }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(path_)) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  std::string Bytes(const std::string& name) const {
    std::ifstream file(path_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  fs::path path_;
};

class FolderOnSystem : public FolderTest, public testing::WithParamInterface<System> {
 protected:
  FolderOnSystem() {
    g_unnamed_error = GetParam().unnamed_error;
    g_link_error = GetParam().link_error;
  }
};

// The text of the exception that a call throws; empty when it throws none.
template <typename Call>
std::string ErrorOf(const Call& call) {
  try {
    call();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

TEST_P(FolderOnSystem, WritesAFileWhole) {
  const std::string bytes(100'000, '\0');
  EXPECT_EQ(Folder(path_).Write("a.bin", bytes, false), (path_ / "a.bin").string());
  EXPECT_EQ(Bytes("a.bin"), bytes);
  EXPECT_THAT(Names(), UnorderedElementsAre("a.bin"));
}

// An unfinished file of a killed process is not taken for the file, and does not prevent writing
// it.
TEST_P(FolderOnSystem, IgnoresAnUnfinishedFile) {
  const Folder folder(path_);
  const std::string name(250, 'n');
  std::ofstream(path_ / UnfinishedName(name)) << "half";
  bool is_seen = true;
  g_at_write = [&] { is_seen = folder.Has(name); };
  folder.Write(name, "whole", false);
  EXPECT_FALSE(is_seen);
  EXPECT_EQ(Bytes(name), "whole");
}

TEST_P(FolderOnSystem, ReplacesAFileOnRequestOnly) {
  const Folder folder(path_);
  folder.Write("a.txt", "old", false);
  EXPECT_THAT(ErrorOf([&] { folder.Write("a.txt", "new", false); }),
              HasSubstr("a.txt: File exists"));
  EXPECT_EQ(Bytes("a.txt"), "old");
  folder.Write("a.txt", "new", true);
  EXPECT_EQ(Bytes("a.txt"), "new");
  EXPECT_THAT(Names(), UnorderedElementsAre("a.txt"));
}

TEST_P(FolderOnSystem, FollowsNoLink) {
  fs::create_directory(path_ / "inside");
  fs::create_symlink("../a.txt", path_ / "inside" / "link");
  const Folder folder = Folder(path_).Sub("inside");
  for (const bool force : {false, true}) {
    EXPECT_NE(ErrorOf([&] { folder.Write("link", "bytes", force); }), "");
  }
  EXPECT_THAT(Names(), UnorderedElementsAre("inside"));
}

TEST_P(FolderOnSystem, LeavesNothingOnAFullDisk) {
  g_free_bytes = 1000;
  EXPECT_THAT(ErrorOf([&] { Folder(path_).Write("a.bin", std::string(5000, 'x'), false); }),
              HasSubstr("a.bin: No space left on device"));
  EXPECT_EQ(*g_free_bytes, 0U);
  EXPECT_THAT(Names(), IsEmpty());
}

TEST_P(FolderOnSystem, FailsWhenItWasRemoved) {
  const Folder folder(path_);
  fs::remove_all(path_);
  // The error that follows the name depends on the kernel.
  EXPECT_THAT(ErrorOf([&] { folder.Write("a.txt", "bytes", false); }), HasSubstr("a.txt: "));
}

INSTANTIATE_TEST_SUITE_P(Folder, FolderOnSystem,
                         testing::Values(System{"UnnamedFiles", 0, 0},
                                         System{"FileSystemWithout", EOPNOTSUPP, 0},
                                         System{"KernelWithout", EISDIR, 0},
                                         System{"NoProc", 0, ENOENT}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(FolderTest, GivesANewNameAndReplacesNothing) {
  const Folder folder(path_);
  for (const int error : {0, EINVAL}) {  // EINVAL: the file system cannot rename without replacing
    g_rename_error = error;
    folder.Sub("from").Write("new.txt", "new", false);
    folder.Rename("from", "to");
    EXPECT_THAT(Names(), UnorderedElementsAre("to"));
    folder.Sub("from");
    EXPECT_THAT(ErrorOf([&] { folder.Rename("from", "to"); }), HasSubstr("to: File exists"));
    EXPECT_EQ(Bytes("to/new.txt"), "new");
    folder.Remove("from");
    folder.Remove("to");
    EXPECT_THAT(Names(), IsEmpty());
  }
}

// Remove works in the folder that was opened, even if a link has taken its place at that path.
TEST_F(FolderTest, RemovesInTheOpenedFolderOnly) {
  const Folder folder = Folder(path_).Sub("inside");
  folder.Sub("thing").Write("a.txt", "bytes", false);
  fs::rename(path_ / "inside", path_ / "moved");
  fs::create_directories(path_ / "other" / "thing");
  fs::create_symlink("other", path_ / "inside");
  folder.Remove("thing");
  EXPECT_TRUE(fs::exists(path_ / "other" / "thing"));
  EXPECT_FALSE(fs::exists(path_ / "moved" / "thing"));
}

}  // namespace
}  // namespace zqv::cli
