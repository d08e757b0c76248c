#include "objects/input.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "standin/application.h"
#include "tests/support/failing_memory.h"
#include "tests/unit/base/log_capture.h"
#include "tests/unit/objects/email_fixture.h"

namespace zqv::test {
namespace {

// Results with which the replaced file functions differ from the real ones.
std::optional<long> g_length;     // returned by ftell
std::size_t g_missing_bytes = 0;  // by which fread returns fewer than requested

}  // namespace
}  // namespace zqv::test

// The linker uses these instead of the functions whose names they contain.
extern "C" {
long __real_ftell(std::FILE* stream);
long __wrap_ftell(std::FILE* stream);
std::size_t __real_fread(void* memory, std::size_t size, std::size_t count, std::FILE* stream);
std::size_t __wrap_fread(void* memory, std::size_t size, std::size_t count, std::FILE* stream);
}

long __wrap_ftell(std::FILE* stream) {
  return zqv::test::g_length.has_value() ? *zqv::test::g_length : __real_ftell(stream);
}

std::size_t __wrap_fread(void* memory, std::size_t size, std::size_t count, std::FILE* stream) {
  return __real_fread(memory, size, count - zqv::test::g_missing_bytes, stream);
}

namespace zqv::test {
namespace {

class Input : public EmailTest {
 protected:
  void SetUp() override {
    EmailTest::SetUp();
    std::string pattern = (std::filesystem::temp_directory_path() / "zqv-input-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
  }

  void TearDown() override {
    g_length.reset();
    g_missing_bytes = 0;
    std::filesystem::remove_all(folder_);
    EmailTest::TearDown();
  }

  std::string Write(const std::string& name, std::string_view content) const {
    const std::string path = folder_ / name;
    std::ofstream(path, std::ios::binary) << content;
    return path;
  }

  // The bytes of the file; "nothing" when it could not be read.
  static std::string Read(const std::string& path) {
    const auto file = standin::MakeFolderItem(path);
    const auto read = objects::ReadFile(file.raw());
    return read.has_value() ? std::string(read->bytes()) : "nothing";
  }

  std::filesystem::path folder_;
};

constexpr char kNotOpened[] = "IOException, 0: Failed to open file for reading.";
constexpr char kNotRead[] = "IOException, 0: Failed to read data from file.";
constexpr char kNoMemory[] = "OutOfMemoryException, 0: Failed to allocate memory for email";

TEST_F(Input, BlockGivesItsBytes) {
  const std::string bytes("a\0\xFF", 3);
  const auto block = standin::MakeMemoryBlock(bytes);
  const objects::BlockBytes held(block.raw());
  EXPECT_EQ(held.bytes(), bytes);
  EXPECT_EQ(block.locks(), 2) << "held meanwhile";
}

TEST_F(Input, BlockIsGivenBack) {
  const auto block = standin::MakeMemoryBlock("abc");
  { const objects::BlockBytes held(block.raw()); }
  EXPECT_EQ(block.locks(), 1);
}

TEST_F(Input, BlockWithoutBytesIsEmpty) {
  EXPECT_EQ(objects::BlockBytes(nullptr).bytes(), "");
  EXPECT_EQ(objects::BlockBytes(standin::MakeMemoryBlock("").raw()).bytes(), "");
  EXPECT_EQ(objects::BlockBytes(standin::MakeMemoryBlockOfUnknownSize("abc").raw()).bytes(), "");
  EXPECT_EQ(objects::BlockBytes(standin::MakeMemoryBlockWithoutPointer(3).raw()).bytes(), "");
}

TEST_F(Input, BlockIsEmptyWhenTheHostCannotReadIt) {
  for (const char* name : {"memoryBlockGetSize", "memoryBlockGetPtr"}) {
    StartEmailWithFault(name);
    EXPECT_EQ(objects::BlockBytes(standin::MakeMemoryBlock("abc").raw()).bytes(), "");
  }
}

TEST_F(Input, FileGivesItsBytes) {
  const std::string bytes("a\r\n\0\xFF\x1A", 6);
  EXPECT_EQ(Read(Write("file", bytes)), bytes);
  EXPECT_EQ(Read(Write("a b%20\xC3\xA9", "named")), "named");
  const std::string large(3'000'000, 'x');
  EXPECT_EQ(Read(Write("large", large)), large);
}

TEST_F(Input, EmptyFileGivesNoBytesAndIsNoFailure) {
  EXPECT_EQ(Read(Write("empty", "")), "");
  EXPECT_EQ(TakeRaised(), "");
}

TEST_F(Input, FileIsFoundByItsUrlInAnOlderHost) {
  standin::Capabilities capabilities;
  capabilities.version = 2012.2;
  capabilities.missing_properties.insert("FolderItem.NativePath");
  StartEmail(capabilities);
  EXPECT_EQ(Read(Write("a b", "named")), "named");
}

TEST_F(Input, FileThatIsNotThereIsNotOpened) {
  EXPECT_EQ(Read(folder_ / "none"), "nothing");
  EXPECT_EQ(TakeRaised(), kNotOpened);
}

TEST_F(Input, FileWithoutAPathIsNotOpened) {
  EXPECT_FALSE(objects::ReadFile(nullptr).has_value());
  EXPECT_EQ(TakeRaised(), kNotOpened);
  EXPECT_EQ(Read(""), "nothing");
  EXPECT_EQ(TakeRaised(), kNotOpened);
  StartEmailWithFault("REALGetPropValueString");
  EXPECT_EQ(Read(Write("file", "x")), "nothing");
  EXPECT_EQ(TakeRaised(), kNotOpened);
}

TEST_F(Input, PipeIsNotOpenedAndNotWaitedFor) {
  const std::string path = folder_ / "pipe";
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  EXPECT_EQ(Read(path), "nothing");
  EXPECT_EQ(TakeRaised(), kNotOpened);
}

TEST_F(Input, FileThatReportsFewerBytesThanItHasIsReadUpToThem) {
  const std::string path = Write("file", "0123456789");
  g_length = 4;
  EXPECT_EQ(Read(path), "0123");
}

TEST_F(Input, FileWithFewerBytesThanReportedIsRefused) {
  const std::string path = Write("file", "0123456789");
  g_missing_bytes = 1;
  EXPECT_EQ(Read(path), "nothing");
  EXPECT_EQ(TakeRaised(), kNotRead);
  g_missing_bytes = 0;
  g_length = 11;
  EXPECT_EQ(Read(path), "nothing");
  EXPECT_EQ(TakeRaised(), kNotRead);
}

TEST_F(Input, FileThatReportsNoLengthIsRefused) {
  const std::string path = Write("file", "x");
  g_length = -1;
  EXPECT_EQ(Read(path), "nothing");
  EXPECT_EQ(TakeRaised(), kNotRead);
}

TEST_F(Input, FileTooLargeForMemoryIsRefused) {
  const std::string path = Write("file", std::string(1'000, 'x'));
  const auto read_within = [&path](std::size_t bytes) {
    const auto file = standin::MakeFolderItem(path);
    const AllocationLimit limit(bytes);
    const auto read = objects::ReadFile(file.raw());
    return read.has_value() ? read->bytes().size() : 0;
  };
  EXPECT_EQ(read_within(1'003), 0U);
  EXPECT_EQ(TakeRaised(), kNoMemory);
  EXPECT_EQ(read_within(1'004), 1'000U) << "four bytes more than the file has suffice";
}

// ftell returns this length for a directory.
TEST_F(Input, LengthToWhichFourCannotBeAddedIsRefused) {
  const std::string path = Write("file", "x");
  for (long less = 0; less < 4; ++less) {
    g_length = std::numeric_limits<long>::max() - less;
    EXPECT_EQ(Read(path), "nothing");
    EXPECT_EQ(TakeRaised(), kNoMemory);
  }
}

TEST_F(Input, DirectoryIsNoMessage) {
  const auto folder = standin::MakeFolderItem(folder_.string());
  const auto read = objects::ReadFile(folder.raw());
  // Whether a directory has a length depends on the file system.
  if (read.has_value()) {
    EXPECT_EQ(read->bytes(), "");
  } else {
    EXPECT_NE(TakeRaised(), "");
  }
}

TEST_F(Input, LogsEachStep) {
  const std::string path = Write("file", "0123456789");
  const auto file = standin::MakeFolderItem(path);
  const LogCapture log;
  EXPECT_TRUE(objects::ReadFile(file.raw()).has_value());
  const std::string text = log.Text();
  // The second and third line show the same address of a stream, which differs from run to run.
  const std::string stream = text.substr(text.find("result ") + 7, 14);
  EXPECT_EQ(stream.substr(0, 2), "0x");
  EXPECT_EQ(text, "native path: " + path + "\n" +
                      Logged({"result " + stream, "f " + stream, "fileLen 10", "r 10"}));
}

TEST_F(Input, LogsAMissingPathAndFile) {
  const std::string path = folder_ / "none";
  const auto none = standin::MakeFolderItem(path);
  const auto nowhere = standin::MakeFolderItem("");
  const LogCapture log;
  EXPECT_FALSE(objects::ReadFile(nullptr).has_value());
  EXPECT_FALSE(objects::ReadFile(none.raw()).has_value());
  EXPECT_FALSE(objects::ReadFile(nowhere.raw()).has_value());
  EXPECT_EQ(log.Text(), Logged({"folderitem is nil"}) + "native path: " + path + "\n" +
                            Logged({"result (nil)", "f (nil)"}) + "native path: (null)\n" +
                            Logged({"f (nil)"}));
  EXPECT_NE(TakeRaised(), "");
}

TEST_F(Input, MessageBytesAreEmptyOnceFreed) {
  auto memory = base::AllocateZeroed<char>(4);
  objects::MessageBytes owned(std::move(memory), 4);
  EXPECT_EQ(owned.bytes().size(), 4U);
  owned.Free();
  EXPECT_EQ(owned.bytes(), "");
  objects::MessageBytes borrowed(std::string_view("abc"));
  EXPECT_EQ(borrowed.bytes(), "abc");
  borrowed.Free();
  EXPECT_EQ(borrowed.bytes(), "");
}

}  // namespace
}  // namespace zqv::test
