// Cleaning of style sheets: harmless rules stay, and nothing that loads or runs does.
#include "cli/safe_css.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "cli/css_tokens.h"

namespace zqv::cli {
namespace {

using namespace std::string_view_literals;

std::string PictureFor(std::string_view url) {
  return url == "cid:a" ? std::string("data:image/gif;base64,A;=") : std::string();
}

std::string Sheet(std::string_view css) { return SafeStyleSheet(css, PictureFor); }
std::string Declarations(std::string_view css) { return SafeDeclarations(css, PictureFor); }

struct Case {
  std::string_view css;
  std::string_view safe;
};

TEST(SafeCssTest, KeepsWhatDoesNoHarm) {
  const Case cases[] = {
      {"p > b, .a:hover ~ #c { color: red; margin: 0 -.5em 10% !important }",
       "p > b, .a:hover ~ #c { color: red; margin: 0 -.5em 10% !important }"},
      {"td[width='5'] { width: calc(100% - 2px); color: rgba(0, 0, 0, .5) }",
       "td[width=\"5\"] { width: calc(100% - 2px); color: rgba(0, 0, 0, .5) }"},
      {"@media screen and (max-width: 600px) { p { color: red } } b { top: 1e3px }",
       "@media screen and (max-width: 600px) { p { color: red } } b { top: 1e3px }"},
      {"p { font-family: 'Segoe UI', \"M\xC3\xBCn\" }",
       "p { font-family: \"Segoe UI\", \"M\xC3\xBCn\" }"},
      {"p:nth-child(2n+1):not(.a) { --x: #FFF; color: var(--x) }",
       "p:nth-child(2n+1):not(.a) { --x: #FFF; color: var(--x) }"},
      {"a/* x */.b { /* y */ c: d /**/ e }", "a/**/.b { /**/ c: d /**/ e }"},
      {"<!-- p { a: b } -->", "/**/ p { a: b } /**/"},
      {"p { background: #fff url(cid:a) }",
       "p { background: #fff url(\"data:image/gif;base64,A;=\") }"},
      {"p { background: url( \"cid:a\" ) no-repeat }",
       "p { background: url(\"data:image/gif;base64,A;=\") no-repeat }"},
      {"", ""},
  };
  for (const Case& c : cases) EXPECT_EQ(Sheet(c.css), c.safe) << c.css;
}

TEST(SafeCssTest, RulesForThePageGoToTheLetter) {
  const Case cases[] = {
      {"html, BODY.a > p { a: b }", "zqv-html, zqv-body.a > p { a: b }"},
      {"b\\6f dy { a: b }", "zqv-body { a: b }"},
      {".body #html [body] :not(body) { a: b }", ".body #html [body] :not(zqv-body) { a: b }"},
      {":root { a: body }", ":is(zqv-html) { a: body }"},
      {":host { a: b } c { d: e }", " c { d: e }"},
      {":h\\6fst { a: b }", ""},
      {":host(.a), p { a: b }", ""},
      {":host-context(body) { a: b }", ""},
      {"::slotted(p) { a: b }", ""},
  };
  for (const Case& c : cases) EXPECT_EQ(Sheet(c.css), c.safe) << c.css;
}

TEST(SafeCssTest, LeavesOutRulesThatLoadOrReachThePage) {
  const Case cases[] = {
      {"@import 'x'; p { a: b }", " p { a: b }"},
      {"@IMPORT url(x) screen; p { a: b }", " p { a: b }"},
      {"@\\69mport 'x'; p { a: b }", " p { a: b }"},
      {"@im/**/port 'x'; p { a: b }", " p { a: b }"},
      {"@font-face { font-family: f; src: url(x) } p { a: b }", " p { a: b }"},
      {"@page { margin: 0 } p { a: b }", " p { a: b }"},
      {"@layer a { p { a: b } } c { d: e }", " c { d: e }"},
      {"@media print { p { display: none } } c { d: e }", " c { d: e }"},
      {"@media not screen { p { display: none } } c { d: e }", " c { d: e }"},
      {"@namespace 'x'; p { a: b }", " p { a: b }"},
      {"@import 'x'", ""},
      {"p { a: b; q { c: url(x) } d: e }", "p { a: b;  d: e }"},
      {"p { a: b; @media screen { c: d } e: f }", "p { a: b;  e: f }"},
  };
  for (const Case& c : cases) EXPECT_EQ(Sheet(c.css), c.safe) << c.css;
}

TEST(SafeCssTest, LeavesOutValuesThatLoadOrRun) {
  const Case cases[] = {
      {"a: url(x)", "a: /**/"},
      {"a: URL( 'x' ) b", "a: /**/ b"},
      {"a: \\75rl(x)", "a: /**/"},
      {"a: \\000075 \\72\\6c(x)", "a: /**/"},
      {"a: u\\\nrl(x)", "a: u/**/ /**/"},
      {"a: u/**/rl(x)", "a: u/**//**/"},
      {"a: url(cid:b)", "a: /**/"},
      {"a: url(x y) b", "a: /**/ b"},
      {"a: url('x' y) b", "a: /**/ b"},
      {"a: url('x", "a: /**/"},
      {"a: url(x", "a: /**/"},
      {"a: src('x')", "a: /**/"},
      {"a: image-set('x' 1x, url(y) 2x) b", "a: /**/ b"},
      {"a: -webkit-image-set(url(x) 1x)", "a: /**/"},
      {"a: image('x'), cross-fade(url(x), y), element(#z)", "a: /**/, /**/, /**/"},
      {"a: linear-gradient(red, url(x), blue)", "a: linear-gradient(red, /**/, blue)"},
      {"--a: url(x); b: var(--a)", "--a: /**/; b: var(--a)"},
      {"a: var(--b, url(x))", "a: var(--b, /**/)"},
      {"width: expression(alert(1)); b: c", "width: /**/; b: c"},
      {"width: exp\\72 ession(alert(1))", "width: /**/"},
      {"filter: progid:DXImageTransform.Microsoft.AlphaImageLoader(src='x')",
       "filter: progid:DXImageTransform.Microsoft./**/"},
      {"behavior: url(x); a: b", " a: b"},
      {"BEHAVIO\\52: x; a: b", " a: b"},
      {"-moz-binding: x; a: b", " a: b"},
      {"-ms-behavior/**/: x; a: b", " a: b"},
      {"position: fixed; a: b", " a: b"},
      {"src: x; a: b", " a: b"},
      {"*position: fixed; a: b", " a: b"},
  };
  for (const Case& c : cases) EXPECT_EQ(Declarations(c.css), c.safe) << c.css;
}

TEST(SafeCssTest, LetsNothingBreakOut) {
  const Case cases[] = {
      {"a: b } c { d: e", "a: b  "},
      {"a: (b; c: d", "a: (b); c: d"},
      {"a: b) ] c", "a: b  c"},
      {"a: '</style>'", "a: \"\\3c /style\\3e \""},
      {"a: \\3c/style>", "a: \\3c /style>"},
      {"a: </style>", "a: /**//style>"},
      {"a: 'b\nc: url(x)", "a: /**/ c: /**/"},
      {"a: 'b\\\nc'", "a: \"bc\""},
      {"a: 'b\\22 c\\\\d'", "a: \"b\\22 c\\5c d\""},
      {"a: \\31 \\2d \\\\", "a: \\31 -\\5c "},
      {"a: 1\\65 3", "a: /**/"},
      {"a: b\\", "a: b\xEF\xBF\xBD"},
      {"a: \\0 \\d800 \\110000", "a: \xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"a: \\\n b", "a: /**/ b"},
      {"a {b: c}", ""},
      {"a: b /* c", "a: b /**/"},
  };
  for (const Case& c : cases) EXPECT_EQ(Declarations(c.css), c.safe) << c.css;
  const Case sheets[] = {
      {"p { a: b", "p { a: b}"},
      {"p { a: (b } c { d: e }", "p { a: (b )} c { d: e }"},
      {"@media screen { p { a: b }", "@media screen { p { a: b }}"},
      {"} p { a: b }", " p { a: b }"},
      {"p", ""},
      {"</style><script> { a: b }", "/**//style>/**/script> { a: b }"},
  };
  for (const Case& c : sheets) EXPECT_EQ(Sheet(c.css), c.safe) << c.css;
}

// Cleaning the result again does not change it, so it is parsed as it was meant.
TEST(SafeCssTest, IsCleanWhenReadAgain) {
  constexpr std::string_view kSheets[] = {
      "@media screen { p { a: \\75rl(x) 'y<' (z; } } q { \\31 a: 1e3 -\\32 }",
      "a: b } c { d\\3a e: f; g: \\\"h } @import 'x",
      "p { a: 1/**/e3 u/**/rl(x) '\\a ' \\7b } }",
  };
  for (const std::string_view css : kSheets) {
    const std::string once = Sheet(css);
    EXPECT_EQ(Sheet(once), once) << css;
    EXPECT_EQ(once.find('<'), std::string::npos) << css;
  }
}

TEST(SafeCssTest, DeepNestingIsNoTrouble) {
  constexpr std::size_t kDepth = 1U << 20U;
  const std::string open(kDepth, '(');
  EXPECT_EQ(Declarations("a: " + open).size(), 3 + 2 * kDepth);
  const std::string blocks(kDepth, '{');
  EXPECT_EQ(Sheet(blocks), "{}");
}

TEST(CssTokensTest, TextIsReadAsTheSameToken) {
  const CssToken tokens[] = {
      {CssKind::kIdent, "a b"},    {CssKind::kIdent, "-"},       {CssKind::kIdent, "1a"},
      {CssKind::kIdent, "-1"},     {CssKind::kIdent, "--"},      {CssKind::kIdent, "<!--"},
      {CssKind::kFunction, "a("},  {CssKind::kAt, "1"},          {CssKind::kHash, "1\n"},
      {CssKind::kString, "\"\\'"}, {CssKind::kString, "\r\n\f"}, {CssKind::kNumber, "+1.5e-3px"},
      {CssKind::kNumber, "5%"},    {CssKind::kOther, ">"},
  };
  for (const CssToken& token : tokens) {
    const std::string text = CssText(token);
    CssReader reader(text);
    const CssToken read = reader.Next();
    EXPECT_EQ(read.kind, token.kind) << text;
    EXPECT_EQ(read.value, token.value) << text;
    EXPECT_EQ(reader.Next().kind, CssKind::kEnd) << text;
  }
}

}  // namespace
}  // namespace zqv::cli
