// Input that cannot be parsed: which exception, what stays set.
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <iterator>
#include <limits>
#include <memory>
#include <string>

#include "tests/interface/child.h"
#include "tests/interface/files.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

constexpr const char* kFromString = "Constructor(Content as string)";
constexpr const char* kFromBlock = "Constructor(Content as MemoryBlock)";
constexpr const char* kFromFile = "Constructor(File as FolderItem)";

constexpr const char* kEmpty = "UnsupportedOperationException, 0: Can't parse empty text.";
constexpr const char* kHighByte =
    "UnsupportedOperationException, 0: Email must start with an header text. BOM character?";
constexpr const char* kNotOpened = "IOException, 0: Failed to open file for reading.";
constexpr const char* kNotRead = "IOException, 0: Failed to read data from file.";
constexpr const char* kNoMemory = "OutOfMemoryException, 0: Failed to allocate memory for email";

class Errors : public InterfaceTest {};

Constructed ConstructWith(const char* constructor, const Value& content) {
  return ConstructOn(NewInstance("MimeEmailZQV"), constructor, content);
}

std::string RaisedByFile(std::string_view path) {
  return ConstructWith(kFromFile, MakeFolderItem(path)).raised;
}

void ExpectNoParsedMembers(const Object& message) {
  for (const char* name : {"Header", "Body", "BodyDecoded", "Subject", "PlainText", "HTMLText",
                           "Date", "ReceivedDate"}) {
    EXPECT_TRUE(standin::IsNil(Get(message, name))) << name;
  }
}

// Refused input leaves two empty lists and the source, and nothing else.
void ExpectRefused(const Constructed& constructed, const std::string& raised,
                   const std::string& source) {
  EXPECT_EQ(constructed.raised, raised);
  const Object& message = constructed.message;
  for (const char* list : {"Inlines", "Attachments"}) {
    const Object array = ObjectOf(Call(message, list));
    ASSERT_FALSE(array.IsNil()) << list;
    EXPECT_EQ(array.Size(), 0) << list;
  }
  EXPECT_EQ(ShowProperty(message, "Source"), source);
  ExpectNoParsedMembers(message);
}

// What fails before there is any input leaves nothing at all.
void ExpectNothingSet(const Constructed& constructed, const std::string& raised) {
  EXPECT_EQ(constructed.raised, raised);
  for (const char* name : {"Source", "InlinesVariant", "AttachmentsVariant"}) {
    EXPECT_TRUE(standin::IsNil(Get(constructed.message, name))) << name;
  }
  ExpectNoParsedMembers(constructed.message);
}

TEST_F(Errors, EmptyInputIsRefused) {
  Start();
  ExpectRefused(ConstructWith(kFromString, Value()), kEmpty, "nil");
  ExpectRefused(ConstructWith(kFromBlock, Value()), kEmpty, "nil");
  ExpectRefused(ConstructWith(kFromBlock, MakeMemoryBlock("")), kEmpty, "nil");
  const TemporaryFolder folder;
  const Object file = MakeFolderItem(folder.Write("empty.eml", ""));
  ExpectRefused(ConstructWith(kFromFile, file), kEmpty, "nil");
}

TEST_F(Errors, EmptyStringIsRefusedAndIsTheSource) {
  Start();
  const String empty = standin::MakeEmptyString(abi::kUtf8);
  const Constructed constructed = ConstructWith(kFromString, empty);
  EXPECT_EQ(constructed.raised, kEmpty);
  EXPECT_TRUE(std::get<String>(Get(constructed.message, "Source")) == empty);
  ExpectNoParsedMembers(constructed.message);
}

TEST_F(Errors, BlockOfUnknownSizeOrWithoutPointerIsEmpty) {
  Start();
  ExpectRefused(ConstructWith(kFromBlock, standin::MakeMemoryBlockOfUnknownSize(PlainMessage())),
                kEmpty, "nil");
  ExpectRefused(ConstructWith(kFromBlock, standin::MakeMemoryBlockWithoutPointer(100)), kEmpty,
                "nil");
  ExpectRefused(ConstructWith(kFromBlock, standin::MakeMemoryBlockWithoutPointer(-1)), kEmpty,
                "nil");
}

TEST_F(Errors, OnlyAByteOrderMarkIsEmpty) {
  Start();
  const std::string mark = "\xEF\xBB\xBF";
  for (const Way way : kAllWays) {
    ExpectRefused(Construct(way, mark), kEmpty, "0xffff " + mark);
  }
}

TEST_F(Errors, EveryHighFirstByteIsRefused) {
  Start();
  for (int byte = 0x80; byte <= 0xFF; ++byte) {
    const std::string bytes = static_cast<char>(byte) + PlainMessage();
    for (const Way way : {Way::kString, Way::kBlock}) {
      SCOPED_TRACE(byte);
      ExpectRefused(Construct(way, bytes), kHighByte, "0xffff " + bytes);
    }
  }
}

TEST_F(Errors, EveryLowFirstByteIsParsed) {
  Start();
  for (int byte = 0; byte < 0x80; ++byte) {
    const Constructed constructed =
        Construct(Way::kBlock, static_cast<char>(byte) + std::string(": x\n\nText\n"));
    EXPECT_EQ(constructed.raised, "") << byte;
    EXPECT_FALSE(ObjectOf(Get(constructed.message, "Body")).IsNil()) << byte;
  }
}

// Only one mark is taken off; a part of a mark is none.
TEST_F(Errors, WhatFollowsTheMarkIsCheckedLikeAFirstByte) {
  Start();
  const std::string mark = "\xEF\xBB\xBF";
  EXPECT_EQ(ConstructFromString(mark + mark).raised, kHighByte);
  EXPECT_EQ(ConstructFromString(mark + "\xC3\xA9: x\n").raised, kHighByte);
  EXPECT_EQ(ConstructFromString("\xEF\xBB").raised, kHighByte);
  EXPECT_EQ(ConstructFromString(mark + "S").raised, "");
}

TEST_F(Errors, FilesThatCannotBeOpened) {
  Start();
  const TemporaryFolder folder;
  ExpectNothingSet(ConstructWith(kFromFile, Value()), kNotOpened);
  ExpectNothingSet(ConstructWith(kFromFile, MakeFolderItem(folder.Path("absent.eml"))), kNotOpened);
  ExpectNothingSet(ConstructWith(kFromFile, MakeFolderItem("")), kNotOpened);
  EXPECT_EQ(RaisedByFile(folder.Write("a.eml", "x") + "/below-a-file"), kNotOpened);
  EXPECT_EQ(RaisedByFile(std::string(5000, 'a')), kNotOpened);
}

TEST_F(Errors, PathWithANulIsNoPath) {
  Start();
  const TemporaryFolder folder;
  const std::string path = folder.Write("a.eml", PlainMessage());
  EXPECT_EQ(RaisedByFile(path), "");
  EXPECT_EQ(RaisedByFile(path + std::string("\0.eml", 5)), kNotOpened);
}

// What a directory's length is, and whether it can be read, the file system decides; what follows
// from that is the rule.
std::string RuleForDirectory(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(path.c_str(), "rb"),
                                                               &std::fclose);
  if (stream == nullptr) return kNotOpened;
  if (std::fseek(stream.get(), 0, SEEK_END) != 0) return kNotRead;
  const long length = std::ftell(stream.get());
  if (length > std::numeric_limits<long>::max() - 4 || length + 4 <= 0) return kNoMemory;
  return length == 0 ? kEmpty : kNotRead;
}

TEST_F(Errors, DirectoryIsNoFile) {
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
  // A leak checker can look at a process only when it is as it was.
  ASSERT_EQ(seteuid(0), 0);
  ASSERT_EQ(prctl(PR_SET_DUMPABLE, 1), 0);
}

TEST_F(Errors, UnreadableFile) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("secret.eml", PlainMessage());
  ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
  ASSERT_EQ(chmod(path.c_str(), 0), 0);
  LoadLibraryFile();
  InChild("unreadable", [&] { ReadsUnreadableFile(path); });
}

TEST_F(Errors, PipeDoesNotHang) {
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
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return std::distance(begin(descriptors), end(descriptors));
}

// Whatever becomes of them: parsed, refused, not read, not opened.
TEST_F(Errors, FilesAreClosed) {
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

TEST_F(Errors, DevicesAreEmptyFiles) {
  Start();
  EXPECT_EQ(RaisedByFile("/dev/null"), kEmpty);
}

// A file system's length may be wrong; fewer bytes than it says is an error.
TEST_F(Errors, FileShorterThanItsLength) {
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

// A header, then three gigabytes of zeros that take no room on the disk.
std::string WriteHugeFile(const TemporaryFolder& folder) {
  const std::string path = folder.Write("huge.eml", "Subject: Huge\n\nText\n");
  EXPECT_EQ(truncate(path.c_str(), 3'000'000'000L), 0);
  return path;
}

// It is parsed or refused for want of memory; anything else would be a crash.
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

TEST_F(Errors, HugeFileWithLittleMemory) {
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

// The file, the parsed body while it grows, and some.
TEST_F(Errors, HugeFile) {
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

// A FolderItem that knows nothing but its URL, on a host that has no "NativePath" yet.
std::string RaisedByUrl(const std::string& url) {
  const Object file = MakeFolderItem("");
  auto& state = *static_cast<standin::NativeThing*>(file.thing())->state;
  std::get<standin::FolderItem>(state).url_path = url;
  return ConstructWith(kFromFile, file).raised;
}

TEST_F(Errors, OldHostsReadTheUrl) {
  StartVersion(2012.9);
  const TemporaryFolder folder;
  const std::string path = folder.Write("caf\xC3\xA9 \x25 a.eml", PlainMessage());
  const std::string name = "caf%C3%A9%20%25%20a.eml";
  const std::string lower_name = "caf%c3%a9%20%25%20a.eml";
  EXPECT_EQ(RaisedByFile(path), "") << "as the host writes the URL";
  EXPECT_EQ(RaisedByUrl("file://" + folder.Path(name)), "");
  EXPECT_EQ(RaisedByUrl("file://" + folder.Path(lower_name)), "");
  EXPECT_EQ(RaisedByUrl("file://localhost" + folder.Path(name)), "");
  EXPECT_EQ(RaisedByUrl("file://example.org" + folder.Path(name)), kNotOpened);
  EXPECT_EQ(RaisedByUrl("http://localhost" + folder.Path(name)), kNotOpened);
  EXPECT_EQ(RaisedByUrl(path), kNotOpened);
  EXPECT_EQ(RaisedByUrl(""), kNotOpened);
  EXPECT_EQ(RaisedByUrl("file://" + folder.Path("%")), kNotOpened);
  EXPECT_EQ(RaisedByUrl("file://" + folder.Path("caf%C3%A9%20%2")), kNotOpened);
  EXPECT_EQ(RaisedByUrl("file://" + folder.Path("caf%C3%A9%00.eml")), kNotOpened);
}

TEST_F(Errors, UrlIsReadBefore2013AndThePathFromThenOn) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("a.eml", PlainMessage());
  LoadLibraryFile();
  for (const double version : {0.0, 2011.0, 2012.99, 2013.0, 2013.01, 2024.1}) {
    const auto body = [&] {
      Capabilities capabilities;
      capabilities.version = version;
      capabilities.missing_properties = {version < 2013.0 ? "FolderItem.NativePath"
                                                          : "FolderItem.URLPath"};
      Session session(capabilities);
      EXPECT_EQ(RaisedByFile(path), "");
    };
    InChild(std::to_string(version), body);
  }
}

// Both kinds of path, in every encoding that a host may give them in.
TEST_F(Errors, PathsInAnyEncoding) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("caf\xC3\xA9 \xC3\x9C.eml", PlainMessage());
  const std::string url = "file://" + folder.Path("caf%C3%A9%20%C3%9C.eml");
  LoadLibraryFile();
  for (const abi::Encoding encoding :
       {abi::kMacRoman, abi::kUtf16, abi::kUtf16BigEndian, abi::kUtf16LittleEndian, abi::kIsoLatin1,
        abi::kWindowsLatin1, abi::kUtf8, abi::kUtf32, abi::kUnknownEncoding}) {
    for (const double version : {2012.0, 2024.1}) {
      const auto body = [&] {
        Capabilities capabilities;
        capabilities.version = version;
        capabilities.path_encoding = encoding;
        Session session(capabilities);
        EXPECT_EQ(version < 2013.0 ? RaisedByUrl(url) : RaisedByFile(path), "");
      };
      InChild(std::to_string(version) + " " + std::to_string(encoding), body);
    }
  }
}

TEST_F(Errors, FolderItemWithoutItsProperty) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("a.eml", PlainMessage());
  LoadLibraryFile();
  for (const double version : {2012.0, 2024.1}) {
    const auto body = [&] {
      Capabilities capabilities;
      capabilities.version = version;
      capabilities.missing_properties = {"FolderItem.NativePath", "FolderItem.URLPath"};
      Session session(capabilities);
      EXPECT_EQ(RaisedByFile(path), kNotOpened);
    };
    InChild(std::to_string(version), body);
  }
}

// A host that does not know the class of an exception raises a RuntimeException; one that does not
// know that either raises nothing.
TEST_F(Errors, UnknownExceptionClass) {
  const struct {
    std::set<std::string, std::less<>> unknown;
    const char* raised;
  } kRows[] = {
      {{"UnsupportedOperationException"}, "RuntimeException, 0: Can't parse empty text."},
      {{"UnsupportedOperationException", "RuntimeException"}, ""},
      {{"RuntimeException"}, kEmpty},
  };
  LoadLibraryFile();
  for (const auto& row : kRows) {
    InChild(row.raised, [&] {
      Capabilities capabilities;
      capabilities.unknown_classes = row.unknown;
      Session session(capabilities);
      ExpectRefused(ConstructWith(kFromString, Value()), row.raised, "nil");
    });
  }
}

TEST_F(Errors, ExceptionIsPendingOnceAndTheNextMessageIsParsed) {
  Start();
  EXPECT_EQ(ConstructFromString("").raised, kEmpty);
  EXPECT_EQ(ConstructFromString(PlainMessage()).raised, "");
  EXPECT_EQ(host().CallCount("RuntimeRaiseException"), 1U);
}

}  // namespace
}  // namespace zqv::interface_test
