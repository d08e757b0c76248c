#include "email/route.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>
#include <utility>

#include "mime/message.h"

namespace zqv::test {
namespace {

using email::Destination;

struct RouteRow {
  const char* name;
  std::string_view type;
  std::string_view subtype;
  std::string_view disposition;
  bool has_content_id;
  bool has_plain_text;
  bool has_html_text;
  Destination destination;
};

void PrintTo(const RouteRow& row, std::ostream* out) { *out << row.name; }

class RouteOf : public ::testing::TestWithParam<RouteRow> {};

TEST_P(RouteOf, IsAsListed) {
  const RouteRow& row = GetParam();
  const email::PartTraits part{row.type, row.subtype, row.disposition, row.has_content_id};
  EXPECT_EQ(email::Route(part, row.has_plain_text, row.has_html_text), row.destination);
}

constexpr auto kPlain = Destination::kPlainText;
constexpr auto kHtml = Destination::kHtmlText;
constexpr auto kListed = Destination::kAttachments;
constexpr auto kInline = Destination::kInlines;

constexpr bool kYes = true;
constexpr bool kNo = false;

constexpr RouteRow kRoutes[] = {
    // clang-format off
    // name                       type         subtype     disposition  id    plain html
    {"FirstPlain",              "text",      "plain",    "",            kNo,  kNo,  kNo,  kPlain},
    {"FirstPlainBesideHtml",    "text",      "plain",    "",            kNo,  kNo,  kYes, kPlain},
    {"FirstPlainInCapitals",    "TEXT",      "Plain",    "",            kNo,  kNo,  kNo,  kPlain},
    {"FirstPlainMarkedInline",  "text",      "plain",    "inline",      kNo,  kNo,  kNo,  kPlain},
    {"FirstPlainOtherwise",     "text",      "plain",    "form-data",   kNo,  kNo,  kNo,  kPlain},
    {"FirstPlainWithId",        "text",      "plain",    "",            kYes, kNo,  kNo,  kPlain},
    {"FirstPlainFile",          "text",      "plain",    "attachment",  kNo,  kNo,  kNo,  kListed},
    {"FirstPlainFileInCapitals","text",      "plain",    "ATTACHMENT",  kNo,  kNo,  kNo,  kListed},
    {"FirstPlainFileWithId",    "text",      "plain",    "attachment",  kYes, kNo,  kNo,  kListed},
    {"SecondPlain",             "text",      "plain",    "",            kNo,  kYes, kNo,  kListed},
    {"SecondPlainWithId",       "text",      "plain",    "",            kYes, kYes, kNo,  kInline},
    {"SecondPlainMarkedInline", "text",      "plain",    "inline",      kNo,  kYes, kNo,  kInline},
    {"SecondPlainFileWithId",   "text",      "plain",    "attachment",  kYes, kYes, kNo,  kListed},
    {"FirstHtml",               "text",      "html",     "",            kNo,  kNo,  kNo,  kHtml},
    {"FirstHtmlBesidePlain",    "text",      "html",     "",            kNo,  kYes, kNo,  kHtml},
    {"FirstHtmlInCapitals",     "Text",      "HTML",     "",            kNo,  kNo,  kNo,  kHtml},
    {"FirstHtmlMarkedInline",   "text",      "html",     "inline",      kNo,  kNo,  kNo,  kHtml},
    {"FirstHtmlFile",           "text",      "html",     "attachment",  kNo,  kNo,  kNo,  kListed},
    {"SecondHtml",              "text",      "html",     "",            kNo,  kNo,  kYes, kListed},
    {"SecondHtmlWithId",        "text",      "html",     "",            kYes, kNo,  kYes, kInline},
    {"Calendar",                "text",      "calendar", "",            kNo,  kNo,  kNo,  kListed},
    {"TextWithoutSubtype",      "text",      "",         "",            kNo,  kNo,  kNo,  kListed},
    {"PlainWithABlank",         "text",      "plain ",   "",            kNo,  kNo,  kNo,  kListed},
    {"NoType",                  "",          "",         "",            kNo,  kNo,  kNo,  kListed},
    {"PlainOfAnotherType",      "image",     "plain",    "",            kNo,  kNo,  kNo,  kListed},
    {"Image",                   "image",     "png",      "",            kNo,  kNo,  kNo,  kListed},
    {"ImageWithId",             "image",     "png",      "",            kYes, kNo,  kNo,  kInline},
    {"ImageMarkedInline",       "image",     "png",      "inline",      kNo,  kNo,  kNo,  kInline},
    {"ImageInlineInCapitals",   "image",     "png",      "Inline",      kNo,  kNo,  kNo,  kInline},
    {"ImageFileWithId",         "image",     "png",      "attachment",  kYes, kNo,  kNo,  kListed},
    {"ImageMarkedOtherwise",    "image",     "png",      "x-other",     kNo,  kNo,  kNo,  kListed},
    {"ImageOtherwiseWithId",    "image",     "png",      "x-other",     kYes, kNo,  kNo,  kInline},
    {"AttachmentWithABlank",    "image",     "png",      "attachment ", kYes, kNo,  kNo,  kInline},
    {"Signed",                  "multipart", "signed",   "",            kNo,  kNo,  kNo,  kListed},
    // clang-format on
};
INSTANTIATE_TEST_SUITE_P(Parts, RouteOf, ::testing::ValuesIn(kRoutes),
                         [](const auto& row) { return row.param.name; });

struct ContainerRow {
  const char* name;
  std::string_view type;
  std::string_view subtype;
  bool is_container;
};

void PrintTo(const ContainerRow& row, std::ostream* out) { *out << row.name; }

class ContainerOf : public ::testing::TestWithParam<ContainerRow> {};

TEST_P(ContainerOf, IsAsListed) {
  EXPECT_EQ(email::IsContainer(GetParam().type, GetParam().subtype), GetParam().is_container);
}

constexpr ContainerRow kContainers[] = {
    // clang-format off
    {"Mixed",        "multipart",  "mixed",       true},
    {"Alternative",  "multipart",  "alternative", true},
    {"Related",      "multipart",  "related",     true},
    {"InCapitals",   "MULTIPART",  "Mixed",       true},
    {"Signed",       "multipart",  "signed",      false},
    {"Report",       "multipart",  "report",      false},
    {"Digest",       "multipart",  "digest",      false},
    {"NoSubtype",    "multipart",  "",            false},
    {"BlankBehind",  "multipart",  "mixed ",      false},
    {"OtherType",    "text",       "mixed",       false},
    {"Message",      "message",    "rfc822",      false},
    {"NoType",       "",           "",            false},
    // clang-format on
};
INSTANTIATE_TEST_SUITE_P(Types, ContainerOf, ::testing::ValuesIn(kContainers),
                         [](const auto& row) { return row.param.name; });

// A message without parts, for functions that take one header and body.
class OnePart {
 public:
  explicit OnePart(std::string text) : text_(std::move(text)), message_(text_) {}

  mime::Header Header() const { return message_.HeaderOf(message_.top()); }
  std::string_view body() const { return message_.top().body; }

 private:
  const std::string text_;
  const mime::Message message_;
};

TEST(TraitsOf, AreReadFromTheHeader) {
  const OnePart part(
      "Content-Type: Text/Plain; charset=x\nContent-Disposition: Attachment; filename=a\n"
      "Content-ID: <i>\n\n");
  const mime::Header header = part.Header();
  const email::PartTraits traits = email::TraitsOf(header);
  EXPECT_EQ(traits.type, "Text");
  EXPECT_EQ(traits.subtype, "Plain");
  EXPECT_EQ(traits.disposition, "Attachment");
  EXPECT_TRUE(traits.has_content_id);
}

TEST(TraitsOf, AreEmptyWithoutFields) {
  for (const char* text : {"A: b\n\n", "Content-ID:\nContent-Disposition:\nContent-Type:\n\n"}) {
    const OnePart part(text);
    const mime::Header header = part.Header();
    const email::PartTraits traits = email::TraitsOf(header);
    EXPECT_EQ(traits.type, "");
    EXPECT_EQ(traits.subtype, "");
    EXPECT_EQ(traits.disposition, "");
    EXPECT_FALSE(traits.has_content_id);
  }
}

TEST(IsText, ComparesTypeAndSubtypeInAnyCase) {
  EXPECT_TRUE(email::IsText("text", "plain", "plain"));
  EXPECT_TRUE(email::IsText("TEXT", "Html", "html"));
  EXPECT_FALSE(email::IsText("text", "html", "plain"));
  EXPECT_FALSE(email::IsText("image", "plain", "plain"));
  EXPECT_FALSE(email::IsText("text", "plain ", "plain"));
  EXPECT_FALSE(email::IsText("", "", ""));
}

std::string DecodedPart(const char* text) {
  const OnePart part(text);
  const auto decoded = email::DecodePart(part.Header(), part.body());
  return decoded.has_value() ? std::string(decoded->bytes()) : "nothing";
}

std::string DecodedSinglePart(const char* text) {
  const OnePart part(text);
  const auto decoded = email::DecodeSinglePart(part.Header(), part.body());
  return decoded.has_value() ? std::string(decoded->bytes()) : "nothing";
}

TEST(DecodePart, GivesTheDecodedBodyOrNothing) {
  EXPECT_EQ(DecodedPart("Content-Transfer-Encoding: base64\n\nQUJD"), "ABC");
  EXPECT_EQ(DecodedPart("Content-Transfer-Encoding: quoted-printable\n\n=41"), "A");
  EXPECT_EQ(DecodedPart("A: b\n\n=41"), "=41");
  EXPECT_EQ(DecodedPart("Content-Type: multipart/related; boundary=b\n\n--b\n\nx\n--b--\n"),
            "nothing");
  EXPECT_EQ(DecodedPart("Content-Type: multipart/signed; boundary=b\n\n--b\n\nx\n--b--\n"), "");
  EXPECT_EQ(DecodedPart("Content-Transfer-Encoding: base64 \n\nQUJD"), "nothing");
}

TEST(DecodePart, BorrowsWhatNeedsNoDecoding) {
  const OnePart part("A: b\n\nbody");
  EXPECT_EQ(email::DecodePart(part.Header(), part.body())->bytes().data(), part.body().data());
}

TEST(DecodeSinglePart, TakesAContainerToo) {
  EXPECT_EQ(DecodedSinglePart("Content-Type: multipart/mixed; boundary=b\n\nx"), "");
  EXPECT_EQ(DecodedSinglePart("Content-Transfer-Encoding: base64\n\nQUJD"), "ABC");
  EXPECT_EQ(DecodedSinglePart("Content-Transfer-Encoding: x-uuencode\n\nbegin"), "nothing");
}

struct LabelRow {
  const char* type;
  std::string_view decoded;
  abi::Encoding encoding;
  std::string_view unknown_charset;
};

TEST(LabelBody, IsInItsCharsetOrInThatOfItsBytes) {
  constexpr LabelRow kRows[] = {
      {"text/plain; charset=\"ISO-8859-15\"", "\xE9", 0x020F, ""},
      {"text/plain; charset=KOI8-R", "\xE9", 0x0A02, ""},
      {"text/plain; charset=iso-8859-1", "\xE9", abi::kIsoLatin1, ""},
      {"text/plain; charset=utf-8", "x", abi::kUtf8, ""},
      {"text/plain; charset=foo", "\xE9", abi::kUnknownEncoding, "foo"},
      {"text/plain; charset=binary", "\xE9", abi::kUnknownEncoding, ""},
      {"text/plain; charset=\"\"", "x", abi::kAscii, ""},
      {"text/plain", "cafe", abi::kAscii, ""},
      {"text/plain", "\xC3\xA9", abi::kUtf8, ""},
      {"text/plain", "\xE9", abi::kMacRoman, ""},
      {"text/plain", {"a\0\xE9", 3}, abi::kMacRoman, ""},
  };
  for (const LabelRow& row : kRows) {
    const OnePart part("Content-Type: " + std::string(row.type) + "\n\n");
    const mime::Header header = part.Header();
    const email::BodyText text = email::LabelBody(header, row.decoded);
    EXPECT_EQ(text.bytes, row.decoded) << row.type;
    EXPECT_EQ(text.encoding, row.encoding) << row.type;
    EXPECT_EQ(text.unknown_charset, row.unknown_charset) << row.type;
  }
}

}  // namespace
}  // namespace zqv::test
