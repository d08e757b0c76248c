#include "email/route.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tests/unit/email/email_fixture.h"
#include "tests/unit/host/log_capture.h"
#include "text/charset.h"

namespace zqv::test {
namespace {

using email::Destination;
using mime::MimeEntityClassData;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

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

class Routing : public EmailTest {};

TEST_F(Routing, PlainTextMarkedAttachmentIsListedAndNoText) {
  const auto email = ParseEmail(Mixed(
      {"Content-Type: text/plain; charset=utf-8\nContent-Disposition: attachment\n\ncaf\xC3\xA9"}));
  ASSERT_EQ(Attachments(email).size(), 1U);
  EXPECT_EQ(Show(Attachments(email)[0]->Data), Utf8("caf\xC3\xA9"));
  EXPECT_THAT(Inlines(email), IsEmpty());
  EXPECT_EQ(Show(RecordOf(email).PlainText), "nil");
}

TEST_F(Routing, UnknownMechanismIsIgnoredEntirely) {
  const auto email = ParseEmail(
      Mixed({"Content-Type: text/plain\nContent-Transfer-Encoding: x-uuencode\n\nbegin"}));
  EXPECT_EQ(Show(RecordOf(email).PlainText), "nil");
  EXPECT_THAT(Attachments(email), IsEmpty());
  EXPECT_THAT(Inlines(email), IsEmpty());
  ASSERT_EQ(Parts(RecordOf(email)).size(), 1U);
  EXPECT_EQ(Show(Parts(RecordOf(email))[0]->BodyDecoded), "nil");
}

TEST_F(Routing, TextWithoutCharsetTakesItsEncodingFromItsBytes) {
  const auto text = [](const char* body) {
    const auto email = ParseEmail(Mixed({std::string("Content-Type: text/plain\n\n") + body}));
    return Show(RecordOf(email).PlainText);
  };
  EXPECT_EQ(text("cafe"), Ascii("cafe"));
  EXPECT_EQ(text("\xC3\xA9"), Utf8("\xC3\xA9"));
  EXPECT_EQ(text("\xE9"), MacRoman("\xE9"));
}

TEST_F(Routing, TextIsInItsCharset) {
  const auto text = [](const std::string& charset) {
    return Show(email::BuildBodyText("\xE9", charset));
  };
  EXPECT_EQ(text("\"ISO-8859-15\""), Shown(0x020F, "\xE9"));
  EXPECT_EQ(text("KOI8-R"), Shown(0x0A02, "\xE9"));
  EXPECT_EQ(text("iso-8859-1"), Shown(abi::kIsoLatin1, "\xE9"));
  EXPECT_EQ(text("foo"), Shown(abi::kUnknownEncoding, "\xE9"));
  EXPECT_EQ(Show(email::BuildBodyText("", "utf-8")), "nil");
  EXPECT_EQ(Show(email::BuildBodyText("", "")), "nil");
}

TEST_F(Routing, TextOfUtf16ComesOutAsUtf8) {
  EXPECT_EQ(Show(email::BuildBodyText({"\xE9\x00", 2}, "utf-16")), Utf8("\xC3\xA9"));
}

TEST_F(Routing, UnknownCharsetRaisesWhenAskedToAndGoesOn) {
  text::RaiseUnknownFormatExceptions = true;
  const auto email = ParseEmail(Mixed({"Content-Type: text/plain; charset=foo\n\n\xE9",
                                       "Content-Type: text/html; charset=utf-8\n\n<p>x</p>"}));
  EXPECT_EQ(TakeRaised(), "UnsupportedFormatException, 0: Unhandled charset: foo");
  EXPECT_EQ(Show(RecordOf(email).PlainText), Shown(abi::kUnknownEncoding, "\xE9"));
  EXPECT_EQ(Show(RecordOf(email).HTMLText), Utf8("<p>x</p>"));
}

TEST_F(Routing, ImagesGoByDispositionAndContentId) {
  const std::string type = "Content-Type: image/png\n";
  const auto email = ParseEmail(Mixed({
      type + "Content-Disposition: inline; filename=a\n\nx",
      type + "Content-ID: <i>\nContent-Disposition: x-other; filename=b\n\nx",
      type + "Content-Disposition: x-other; filename=c\n\nx",
      type + "Content-ID:\nContent-Disposition: x-other; filename=d\n\nx",
      type + "Content-ID: <i>\nContent-Disposition: attachment; filename=e\n\nx",
  }));
  EXPECT_THAT(Names(Inlines(email)), ElementsAre(Ascii("a"), Ascii("b")));
  EXPECT_THAT(Names(Attachments(email)), ElementsAre(Ascii("c"), Ascii("d"), Ascii("e")));
}

TEST_F(Routing, ImageWithoutDispositionGoesByItsContentId) {
  const auto email = ParseEmail(Mixed({"Content-Type: image/png; name=a\nContent-ID: <i>\n\nx",
                                       "Content-Type: image/png; name=b\n\nx"}));
  EXPECT_THAT(Names(Inlines(email)), ElementsAre(Ascii("a")));
  EXPECT_THAT(Names(Attachments(email)), ElementsAre(Ascii("b")));
}

TEST_F(Routing, SignedMultipartIsListedItself) {
  const auto email = ParseEmail(
      Mixed({"Content-Type: multipart/signed; boundary=s; name=container\n\n"
             "--s\nContent-Type: text/plain\n\nsigned\n"
             "--s\nContent-Type: application/pgp-signature; name=signature\n\nsig\n--s--\n"}));
  EXPECT_EQ(Show(RecordOf(email).PlainText), Ascii("signed"));
  EXPECT_THAT(Names(Attachments(email)), ElementsAre(Ascii("signature"), Ascii("container")));
  EXPECT_EQ(Show(Attachments(email)[1]->Data), "nil");
}

TEST_F(Routing, EmptyTextLeavesTheNextOneItsPlace) {
  const auto email =
      ParseEmail(Mixed({"Content-Type: text/plain\n\n", "Content-Type: text/plain\n\nsecond"}));
  EXPECT_EQ(Show(Parts(RecordOf(email))[0]->BodyDecoded), "nil");
  EXPECT_EQ(Show(RecordOf(email).PlainText), Ascii("second"));
  EXPECT_THAT(Attachments(email), IsEmpty());
}

TEST_F(Routing, SharesTheTextBetweenThePartAndTheMessage) {
  const auto email =
      ParseEmail(Mixed({"Content-Type: text/plain\n\none", "Content-Type: text/html\n\ntwo"}));
  const MimeEntityClassData& record = RecordOf(email);
  EXPECT_EQ(record.PlainText.get(), Parts(record)[0]->BodyDecoded.get());
  EXPECT_EQ(record.HTMLText.get(), Parts(record)[1]->BodyDecoded.get());
  EXPECT_EQ(LocksOf(record.PlainText.get()), 2);
}

TEST_F(Routing, SaysWhatItDid) {
  const auto message =
      Parse(Mixed({"Content-Type: text/plain\n\none", "Content-Type: Text/HTML\n\ntwo",
                   "Content-Type: image/png\n\nthree"}));
  const auto email = NewEmail();
  email::EntityRouter router(RecordOf(email), message->texts);
  const LogCapture log;
  for (const mimetic::MimeEntity* part : message->entity.body().parts()) {
    const auto object = host::NewInstance<MimeEntityClassData>();
    router.OnEntity(*part, message->texts.HeaderOf(*part),
                    *host::RecordOf<MimeEntityClassData>(object.get()), nullptr, nullptr);
  }
  EXPECT_EQ(log.Text(), Logged({"decoded body of type text, plain", "Set email plainText",
                                "decoded body of type Text, HTML", "Set email htmlText",
                                "decoded body of type image, png"}));
}

TEST_F(Routing, GivesTheDecodedBodyOrNothing) {
  const auto email = NewEmail();
  const auto decode = [&](const char* text) -> std::string {
    const auto message = Parse(text);
    const auto decoded = email::DecodeEntity(RecordOf(email), message->Header(),
                                             message->texts.BodyOf(message->entity),
                                             RecordOf(email), nullptr, nullptr);
    return decoded.has_value() ? std::string(decoded->bytes()) : "nothing";
  };
  EXPECT_EQ(decode("Content-Transfer-Encoding: base64\n\nQUJD"), "ABC");
  EXPECT_EQ(decode("Content-Type: multipart/related; boundary=b\n\n--b\n\nx\n--b--\n"), "nothing");
  EXPECT_EQ(decode("Content-Transfer-Encoding: base64 \n\nQUJD"), "nothing");
}

TEST_F(Routing, DatesEveryPart) {
  const auto email = ParseEmail(Mixed({"Date: Tue, 1 Jan 2019 10:00:00 +0000\n\nx", "X: y\n\nx"}));
  EXPECT_NE(DateText(Parts(RecordOf(email))[0]->SentDate), "nil");
  EXPECT_EQ(DateText(Parts(RecordOf(email))[1]->SentDate), "nil");
  EXPECT_EQ(DateText(RecordOf(email).SentDate), "nil");
}

}  // namespace
}  // namespace zqv::test
