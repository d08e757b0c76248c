#include "host/platform.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <variant>

#include "standin/application.h"
#include "tests/unit/base/log_capture.h"
#include "tests/unit/host/host_fixture.h"

namespace zqv::host {
namespace {

// Paths of file references on Linux. A file reference has a path and a URL.
class FilePaths : public test::HostTest {
 protected:
  // The path that is found for a reference with this URL in a host that offers no native paths.
  std::string OfUrl(const std::string& url) {
    StartVersion(2012.99);
    const auto file = standin::MakeFolderItem("/unused");
    auto* thing = static_cast<standin::NativeThing*>(file.thing());
    std::get<standin::FolderItem>(*thing->state).url_path = url;
    return FilePath(file.raw());
  }
};

TEST_F(FilePaths, NativePathIsReadFromVersion2013On) {
  StartVersion(2013.0);
  const auto file = standin::MakeFolderItem("/tmp/a b%20/\xC3\xA9.eml");
  const test::LogCapture log;
  EXPECT_EQ(FilePath(file.raw()), "/tmp/a b%20/\xC3\xA9.eml");
  EXPECT_EQ(log.Text(), "native path: /tmp/a b%20/\xC3\xA9.eml\n");
}

TEST_F(FilePaths, UrlIsReadBeforeVersion2013) {
  StartVersion(2012.99);
  const auto file = standin::MakeFolderItem("/tmp/a b%/\xC3\xA9.eml");
  const test::LogCapture log;
  EXPECT_EQ(FilePath(file.raw()), "/tmp/a b%/\xC3\xA9.eml");
  EXPECT_EQ(log.Text(), "url path: file:///tmp/a%20b%25/%C3%A9.eml\n");
}

TEST_F(FilePaths, EscapesOfAUrlAreDecoded) {
  EXPECT_EQ(OfUrl("file:///a%2fb%2FC"), "/a/b/C");
  EXPECT_EQ(OfUrl("file:///%41%7e"), "/A~");
  EXPECT_EQ(OfUrl("file:///"), "/");
}

TEST_F(FilePaths, SchemeAndHostNameAreReadInAnyCase) {
  EXPECT_EQ(OfUrl("FILE:///A"), "/A");
  EXPECT_EQ(OfUrl("File://LocalHost/A"), "/A");
}

TEST_F(FilePaths, OnlyTheLocalHostHasFiles) {
  EXPECT_EQ(OfUrl("file://localhost/a"), "/a");
  EXPECT_EQ(OfUrl("file://localhostile/a"), "");
  EXPECT_EQ(OfUrl("file://elsewhere/a"), "");
}

TEST_F(FilePaths, OtherUrlsHaveNone) {
  for (const char* url : {"", "file:", "file://", "file:/a", "http://localhost/a", "/a"})
    EXPECT_EQ(OfUrl(url), "") << url;
}

TEST_F(FilePaths, BrokenEscapesHaveNone) {
  for (const char* url :
       {"file:///a%", "file:///a%4", "file:///a%4g", "file:///%g4", "file:///a%%41"})
    EXPECT_EQ(OfUrl(url), "") << url;
}

// The characters before and behind each range of digits: '/' "0-9" ':', '@' "A-F" 'G', '`' "a-f"
// 'g'.
TEST_F(FilePaths, NeighboursOfTheDigitsInAnEscapeHaveNone) {
  for (const char neighbour : std::string_view("/:@G`g")) {
    EXPECT_EQ(OfUrl(std::string("file:///a%3") + neighbour), "") << neighbour;
    EXPECT_EQ(OfUrl(std::string("file:///a%3") + neighbour + "b"), "") << neighbour;
    EXPECT_EQ(OfUrl(std::string("file:///a%") + neighbour + "0"), "") << neighbour;
    EXPECT_EQ(OfUrl(std::string("file:///a%") + neighbour + "0b"), "") << neighbour;
  }
}

// %30 to %3F are the characters from '0' on, in their order. The second digits of the rest are 1.
TEST_F(FilePaths, EveryDigitOfAnEscapeIsDecoded) {
  EXPECT_EQ(OfUrl("file:///%30%31%32%33%34%35%36%37%38%39"), "/0123456789");
  EXPECT_EQ(OfUrl("file:///%3A%3B%3C%3D%3E%3F%3a%3b%3c%3d%3e%3f"), "/:;<=>?:;<=>?");
  EXPECT_EQ(OfUrl("file:///%11%21%41%51%61%71%81%91"), "/\x11!AQaq\x81\x91");
  EXPECT_EQ(OfUrl("file:///%A1%B1%C1%D1%E1%F1%a1%b1%c1%d1%e1%f1"),
            "/\xA1\xB1\xC1\xD1\xE1\xF1\xA1\xB1\xC1\xD1\xE1\xF1");
}

TEST_F(FilePaths, NulInsideHasNone) {
  EXPECT_EQ(OfUrl("file:///a%00b"), "");
  StartVersion(2024.1);
  EXPECT_EQ(FilePath(standin::MakeFolderItem(std::string_view("/a\0b", 4)).raw()), "");
}

TEST_F(FilePaths, PropertyThatCannotBeReadHasNone) {
  standin::Capabilities capabilities;
  capabilities.missing_properties = {"FolderItem.NativePath"};
  Start(capabilities);
  EXPECT_EQ(FilePath(standin::MakeFolderItem("/a").raw()), "");
  StartWithout("REALGetPropValueString");
  EXPECT_EQ(FilePath(standin::MakeFolderItem("/a").raw()), "");
}

}  // namespace
}  // namespace zqv::host
