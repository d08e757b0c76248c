// All lines of the debug log, in their order.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/interface/child.h"
#include "tests/interface/files.h"
#include "tests/interface/log_capture.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::StartsWith;

using standin::ArrayLayout;

constexpr const char* kEmail = "MimeEmailZQV";
constexpr const char* kSmall = "Subject: Hi\nContent-Type: text/plain\n\nHello\n";
#if defined(_WIN32)
// The form of pointers on Windows. GoogleTest's own regular expressions, which are used there, do
// not support brackets.
constexpr const char* kPointer = "\\w+";
constexpr const char* kNoPointer = "0000000000000000";
// On Windows a file URL needs a drive.
constexpr const char* kAbsent = "C:/absent/a b.eml";
constexpr const char* kUrlOfAbsent = "file:///C:/absent/a%20b.eml";
#else
constexpr const char* kPointer = "0x[0-9a-f]+";
#if defined(__APPLE__)
constexpr const char* kNoPointer = "0x0";
#else
constexpr const char* kNoPointer = "(nil)";
#endif
constexpr const char* kAbsent = "/absent/a b.eml";
constexpr const char* kUrlOfAbsent = "file:///absent/a%20b.eml";
#endif

class DebugLog : public InterfaceTest {};

// The lines that `work` writes while the log is on, without the line about switching it on.
template <typename Work>
std::vector<std::string> Logged(Work work) {
  SetShared(kEmail, "Debugging", false);
  const LogCapture capture;
  SetShared(kEmail, "Debugging", true);
  static_cast<void>(RaisedBy(work));
  SetShared(kEmail, "Debugging", false);
  std::vector<std::string> lines = capture.Lines();
  EXPECT_FALSE(lines.empty());
  if (!lines.empty()) lines.erase(lines.begin());
  return lines;
}

std::string Line(const std::string& text) { return "ZQV Debug: " + text; }

TEST_F(DebugLog, SwitchingOnIsLoggedOnce) {
  Start();
  const LogCapture capture;
  SetShared(kEmail, "Debugging", false);
  EXPECT_THAT(capture.Lines(), IsEmpty());
  SetShared(kEmail, "Debugging", true);
  SetShared(kEmail, "Debugging", true);
  EXPECT_THAT(capture.Lines(), ElementsAre(Line("ZQV debug logging enabled.")));
  SetShared(kEmail, "Debugging", false);
  SetShared(kEmail, "Debugging", true);
  EXPECT_EQ(capture.Lines().size(), 2U) << "one line for each time it was switched on";
}

TEST_F(DebugLog, NothingIsWrittenWhileItIsOff) {
  Start();
  const LogCapture capture;
  for (const Way way : kAllWays) UseEverything(way, RichMessage());
  EXPECT_THAT(capture.Lines(), IsEmpty());
}

TEST_F(DebugLog, FromAString) {
  Start();
  EXPECT_THAT(Logged([] { Parse(kSmall); }),
              ElementsAre(Line("MimeEmailConstructor1"), Line("MimeEmailConstructor 44"),
                          Line("decoded body of type text, plain"), Line("Set email plainText"),
                          Line("parts count 0")));
  EXPECT_EQ(std::string(kSmall).size(), 44U);
}

TEST_F(DebugLog, FromABlock) {
  Start();
  EXPECT_THAT(Logged([] { Parse(kSmall, Way::kBlock); }),
              ElementsAre(Line("MimeEmailConstructor2"), Line("MimeEmailConstructor 44"),
                          Line("decoded body of type text, plain"), Line("Set email plainText"),
                          Line("parts count 0")));
}

Constructed ConstructFile(const Value& file) {
  return ConstructOn(NewInstance(kEmail), "Constructor(File as FolderItem)", file);
}

TEST_F(DebugLog, FromAFile) {
  Start();
  const TemporaryFolder folder;
  const std::string path = folder.Write("a.eml", kSmall);
  const Object file = MakeFolderItem(path);
  const std::vector<std::string> lines = Logged([&] { ConstructFile(file); });
  EXPECT_THAT(lines,
              ElementsAre(Line("MimeEmailConstructor3"), "native path: " + path,
                          MatchesRegex(Line("result ") + kPointer),
                          MatchesRegex(Line("f ") + kPointer), Line("fileLen 44"), Line("r 44"),
                          Line("MimeEmailConstructor 44"), Line("decoded body of type text, plain"),
                          Line("Set email plainText"), Line("parts count 0")));
  ASSERT_EQ(lines.size(), 10U);
  const std::string pointer = lines[2].substr(lines[2].rfind(' ') + 1);
  EXPECT_NE(pointer, kNoPointer);
  EXPECT_EQ(lines[3], Line("f ") + pointer);
}

TEST_F(DebugLog, FilesThatCannotBeOpened) {
  Start();
  EXPECT_THAT(Logged([] { ConstructFile(Value()); }),
              ElementsAre(Line("MimeEmailConstructor3"), Line("folderitem is nil")));
  EXPECT_THAT(Logged([] { ConstructFile(MakeFolderItem(kAbsent)); }),
              ElementsAre(Line("MimeEmailConstructor3"), std::string("native path: ") + kAbsent,
                          Line("result ") + kNoPointer, Line("f ") + kNoPointer));
  EXPECT_THAT(
      Logged([] { ConstructFile(MakeFolderItem("")); }),
      ElementsAre(Line("MimeEmailConstructor3"), "native path: (null)", Line("f ") + kNoPointer));
}

TEST_F(DebugLog, OldHostsLogTheUrl) {
  StartVersion(2012.0);
  EXPECT_THAT(Logged([] { ConstructFile(MakeFolderItem(kAbsent)); }),
              ElementsAre(Line("MimeEmailConstructor3"), std::string("url path: ") + kUrlOfAbsent,
                          Line("result ") + kNoPointer, Line("f ") + kNoPointer));
}

TEST_F(DebugLog, EmptyInput) {
  Start();
  const auto construct = [](const char* constructor) {
    ConstructOn(NewInstance(kEmail), constructor, Value());
  };
  EXPECT_THAT(
      Logged([&] { construct("Constructor(Content as string)"); }),
      ElementsAre(Line("MimeEmailConstructor1"), Line("data is NULL, so size fixed to zero."),
                  Line("MimeEmailConstructor 0")));
  EXPECT_THAT(Logged([&] { construct("Constructor(Content as MemoryBlock)"); }),
              ElementsAre(Line("MimeEmailConstructor2"), Line("MimeEmailConstructor 0")));
}

// Parts are logged depth first, children before their parent. Containers write no line.
TEST_F(DebugLog, PartsInTheOrderOfTheWalk) {
  Start();
  const std::string message =
      "Content-Type: multipart/mixed; boundary=o\n\n"
      "--o\nContent-Type: multipart/signed; boundary=i\n\n"
      "--i\nContent-Type: text/html\n\n<p>A</p>\n"
      "--i\nContent-Type: text/plain\n\nB\n--i--\n"
      "--o\nContent-Type: TEXT/Plain\n\nC\n"
      "--o\n\nD\n--o--\n";
  EXPECT_THAT(Logged([&] { Parse(message); }),
              ElementsAre(Line("MimeEmailConstructor1"),
                          Line("MimeEmailConstructor " + std::to_string(message.size())),
                          Line("decoded body of type text, html"), Line("Set email htmlText"),
                          Line("decoded body of type text, plain"), Line("Set email plainText"),
                          Line("decoded body of type multipart, signed"),
                          Line("decoded body of type TEXT, Plain"), Line("decoded body of type , "),
                          Line("parts count 3")));
}

TEST_F(DebugLog, SinglePartOfAnotherType) {
  Start();
  EXPECT_THAT(Logged([] { Parse("Content-Type: text/calendar\n\nX\n"); }),
              ElementsAre(Line("MimeEmailConstructor1"), Line("MimeEmailConstructor 31"),
                          Line("decoded body of type text, calendar"), Line("parts count 0"),
                          Line("no mime type, make it text")));
}

// The text is marked as an attachment: it is listed, and also becomes the message's text.
TEST_F(DebugLog, SinglePartMarkedAsAttachment) {
  Start();
  const char* message = "Content-Type: text/plain\nContent-Disposition: attachment\n\nX\n";
  EXPECT_THAT(Logged([&] { Parse(message); }),
              ElementsAre(Line("MimeEmailConstructor1"), Line("MimeEmailConstructor 60"),
                          Line("decoded body of type text, plain"), Line("parts count 0"),
                          Line("Set email plainText")));
}

// The charset of a single part is looked up twice. The log has its normalised name.
TEST_F(DebugLog, UnknownCharset) {
  Start();
  const char* message = "Content-Type: text/plain; charset=\"x-No.Such_1\"\n\nX\n";
  EXPECT_THAT(Logged([&] { Parse(message); }),
              ElementsAre(Line("MimeEmailConstructor1"), Line("MimeEmailConstructor 51"),
                          Line("unknown charset xNoSuch1"),
                          Line("decoded body of type text, plain"), Line("Set email plainText"),
                          Line("parts count 0"), Line("unknown charset xNoSuch1")));
}

TEST_F(DebugLog, CharsetThatStringsAreNotUsuallyBuiltIn) {
  Start();
  EXPECT_THAT(
      Logged([] { Parse("Content-Type: text/plain; charset=koi8-r\n\nX\n"); }),
      ElementsAre(Line("MimeEmailConstructor1"), Line("MimeEmailConstructor 44"),
                  Line("Unknown encoding in REALBuildUnicodeString 2562"),
                  Line("decoded body of type text, plain"), Line("Set email plainText"),
                  Line("parts count 0"), Line("Unknown encoding in REALBuildUnicodeString 2562")));
}

TEST_F(DebugLog, LongLineIsCut) {
  Start();
  const std::string name(5000, 'a');
  const std::vector<std::string> lines =
      Logged([&] { Parse("Content-Type: text/plain; charset=" + name + "\n\nX\n"); });
  ASSERT_EQ(lines.size(), 7U);
  const std::string whole = Line("unknown charset " + name);
  EXPECT_EQ(lines[2], whole.substr(0, 4095));
  EXPECT_EQ(lines[3], Line("decoded body of type text, plain"))
      << "the next line is a line of its own";
}

// What reading the text of `html` as code points logs, and the plain text made from it.
std::vector<std::string> LoggedByHtml(const String& html, const std::string& text) {
  return Logged([&] { EXPECT_EQ(Show(CallShared(kEmail, "HTMLToPlainText", html)), text); });
}

// 80 begins no character in UTF-8, and is an A with diaeresis in Mac Roman. Reading a text of
// unknown encoding is logged as a failure once in a process.
TEST_F(DebugLog, TextOfOneHighByte) {
  LoadLibraryFile();
  InChild("one byte", [] {
    const Session session;
    EXPECT_THAT(LoggedByHtml(MakeString("\x80", abi::kUtf8), "nil"),
                ElementsAre(Line("Try UTF8 to UTF32 conversion..."),
                            Line("Illegal UTF-8 sequence! 0"), Line("output.size 0")));
    const String unknown = MakeString("\x80", abi::kUnknownEncoding);
    const std::vector<std::string> lines = {Line("Try UTF8 to UTF16 conversion..."),
                                            Line("Try UTF16 to UTF32 conversion..."),
                                            Line("output.size 1"), Line("dlen 1")};
    std::vector<std::string> first = lines;
    first.insert(first.begin(), Line("REALBuildUnicodeString failed"));
    EXPECT_EQ(LoggedByHtml(unknown, "0x8000100 \xC3\x84"), first);
    EXPECT_EQ(LoggedByHtml(unknown, "0x8000100 \xC3\x84"), lines);
  });
}

TEST_F(DebugLog, TextOfUnknownEncodingWithoutItsMacRomanCopy) {
  LoadLibraryFile();
  InChild("no copy", [] {
    Capabilities capabilities;
    capabilities.faults["REALBuildStringWithEncoding"] = Fault();
    Session session(capabilities);
    EXPECT_THAT(LoggedByHtml(MakeString("caf\x8E", abi::kUnknownEncoding), "nil"),
                ElementsAre(Line("REALBuildUnicodeString failed"), Line("output.size 0")));
    EXPECT_EQ(session.host().CallCount("PluginGetStringData"), 0U);
  });
}

TEST_F(DebugLog, UnnamedException) {
  Start();
  host().SetFault("RuntimeArrayCreateSingleDimBoundedArray", Fault{Fault::Kind::kThrowsInt});
  EXPECT_THAT(Logged([] { ConstructFromString(kSmall); }),
              ElementsAre(Line("MimeEmailConstructor1"), Line("MimeEmailConstructor 44"),
                          Line("Unnamed C++ Exception.")));
}

TEST_F(DebugLog, ElementOfNoList) {
  Start();
  EXPECT_THAT(Logged([] { Call(NewInstance(kEmail), "Inlines", 0); }),
              ElementsAre(Line("REALGetArrayObject Array is nil")));
}

// The lines of the first access to an element. Later accesses write none.
std::vector<std::string> SelfTestLines(const Capabilities& capabilities) {
  Session session(capabilities);
  const Object list = FromText("MimeMailboxListZQV", "a@b.org");
  const std::vector<std::string> lines = Logged([&] { Call(list, "Mailboxes", 0); });
  EXPECT_THAT(Logged([&] { Call(list, "Mailboxes", 0); }), IsEmpty());
  return lines;
}

TEST_F(DebugLog, SelfTestThatPasses) {
  LoadLibraryFile();
  InChild("new",
          [] { EXPECT_THAT(SelfTestLines({}), ElementsAre(Line("TestArray 2024.100000"))); });
  InChild("old", [] {
    Capabilities capabilities;
    capabilities.version = 2013.035;
    EXPECT_THAT(SelfTestLines(capabilities), ElementsAre(Line("TestArray 2013.035000")));
  });
}

TEST_F(DebugLog, SelfTestThatFails) {
  const struct {
    ArrayLayout layout;
    double version;
    const char* line;
  } kRows[] = {
      {ArrayLayout::kWrongLocks, 2024.1, "refCount wrong 2"},
      {ArrayLayout::kWrongDimensions, 2024.1, "DimensionCount wrong 2"},
      {ArrayLayout::kWrongUpperBound, 2024.1, "ubound wrong 1235"},
      {ArrayLayout::kNoStorage, 2024.1, "data is nil"},
      {ArrayLayout::kWrongSlot0, 2024.1, "Index 0 failed 0"},
      {ArrayLayout::kWrongSlot9, 2024.1, "Index 9 failed 0"},
      {ArrayLayout::kWrongDimensions, 2020.0, "DimensionCount wrong 2"},
      {ArrayLayout::kOld, 2021.0, "DimensionCount wrong -"},
      {ArrayLayout::kNew, 2020.0, "ubound wrong -"},
  };
  LoadLibraryFile();
  for (const auto& row : kRows) {
    InChild(row.line, [&row] {
      Capabilities capabilities;
      capabilities.version = row.version;
      capabilities.array_layout = row.layout;
      EXPECT_THAT(SelfTestLines(capabilities),
                  ElementsAre(StartsWith(Line("TestArray 202")), StartsWith(Line(row.line))));
    });
  }
}

TEST_F(DebugLog, SelfTestWithoutItsEntryPoints) {
  const struct {
    const char* missing;
    std::vector<std::string> lines;
  } kRows[] = {
      {"PluginIntegerArraySetProc", {Line("Index 0 failed 0")}},
      {"PluginIntegerArrayGetProc", {Line("Index 0 failed 0")}},
  };
  LoadLibraryFile();
  for (const auto& row : kRows) {
    InChild(row.missing, [&row] {
      Capabilities capabilities;
      capabilities.faults[row.missing] = Fault();
      std::vector<std::string> expected = row.lines;
      expected.insert(expected.begin(), Line("TestArray 2024.100000"));
      EXPECT_EQ(SelfTestLines(capabilities), expected);
    });
  }
}

// The first array is the list; the second one is the self-test's.
TEST_F(DebugLog, SelfTestWithoutAnArray) {
  Start();
  const Object list = FromText("MimeMailboxListZQV", "a@b.org");
  Fault fault{Fault::Kind::kNothing};
  fault.from_call = host().CallCount("RuntimeArrayCreateSingleDimBoundedArray") + 1;
  host().SetFault("RuntimeArrayCreateSingleDimBoundedArray", fault);
  EXPECT_THAT(Logged([&] { Call(list, "Mailboxes", 0); }),
              ElementsAre(Line("TestArray 2024.100000"), Line("Failed to allocate array")));
}

// The access gets the list's upper bound first, then the self-test's.
TEST_F(DebugLog, SelfTestWithoutItsBound) {
  Start();
  const Object list = FromText("MimeMailboxListZQV", "a@b.org");
  Fault fault{Fault::Kind::kNothing};
  fault.from_call = host().CallCount("RuntimeUBound") + 2;
  host().SetFault("RuntimeUBound", fault);
  EXPECT_THAT(Logged([&] { Call(list, "Mailboxes", 0); }),
              ElementsAre(Line("TestArray 2024.100000"), Line("ubound failed 0")));
}

}  // namespace
}  // namespace zqv::interface_test
