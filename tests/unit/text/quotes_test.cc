#include "text/quotes.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <string>

#include "tests/reference/reference_encoded_word.h"
#include "tests/support/property.h"

namespace zqv::text {
namespace {

TEST(RemoveQuotes, TakesAPairAway) {
  EXPECT_EQ(RemoveQuotes("\"a\""), "a");
  EXPECT_EQ(RemoveQuotes("'a'"), "a");
  EXPECT_EQ(RemoveQuotes("\"Smith, John\""), "Smith, John");
}

TEST(RemoveQuotes, ApostrophesInsideDoubleQuotesGoToo) { EXPECT_EQ(RemoveQuotes("\"'a'\""), "a"); }

TEST(RemoveQuotes, DoubleQuotesInsideApostrophesStay) {
  EXPECT_EQ(RemoveQuotes("'\"a\"'"), "\"a\"");
}

TEST(RemoveQuotes, OnlyOnePairOfEachGoes) {
  EXPECT_EQ(RemoveQuotes("\"\"a\"\""), "\"a\"");
  EXPECT_EQ(RemoveQuotes("''a''"), "'a'");
  EXPECT_EQ(RemoveQuotes("\"''a''\""), "'a'");
}

TEST(RemoveQuotes, FewerThanThreeBytesStay) {
  EXPECT_EQ(RemoveQuotes(""), "");
  EXPECT_EQ(RemoveQuotes("\""), "\"");
  EXPECT_EQ(RemoveQuotes("\"\""), "\"\"");
  EXPECT_EQ(RemoveQuotes("''"), "''");
  EXPECT_EQ(RemoveQuotes("\"''\""), "''");  // the inner pair stays too
}

TEST(RemoveQuotes, LeadingSpacesGo) {
  EXPECT_EQ(RemoveQuotes("  \"a\""), "a");
  EXPECT_EQ(RemoveQuotes("  a "), "a ");
  EXPECT_EQ(RemoveQuotes("   "), "");
  EXPECT_EQ(RemoveQuotes(" \"\""), "\"\"");
  EXPECT_EQ(RemoveQuotes("\" a\""), " a");  // a space inside the quotes stays
}

TEST(RemoveQuotes, TabsStay) { EXPECT_EQ(RemoveQuotes("\t\"a\""), "\t\"a\""); }

TEST(RemoveQuotes, QuotesMustBeAtBothEnds) {
  EXPECT_EQ(RemoveQuotes("\"abc"), "\"abc");
  EXPECT_EQ(RemoveQuotes("abc\""), "abc\"");
  EXPECT_EQ(RemoveQuotes("\"abc'"), "\"abc'");
  EXPECT_EQ(RemoveQuotes("\"a\" "), "\"a\" ");
}

TEST(RemoveQuotes, AgreesWithTheReference) {
  EXPECT_TRUE(test::Holds("the same text as the reference implementation", [] {
    const std::string text =
        *rc::gen::container<std::string>(rc::gen::elementOf(std::string(" \t'\"a\0", 6)));
    RC_ASSERT(RemoveQuotes(text) == reference::StripQuotes(text));
  }));
}

}  // namespace
}  // namespace zqv::text
