// The readable form of header fields: texts, addresses, parameters, transfer encodings.
#include "cli/header_reading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

#include "cli/charset_text.h"
#include "cli/transfer_reading.h"
#include "cli/written_parameters.h"

namespace zqv::cli {
namespace {

using ::testing::ElementsAre;
using namespace std::string_view_literals;

TEST(CharsetTextTest, MarksWhatCannotBeRead) {
  EXPECT_EQ(Utf8Of("caf\xE9", "ISO-8859-1"), "caf\u00E9");
  EXPECT_EQ(Utf8Of("a\xFFz", "utf-8"), "a\uFFFDz");
  EXPECT_EQ(Utf8Of("a\xC3", "utf-8"), "a\uFFFD");
  EXPECT_EQ(Utf8Of("\x80", "us-ascii"), "\u20AC");
  EXPECT_EQ(Utf8Of("a", "x-nobody"), std::nullopt);
  EXPECT_EQ(Utf8Of("a", "utf-8//IGNORE"), std::nullopt);
  EXPECT_EQ(Utf8Of("a", ""), std::nullopt);
  EXPECT_EQ(Utf8Of(std::string(10000, '\xE9'), "latin1")->size(), 20000U);
}

TEST(HeaderTextTest, DecodesWords) {
  EXPECT_EQ(ReadHeaderText(" =?utf-8?q?caf=C3=A9_au?= =?UTF-8?b?IGxhaXQ=?= !"),
            "caf\u00E9 au lait !");
  // Two words that share the bytes of one character, and two words in different charsets.
  EXPECT_EQ(ReadHeaderText("=?utf-8?q?=C3?=\r\n =?utf-8?q?=A9?="), "\u00E9");
  EXPECT_EQ(ReadHeaderText("=?iso-8859-1*fr?Q?=E9?= =?utf-8?Q?=C3=A9?="), "\u00E9\u00E9");
  EXPECT_EQ(ReadHeaderText("\"=?utf-8?Q?=C3=A9?=\" <a@b>"), "\"\u00E9\" <a@b>");
  EXPECT_EQ(ReadHeaderText("=?x-no?Q?=C3?= a"), "=?x-no?Q?=C3?= a");
  EXPECT_EQ(ReadHeaderText("a =?utf-8?Q?b?="), "a b");
  EXPECT_EQ(ReadHeaderText(""), "");
}

TEST(AddressesTest, AreSplitOutsideQuotesAndComments) {
  EXPECT_THAT(ReadAddresses("\"Moss, Ada\" <a@b>, Ben (x, y) <c,d@e>; f@g,, "),
              ElementsAre("\"Moss, Ada\" <a@b>", "Ben (x, y) <c,d@e>", "f@g"));
  EXPECT_THAT(ReadAddresses("Crew: a@b, c@d;, e@f"), ElementsAre("Crew: a@b, c@d;", "e@f"));
  EXPECT_THAT(ReadAddresses("Crew: a@b;c@d"), ElementsAre("Crew: a@b;", "c@d"));
  EXPECT_THAT(ReadAddresses("\"open, a@b"), ElementsAre("\"open, a@b"));
}

TEST(AddressesTest, HaveAMailbox) {
  EXPECT_EQ(MailboxOf("Ada <ada@example.com>"), "ada@example.com");
  EXPECT_EQ(MailboxOf("\"x\" (<c@d.org>)"), "c@d.org");
  EXPECT_EQ(MailboxOf("ada@example.com (Ada)"), "ada@example.com");
  EXPECT_EQ(MailboxOf("Ada"), "");
  EXPECT_EQ(MailboxOf("<>"), "");
  EXPECT_EQ(MailboxOf("@example.com"), "");
}

TEST(WrittenParametersTest, AreSplitOutsideQuotes) {
  const WrittenParameters parameters(" Text/PLAIN (x;y) ; Charset=\"a;b\" ;name = c d ; e");
  EXPECT_EQ(parameters.main(), "text/plain");
  EXPECT_EQ(parameters.Text("charset"), "a;b");
  EXPECT_EQ(parameters.Text("name"), "c d");
  EXPECT_EQ(parameters.Text("e"), std::nullopt);
  EXPECT_EQ(WrittenParameters("(((").main(), "");
}

TEST(WrittenParametersTest, AreJoinedFromPieces) {
  EXPECT_EQ(WrittenParameters("a; n*1=b; n*0*=utf-8''%C3%A9; n*3=x").Text("n"), "\u00E9b");
  EXPECT_EQ(WrittenParameters("a; n*1=b").Text("n"), std::nullopt);
  EXPECT_EQ(WrittenParameters("a; n=plain; n*=utf-8''%41").Text("n"), "A");
}

TEST(WrittenParametersTest, MayBeRepeated) {
  EXPECT_TRUE(WrittenParameters("a; n=1; n=2").IsRepeated("n"));
  EXPECT_FALSE(WrittenParameters("a; n=1; n=1; m=2").IsRepeated("n"));
}

TEST(TransferTest, IsKnownInSloppySpelling) {
  for (const std::string_view value : {"base64"sv, " BASE64 "sv, "base64;"sv, "Base-64 (x)"sv}) {
    EXPECT_EQ(ReadTransfer(value), Transfer::kBase64) << value;
  }
  for (const std::string_view value : {"quoted-printable"sv, "Quoted/Printable"sv}) {
    EXPECT_EQ(ReadTransfer(value), Transfer::kQuotedPrintable) << value;
  }
  for (const std::string_view value : {""sv, "7bit"sv, "8-bit"sv, "binary"sv, "(none)"sv}) {
    EXPECT_EQ(ReadTransfer(value), Transfer::kIdentity) << value;
  }
  EXPECT_EQ(ReadTransfer("x-uue"), Transfer::kUuencode);
  EXPECT_EQ(ReadTransfer("x-secret"), Transfer::kUnknown);
  EXPECT_EQ(ReadTransfer("my-base64"), Transfer::kUnknown);
}

}  // namespace
}  // namespace zqv::cli
