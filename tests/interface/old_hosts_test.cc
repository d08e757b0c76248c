// The same message in hosts around each version from which the library works differently. Results
// are equal, and each host is asked only for functions that it has.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "standin/mirror.h"
#include "tests/interface/child.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

constexpr double kVersions[] = {0.0,     2009.0,  2011.99, 2012.0,  2012.99, 2013.0, 2013.02,
                                2013.03, 2013.04, 2020.01, 2020.02, 2020.99, 2021.0, 2024.1};

// Texts for each way of building a string: labelled bytes, UTF-16, and UTF-32 of a short and of a
// long text, with and without surrogate pairs.
std::vector<std::string> Messages() {
  std::string long_html;
  for (int i = 0; i < 300; ++i) long_html += "<p>Caf&eacute; &#x1F600;</p>";
  return {
      RichMessage(),
      "Content-Type: text/html\n\n<p>Caf&eacute; &#x1F600; &euro;</p>\n",
      "Content-Type: text/html\n\n" + long_html + "\n",
      std::string("Content-Type: text/plain; charset=utf-16\nContent-Transfer-Encoding: base64\n"
                  "\nQwBhAGYA6QA92ADe\n"),
      "Content-Type: text/plain; charset=koi8-r\n\n\xC4\xC1\n",
      "Subject: =?utf-8?Q?=E2=82=AC?= =?koi8-r?B?xME=?=\n\nCaf\x8E\n",
  };
}

// Everything that an application reads from all messages, the two dates included.
std::string SeenBy(double version) {
  Capabilities capabilities;
  capabilities.version = version;
  const Session session(capabilities);
  std::string seen;
  for (const std::string& bytes : Messages()) {
    for (const Way way : kAllWays) {
      const Object message = Parse(bytes, way);
      seen += standin::Mirror(message).dump(1) + "\n";
      seen += Show(Call(message, "SourceWithoutAttachments")) + "\n";
    }
  }
  return seen;
}

class OldHosts : public InterfaceTest {};

TEST_F(OldHosts, GiveTheSameMessages) {
  LoadLibraryFile();
  std::vector<std::string> seen;
  for (const double version : kVersions) {
    seen.push_back(TextFromChild(std::to_string(version), [&] { return SeenBy(version); }));
  }
  EXPECT_GT(seen.back().size(), 20'000U);
  EXPECT_NE(seen.back().find("\xF0\x9F\x98\x80"), std::string::npos) << "the pair";
  for (std::size_t i = 0; i < seen.size(); ++i) {
    EXPECT_TRUE(seen[i] == seen.back()) << kVersions[i] << "\n" << seen[i].substr(0, 5000);
  }
}

TEST_F(OldHosts, StringsAreBuiltWithTheOperationOfTheHost) {
  LoadLibraryFile();
  for (const double version : kVersions) {
    InChild(std::to_string(version), [version] {
      Capabilities capabilities;
      capabilities.version = version;
      Session session(capabilities);
      for (const std::string& bytes : Messages()) Parse(bytes);
      const Host& host = session.host();
      const bool is_old = version < 2012.0;
      EXPECT_EQ(host.CallCount("REALBuildString") > 100, is_old);
      EXPECT_EQ(host.CallCount("REALBuildString") == 0, !is_old);
      EXPECT_EQ(host.CallCount("REALBuildStringWithEncoding") > 100, !is_old);
      EXPECT_EQ(host.CallCount("REALBuildStringWithEncoding") == 0, is_old);
      EXPECT_EQ(host.CallCount("REALSetStringEncoding"), host.CallCount("REALBuildString"))
          << "each string is labelled";
    });
  }
}

}  // namespace
}  // namespace zqv::interface_test
