// The parts of a report's page: escaped text, cleaned HTML, pictures, base64.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "cli/base64.h"
#include "cli/html_writer.h"
#include "cli/links.h"
#include "cli/picture.h"
#include "cli/safe_html.h"

namespace zqv::cli {
namespace {

using namespace std::string_view_literals;

TEST(HtmlWriterTest, EscapesTextAlone) {
  HtmlWriter page;
  page.Markup("<p title=\"").Text("\"'<>&").Markup("\">").Text("a&amp;").Text("");
  EXPECT_EQ(page.Take(), "<p title=\"&quot;&#39;&lt;&gt;&amp;\">a&amp;amp;");
}

TEST(Base64Test, IsPaddedToGroupsOfFour) {
  EXPECT_EQ(Base64(""), "");
  EXPECT_EQ(Base64("f"), "Zg==");
  EXPECT_EQ(Base64("fo"), "Zm8=");
  EXPECT_EQ(Base64("foo"), "Zm9v");
  EXPECT_EQ(Base64("\xFF\xEF\xBE"), "/+++");
}

TEST(PictureTest, FirstBytesDecide) {
  EXPECT_EQ(PictureType("GIF89a"), "image/gif");
  EXPECT_EQ(PictureType("GIF89"), "");
  EXPECT_EQ(PictureType("RIFF1234WEBP"), "image/webp");
  EXPECT_EQ(PictureType("RIFF1234WEB"), "");
  EXPECT_EQ(PictureType("BM1234\0\0\0\0"sv), "image/bmp");
  EXPECT_EQ(PictureType("BM12345678"), "");
  EXPECT_EQ(PictureType("<svg/>"), "");
  EXPECT_EQ(PictureType(""), "");
}

SanitizedHtml Letter(std::string_view html) {
  return SafeHtml(html, [](std::string_view id) {
    return id == "a@b" ? std::string("data:image/gif;base64,AA==") : std::string();
  });
}

// The cleaned HTML without the two elements that SafeHtml puts around it.
std::string Clean(std::string_view html) {
  constexpr std::string_view kStart = "<zqv-html><zqv-body>";
  constexpr std::string_view kEnd = "</zqv-body></zqv-html>";
  const std::string safe = Letter(html).html;
  const std::size_t size = safe.size() - kStart.size() - kEnd.size();
  EXPECT_EQ(safe.substr(0, kStart.size()), kStart) << html;
  EXPECT_EQ(safe.substr(kStart.size() + size), kEnd) << html;
  return safe.substr(kStart.size(), size);
}

struct Case {
  std::string_view html;
  std::string_view safe;
};

TEST(SafeHtmlTest, KeepsWhatDoesNoHarm) {
  const Case cases[] = {
      {"<P Class=x STYLE='margin: 0'>a &amp; b<br/></p>",
       "<p class=\"x\" style=\"margin: 0\">a &amp; b<br></p>"},
      {"a < b > c <3", "a &lt; b &gt; c &lt;3"},
      {"<td nowrap width = 5 bgcolor=\"#fff\">", "<td nowrap=\"\" width=\"5\" bgcolor=\"#fff\">"},
      {"<style>p > b { color: red }</STYLE >x", "<style>p > b { color: red }</style>x"},
      {"<img src=\"cid:a%40b\" alt=dot>", "<img src=\"data:image/gif;base64,AA==\" alt=\"dot\">"},
      {"<img src=' CID:a@b'>", "<img src=\"data:image/gif;base64,AA==\">"},
      {"<img src=data:image/png;base64,AA==>", "<img src=\"data:image/png;base64,AA==\">"},
      {"<a href='https://example.org/?a&amp;b' title=c>x</a>",
       "<a title=\"https://example.org/?a&amp;b\">x</a>"},
      {"<html><head><title>a</title></head>x</body></html>y", "xy"},
      {"<p style='background: url(cid:a@b)'>",
       "<p style=\"background: url(&quot;data:image/gif;base64,AA==&quot;)\">"},
      {"<style>p { background: url( 'CID:a%40b' ) }</style>",
       "<style>p { background: url(\"data:image/gif;base64,AA==\") }</style>"},
      {"caf\xC3\xA9", "caf\xC3\xA9"},
  };
  for (const Case& c : cases) EXPECT_EQ(Clean(c.html), c.safe) << c.html;
}

TEST(SafeHtmlTest, GivesTheBodyAnElementOfItsOwn) {
  const Case cases[] = {
      {"<body text=red class=a>x</body><body class=b id=c>y", "class=\"a\" id=\"c\">xy"},
      {"<body bgcolor='#FFF'>", "style=\"background-color: #FFF; \">"},
      {"<body text=fff000>", "style=\"color: #fff000; \">"},
      {"<body text='red;position:fixed'>", ">"},
      {"<body style='margin: 0' onload=x>", "style=\"margin: 0\">"},
      {"<body title='\"><script>'>", "title=\"&quot;&gt;&lt;script&gt;\">"},
  };
  for (const Case& c : cases) {
    const std::string safe = Letter(c.html).html;
    EXPECT_NE(safe.find(c.safe), std::string::npos) << safe;
    EXPECT_EQ(safe.find("<zqv-html><zqv-body"), 0U) << safe;
  }
}

TEST(SafeHtmlTest, CleansStyles) {
  const Case cases[] = {
      {"<p style='background: u&#x72;l(http://a)'>", "<p style=\"background: /**/\">"},
      {"<p style='background: u&bsol;72l(http://a)'>", "<p style=\"background: /**/\">"},
      {"<p style='font: \"a&amp;b\"'>", "<p style=\"font: &quot;a\\26 b&quot;\">"},
      {"<p style='a: x & y; position: fixed'>", "<p style=\"a: x &amp; y; \">"},
      {"<p style='color: red !important'>", "<p style=\"color: red \">"},
      {"<style>@import 'http://a'; p { color: red }</style>", "<style> p { color: red }</style>"},
      {"<style>a::before { content: '<\\/style><script>' }</style>",
       "<style>a::before { content: \"\\3c /style\\3e \\3c script\\3e \" }</style>"},
  };
  for (const Case& c : cases) EXPECT_EQ(Clean(c.html), c.safe) << c.html;
}

TEST(SafeHtmlTest, ListsTargets) {
  struct Row {
    std::string_view html;
    LinkKind kind;
    std::string_view text;
    std::string_view target;
  };
  const Row rows[] = {
      {"<a href='https://a/?b&amp;c'>your <b>bank</b></a> x", LinkKind::kLink, "your bank",
       "https://a/?b&c"},
      {"<A HREF=mailto:a@b>a<br>b &copy;", LinkKind::kLink, "a b \xC2\xA9", "mailto:a@b"},
      {"<a href=x href=y>z</a>", LinkKind::kLink, "z", "x"},
      {"<a href='java&NewLine;script:x'><img alt='a &lt; b'></a>", LinkKind::kLink, "a < b",
       "javascript:x"},
      {"<svg><a xlink:href=x>y</a></svg>", LinkKind::kLink, "y", "x"},
      {"<a href=x>a<script>b</script><!-- c -->d", LinkKind::kLink, "ad", "x"},
      {"<map><area href=x>y</map>", LinkKind::kArea, "", "x"},
      {"<form action=x>y</form>", LinkKind::kForm, "", "x"},
      {"<button formaction=x>y</button>", LinkKind::kButton, "", "x"},
      {"<input formaction=x>", LinkKind::kButton, "", "x"},
      {"<base href=x>", LinkKind::kBase, "", "x"},
  };
  for (const Row& row : rows) {
    const std::vector<Link> links = Letter(row.html).links.list();
    ASSERT_EQ(links.size(), 1U) << row.html;
    EXPECT_EQ(links[0].kind, row.kind) << row.html;
    EXPECT_EQ(links[0].text, row.text) << row.html;
    EXPECT_EQ(links[0].target, row.target) << row.html;
  }
  EXPECT_TRUE(Letter("<a name=x>y</a><img src=x><p href=z>").links.list().empty());
  EXPECT_EQ(Letter("<base href=a><base href=b>").links.base(), "a");
  const std::vector<Link> two = Letter("<a href=x>a<a href=y>b").links.list();
  ASSERT_EQ(two.size(), 2U);
  EXPECT_EQ(two[0].text, "a");
  EXPECT_EQ(two[1].text, "b");
}

TEST(SafeHtmlTest, LeavesOutWhatLoadsOrRuns) {
  const Case cases[] = {
      {"a<script>b</script>c", "ac"},
      {"a<SCRIPT src=x>b</scrip></script x>c", "ac"},
      {"a<script>b", "a"},
      {"<img src=http://a/b onerror=c srcset=d>", "<img>"},
      {"<img src=cid:none><img src=data:image/svg+xml,a>", "<img><img>"},
      {"<img src='data:image/png,\"a'>", "<img>"},
      {"<p onclick=a background=b name=c>", "<p>"},
      {"<link rel=preconnect href=a><meta http-equiv=refresh><base href=b>x", "x"},
      {"<iframe src=a><p>b</p></iframe>c<object data=d>e</object><embed src=f>", "ce"},
      {"<form action=a><input name=b><button>c</button></form>", "c"},
      {"<svg onload=a><image href=b/></svg>", ""},
      {"<title>a</title><textarea><p></textarea><xmp><p></xmp><noframes><p></noframes>b", "b"},
      {"a<plaintext><p>b", "a"},
      {"a<!-- <p> -->b<!doctype html><?php x?>c<!--", "abc"},
      {"<!--><p>-->", "<p>--&gt;"},
  };
  for (const Case& c : cases) EXPECT_EQ(Clean(c.html), c.safe) << c.html;
}

TEST(SafeHtmlTest, LetsNothingBreakOut) {
  const Case cases[] = {
      {"<p title='\"><img src=a>'>", "<p title=\"&quot;&gt;&lt;img src=a&gt;\">"},
      {"<p title=\"a", ""},
      {"<p title=a", ""},
      {"<p", ""},
      {"<", "&lt;"},
      {"</", "&lt;/"},
      {"<p =a b=c>", "<p>"},
      {"<p/title=a/b>", "<p title=\"a/b\">"},
      {"<p title>", "<p title=\"\">"},
      {"<scr\0ipt>a</scr\0ipt>b"sv, "b"},
      {"<style>a {}</st\0yle><img src=b></style>c"sv, "<style>a {}</style><img>c"},
      {"<\0p>\x01x"sv, "<p>x"},
      {"<style>a", ""},
  };
  for (const Case& c : cases) EXPECT_EQ(Clean(c.html), c.safe) << c.html;
}

}  // namespace
}  // namespace zqv::cli
