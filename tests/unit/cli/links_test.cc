// The host to which a link leads, the host that its text names, and character references in both.
#include "cli/links.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "cli/html_references.h"

namespace zqv::cli {
namespace {

struct Row {
  std::string_view text;
  std::string_view expected;
};

TEST(LinksTest, HostOfATarget) {
  const Row rows[] = {
      {"https://example.com/a", "example.com"},
      {"HTTPS://Example.COM:443?a", "example.com"},
      {"https://bank.example@evil.example/", "evil.example"},
      {"https://a:b@c@evil.example:80#x", "evil.example"},
      {"https:evil.example/x", "evil.example"},
      {"https:\\\\evil.example\\x", "evil.example"},
      {"http:///evil.example", "evil.example"},
      {"//evil.example/x", "evil.example"},
      {"\\/evil.example/x", "evil.example"},
      {"https://ev%69l.example./", "evil.example"},
      {"https://[::1]:80/", "[::1]"},
      {"ftp://files.example", "files.example"},
      {"app://open/x", "open"},
      {"mailto:Ada@Example.org?cc=b@c", "example.org"},
      {"mailto:ada%40example.org", "example.org"},
      {"mailto:", ""},
      {"javascript://bank.example/%0aalert(1)", ""},
      {"data:text/html,//a", ""},
      {"tel:+1", ""},
      {"path/to", ""},
      {"#here", ""},
      {"", ""},
  };
  for (const Row& row : rows) EXPECT_EQ(HostOf(row.text, ""), row.expected) << row.text;
  EXPECT_EQ(HostOf("a/b", "https://base.example/x"), "base.example");
  EXPECT_EQ(HostOf("//other.example", "https://base.example/x"), "other.example");
}

TEST(LinksTest, TargetsAreThoseOfBrowsers) {
  EXPECT_EQ(TargetOf(" \x01 java\tscr\nipt:\r1 2 \n"), "javascript:1 2");
  EXPECT_EQ(TargetOf(" "), "");
}

TEST(LinksTest, HostThatATextNames) {
  const Row rows[] = {
      {"https://bank.example/login", "bank.example"},
      {"see https://Bank.example.", "bank.example"},
      {"(www.bank.example)", "www.bank.example"},
      {"bank.example", "bank.example"},
      {"bank.example/login?a", "bank.example"},
      {"bank.example:443", "bank.example"},
      {"b\xC3\xA4nk.example", "b\xC3\xA4nk.example"},
      {"bank\xE2\x80\x8B.exa\xE2\x80\x8Dmple", "bank.example"},
      {"ada@bank.example", "bank.example"},
      {"Log in at bank.com now", "bank.com"},
      {"your bank", ""},
      {"report.pdf", ""},
      {"Learn Node.js, e.g. today", ""},
      {"Version 1.2", ""},
      {"Hello...", ""},
      {"a..com", ""},
      {".com", ""},
      {"", ""},
  };
  for (const Row& row : rows) EXPECT_EQ(HostNamedIn(row.text), row.expected) << row.text;
}

TEST(LinksTest, SameHosts) {
  EXPECT_TRUE(IsSameHost("www.Example.com", "example.com"));
  EXPECT_FALSE(IsSameHost("example.com", "example.com.evil.example"));
  EXPECT_FALSE(IsSameHost("example.com", "click.example.com"));
  EXPECT_FALSE(IsSameHost("example.com", ""));
}

TEST(LinksTest, InternationalHosts) {
  EXPECT_TRUE(IsInternational("xn--bnk-qla.example"));
  EXPECT_TRUE(IsInternational("a.xn--p1ai"));
  EXPECT_TRUE(IsInternational("b\xC3\xA4nk.example"));
  EXPECT_FALSE(IsInternational("axn--b.example"));
  EXPECT_FALSE(IsInternational(""));
}

TEST(LinksTest, ListsAreBounded) {
  LinkList links;
  for (int i = 0; i < 502; ++i) links.Add(LinkKind::kLink, "a");
  EXPECT_EQ(links.list().size(), 500U);
  EXPECT_EQ(links.left_out(), 2U);
  links.AppendText("of a link that is left out");
  EXPECT_EQ(links.list().back().text, "");
  LinkList large;
  large.Add(LinkKind::kLink, std::string((1U << 20U) + 1, 'a'));
  large.Add(LinkKind::kLink, "b");
  EXPECT_EQ(large.left_out(), 1U);
  for (int i = 0; i < 100; ++i) large.AppendText(" long \xC3\xA4 text");
  EXPECT_LE(large.list().back().text.size(), 301U);
}

TEST(HtmlReferencesTest, AreThoseOfBrowsers) {
  const Row rows[] = {
      {"a&amp;b&lt;&#65;&#x42;&#X43", "a&b<ABC"},
      {"&colon;&sol;&NewLine;&Tab;&commat;", ":/\n\t@"},
      {"&copy &copycat &amp",
       "\xC2\xA9 \xC2\xA9"
       "cat &"},
      {"&rarr; &rarr", "\xE2\x86\x92 &rarr"},
      {"&#128;&#0;&#xD800;&#x110000;&#99999999999;",
       "\xE2\x82\xAC\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"&#x1F600;", "\xF0\x9F\x98\x80"},
      {"& &; &#; &#x; &unknown; &", "& &; &#; &#x; &unknown; &"},
      {"&nothing;", "\xC2\xAChing;"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(WithoutReferences(row.text, HtmlPlace::kContent), row.expected) << row.text;
  }
  EXPECT_EQ(WithoutReferences("?a&copy=1&ampb&lt", HtmlPlace::kAttribute), "?a&copy=1&ampb<");
  EXPECT_EQ(WithoutReferences("&amp;copy=1", HtmlPlace::kAttribute), "&copy=1");
}

}  // namespace
}  // namespace zqv::cli
