// The parsers of Content-Type and Content-Disposition compared with mimetic's, and with values
// worked out by hand.
#include "mime/parameters.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "tests/support/every_text.h"
#include "tests/support/long_text.h"
#include "tests/unit/mime/value_difference.h"

namespace zqv::test {
namespace {

struct TypeRow {
  const char* name;
  const char* value;
  const char* type;
  const char* subtype;
  const char* text;
  std::size_t parameters;
};

// clang-format off
constexpr TypeRow kTypes[] = {
    {"nothing",         "",                          "",           "",        "/", 0},
    {"plain",           "text/plain",                "text",       "plain",   "text/plain", 0},
    {"case stays",      "Text/PLAIN",                "Text",       "PLAIN",   "Text/PLAIN", 0},
    {"no subtype",      "text",                      "text",       "",        "text/", 0},
    {"no type",         "/plain",                    "",           "plain",   "/plain", 0},
    {"two slashes",     "text/plain/x",              "text",       "plain",   "text/plain", 0},
    {"blanks stay",     "text / plain ; a=b",        "text ",      " plain ", "text / plain ; a=\"b\"", 1},
    {"comments stay",   "text/plain (x)",            "text",       "plain (x)", "text/plain (x)", 0},
    {"parameter",       "text/plain;charset=utf-8",  "text",       "plain",   "text/plain; charset=\"utf-8\"", 1},
    {"quotes",          "a/b; c=\"d\"; e='f'",       "a",          "b",       "a/b; c=\"d\"; e=\"'f'\"", 2},
    {"one quote",       "a/b; c=\"d",                "a",          "b",       "a/b; c=\"\"d\"", 1},
    {"a quote alone",   "a/b; c=\"",                 "a",          "b",       "a/b; c=\"\"\"", 1},
    {"empty quotes",    "a/b; c=\"\"",               "a",          "b",       "a/b; c=\"\"", 1},
    {"blanks in quotes", "a/b; c=\" d \"",           "a",          "b",       "a/b; c=\" d \"", 1},
    {"blanks around",   "a/b;\tc \t=\t \"d\"\t",     "a",          "b",       "a/b; c=\"d\"", 1},
    {"two signs",       "a/b; c=d=e",                "a",          "b",       "a/b; c=\"d=e\"", 1},
    {"last semicolon",  "a/b;",                      "a",          "b",       "a/b", 0},
    {"two semicolons",  "a/b;;",                     "a",          "b",       "a/b; =\"\"", 1},
    {"blank at the end", "a/b; ",                    "a",          "b",       "a/b; =\"\"", 1},
    {"only parameters", ";c=d",                      "",           "",        "/; c=\"d\"", 1},
};
// clang-format on

TEST(Parameters, ContentTypes) {
  for (const TypeRow& row : kTypes) {
    const mime::ContentType type(row.value);
    EXPECT_EQ(type.type(), row.type) << row.name;
    EXPECT_EQ(type.subtype(), row.subtype) << row.name;
    EXPECT_EQ(type.Text(), row.text) << row.name;
    EXPECT_EQ(type.parameters().Count(), row.parameters) << row.name;
    EXPECT_EQ(ContentTypeDifference(row.value), "") << row.name;
  }
}

TEST(Parameters, ContentDispositions) {
  const mime::ContentDisposition disposition("attachment; filename=a.pdf; FileName*=utf-8''b");
  EXPECT_EQ(disposition.type(), "attachment");
  EXPECT_EQ(disposition.parameters().Find("filename"), "a.pdf");
  EXPECT_EQ(disposition.parameters().Find("filename*"), "utf-8''b");
  EXPECT_EQ(disposition.Text(), "attachment; filename=\"a.pdf\"; FileName*=\"utf-8''b\"");
  EXPECT_EQ(mime::ContentDisposition("a/b;").Text(), "a/b");
  EXPECT_EQ(mime::ContentDisposition("").Text(), "");
  EXPECT_EQ(mime::ContentDisposition(" inline ; a").Text(), " inline ; =\"\"");
}

TEST(Parameters, AreFoundInAnyCase) {
  const mime::Parameters parameters("a=1; B=2; A=3; \xC3\xA9=4");
  EXPECT_EQ(parameters.Find("A"), "1");
  EXPECT_EQ(parameters.Find("b"), "2");
  EXPECT_EQ(parameters.Find("\xC3\xA9"), "4");
  EXPECT_EQ(parameters.Find("\xC3\x89"), "");
  EXPECT_EQ(parameters.Find("c"), "");
  EXPECT_EQ(parameters.Find(""), "");
  EXPECT_EQ(mime::Parameters().Find("a"), "");
}

TEST(Parameters, ASemicolonInQuotesSeparates) {
  const mime::ContentType type("multipart/mixed; boundary=\"a;b\"");
  EXPECT_EQ(type.parameters().Find("boundary"), "\"a");
  EXPECT_EQ(type.Text(), "multipart/mixed; boundary=\"\"a\"; =\"\"");
}

TEST(Parameters, WithoutEqualsSignIsEmpty) {
  const mime::Parameters parameters("flowed; a=b");
  EXPECT_EQ(parameters.Find("flowed"), "");
  EXPECT_EQ(parameters.Count(), 2U);
  EXPECT_EQ(mime::ContentType("a/b; flowed").Text(), "a/b; =\"\"");
  EXPECT_EQ(mime::Parameters("=x").Find(""), "x");
}

TEST(Parameters, AreViewsOfTheValue) {
  const std::string value = "text/plain; charset=\"utf-8\"";
  const mime::ContentType type(value);
  EXPECT_EQ(type.subtype().data(), value.data() + 5);
  EXPECT_EQ(type.parameters().Find("charset").data(), value.data() + 21);
}

std::string AnyDifference(const std::string& value) {
  const std::string first = ContentTypeDifference(value);
  return first.empty() ? ContentDispositionDifference(value) : first;
}

TEST(Parameters, ReadAsMimeticDoesEveryShortText) {
  constexpr std::string_view kCharacters(";=\"/* \taA\0\x80", 11);
  EXPECT_EQ(FirstDifferenceOfAll(AnyDifference, kCharacters, kIsSlowBuild ? 4 : 6), "");
}

TEST(Parameters, ReadAsMimeticDoesRandomTexts) {
  constexpr std::string_view kPieces[] = {";",
                                          "; ",
                                          "=",
                                          "\"",
                                          "/",
                                          "*",
                                          " ",
                                          "\t",
                                          "\r",
                                          "\n",
                                          "a",
                                          "Z",
                                          "[",
                                          "{",
                                          "@",
                                          "`",
                                          "\\",
                                          "\x80",
                                          "\xFF",
                                          std::string_view("\0", 1),
                                          "text/plain",
                                          "multipart/mixed",
                                          "attachment",
                                          "charset=",
                                          "BOUNDARY=\"=_b\"",
                                          "name=x",
                                          "filename=\"a b\"",
                                          "Filename*=utf-8''x",
                                          "(c)",
                                          ";;",
                                          "==",
                                          "\"\"",
                                          "name*0=y"};
  std::mt19937 random(20'261'122);
  for (int left = kIsSlowBuild ? 5'000 : 60'000; left > 0; --left) {
    const std::string text = RandomText(random, kPieces, 16);
    ASSERT_EQ(AnyDifference(text), "") << ::testing::PrintToString(text);
  }
}

// With quadratic time this test would take minutes.
TEST(Parameters, HostileTextsTakeLinearTime) {
  constexpr std::size_t kBytes = kIsSlowBuild ? 300'000 : 1'000'000;
  std::size_t found = 0;
  for (const char* piece : {";", ";=", "=", "; a=b", " ", "\"", "/", ";\t"}) {
    const std::string value = Repeat(piece, kBytes) + ";x=y";
    const mime::ContentType type(value);
    found += type.parameters().Find("x").size() + type.parameters().Count() + type.Text().size();
  }
  EXPECT_GT(found, kBytes);
}

}  // namespace
}  // namespace zqv::test
