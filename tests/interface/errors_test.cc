// Input that cannot be parsed: the exception, and the properties that stay set.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/interface/child.h"
#include "tests/interface/files.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/refusals.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

class Errors : public InterfaceTest {};

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

// One byte order mark is skipped; a second one or a part of one is not.
TEST_F(Errors, TheByteAfterTheMarkIsCheckedLikeAFirstByte) {
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

TEST_F(Errors, PathWithANulIsNotOpened) {
  Start();
  const TemporaryFolder folder;
  const std::string path = folder.Write("a.eml", PlainMessage());
  EXPECT_EQ(RaisedByFile(path), "");
  EXPECT_EQ(RaisedByFile(path + std::string("\0.eml", 5)), kNotOpened);
}

// Constructs a message from a FolderItem that has a URL only, in a host without "NativePath".
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
  EXPECT_EQ(RaisedByFile(path), "") << "the URL in the host's own form";
  EXPECT_EQ(RaisedByUrl("file://" + folder.UrlPath(name)), "");
  EXPECT_EQ(RaisedByUrl("file://" + folder.UrlPath(lower_name)), "");
  EXPECT_EQ(RaisedByUrl("file://localhost" + folder.UrlPath(name)), "");
  EXPECT_EQ(RaisedByUrl("file://example.org" + folder.UrlPath(name)), kNotOpened);
  EXPECT_EQ(RaisedByUrl("http://localhost" + folder.UrlPath(name)), kNotOpened);
  EXPECT_EQ(RaisedByUrl(path), kNotOpened);
  EXPECT_EQ(RaisedByUrl(""), kNotOpened);
  EXPECT_EQ(RaisedByUrl("file://" + folder.UrlPath("%")), kNotOpened);
  EXPECT_EQ(RaisedByUrl("file://" + folder.UrlPath("caf%C3%A9%20%2")), kNotOpened);
  EXPECT_EQ(RaisedByUrl("file://" + folder.UrlPath("caf%C3%A9%00.eml")), kNotOpened);
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

// Both properties with a path, in every encoding in which a host may return them.
TEST_F(Errors, PathsInAnyEncoding) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("caf\xC3\xA9 \xC3\x9C.eml", PlainMessage());
  const std::string url = "file://" + folder.UrlPath("caf%C3%A9%20%C3%9C.eml");
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

// A host without the class of an exception raises a RuntimeException; a host without that class
// raises nothing.
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
