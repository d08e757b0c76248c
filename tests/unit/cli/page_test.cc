// What a report's page is made of: escaped text, cleaned HTML, pictures, base64.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "cli/base64.h"
#include "cli/html_writer.h"
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

std::string Clean(std::string_view html) {
  return SafeHtml(html, [](std::string_view id) {
    return id == "a@b" ? std::string("data:image/gif;base64,AA==") : std::string();
  });
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
      {"<html><body text=red>x</body></html>y", "<body text=\"red\">xy"},
      {"caf\xC3\xA9", "caf\xC3\xA9"},
  };
  for (const Case& c : cases) EXPECT_EQ(Clean(c.html), c.safe) << c.html;
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
      {"<style>a</st\0yle><img src=b></style>c"sv, "<style>a</style><img>c"},
      {"<\0p>\x01x"sv, "<p>x"},
      {"<style>a", ""},
  };
  for (const Case& c : cases) EXPECT_EQ(Clean(c.html), c.safe) << c.html;
}

}  // namespace
}  // namespace zqv::cli
