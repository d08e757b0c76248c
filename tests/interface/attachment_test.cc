// Properties of an attachment: the fields of its part, and the file name.
#include <gtest/gtest.h>

#include <string>

#include "tests/interface/reading.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

class Attachments : public InterfaceTest {};

const std::string kPng = "\x89PNG\r\n\x1A\n";

// The attachment of a message whose only part has these header fields and this body.
Object RecordOf(const std::string& fields, const std::string& data) {
  const Object message = Parse("Content-Type: multipart/mixed; boundary=frontier\n\n--frontier\n" +
                               fields + "\n" + data + "\n--frontier--\n");
  for (const char* list : {"Attachments", "Inlines"}) {
    if (ObjectOf(Call(message, list)).Size() == 1) return ObjectOf(Call(message, list, 0));
  }
  throw std::logic_error("not one record: " + fields);
}

std::string FileName(const std::string& fields, const std::string& data = "data") {
  return standin::BytesOf(Get(RecordOf(fields, data), "Filename"));
}

std::string Disposition(const std::string& parameters) {
  return "Content-Type: application/x\nContent-Disposition: attachment; " + parameters + "\n";
}

TEST_F(Attachments, EncodedNameIsDecodedAndGetsNoExtension) {
  Start();
  EXPECT_EQ(FileName(Disposition("filename=\"=?utf-8?B?w4lsYW4=?=\""), kPng), "\xC3\x89lan");
}

TEST_F(Attachments, NamesInTheOrderOfTheirSources) {
  Start();
  const std::string type = "Content-Type: image/png; name=d.png; filename=b.png\n";
  const std::string type_with_name = "Content-Type: image/png; name=d.png\n";
  EXPECT_EQ(FileName(type + "Content-Disposition: attachment; filename=a.png\n"), "a.png");
  EXPECT_EQ(FileName(type + "Content-Disposition: attachment; filename*=utf-8''e.png\n"), "b.png");
  EXPECT_EQ(FileName(type_with_name + "Content-Disposition: attachment\n"), "d.png");
  EXPECT_EQ(FileName(Disposition("filename*=utf-8''e.png") + "Content-ID: <f>\n"), "e.png");
  EXPECT_EQ(FileName("Content-Type: image/png\nContent-ID: <f>\n"), "f");
  EXPECT_EQ(FileName("Content-Type: image/png\n"), "attachment");
}

TEST_F(Attachments, ExtendedNameIsNotDecoded) {
  Start();
  const struct {
    const char* parameter;
    const char* name;
  } kRows[] = {
      {"filename*=UTF-8''%E2%82%AC%20rates.pdf", "0x8000100 %E2%82%AC%20rates.pdf"},
      {"filename*=us-ascii''a.txt", "0x600 a.txt"},
      {"filename*=iso-8859-1''a.txt", "0x600 a.txt"},
      {"filename*=x-unknown-name''abc.txt", "0x600 x-unknown-name''abc.txt"},
      {"filename*=utf-8'en'a.txt", "0x600 utf-8'en'a.txt"},
      {"filename*=a''b", "0x600 a''b"},
      {"filename*=utf-8''", "0x600 attachment"},
      {"filename*=plain.txt", "0x600 plain.txt"},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(ShowProperty(RecordOf(Disposition(row.parameter), "data"), "Filename"), row.name)
        << row.parameter;
  }
}

TEST_F(Attachments, UnknownCharsetOfANameRaises) {
  Start();
  SetShared("MimeEmailZQV", "RaiseUnknownFormatExceptions", true);
  EXPECT_EQ(ConstructFromString(Disposition("filename*=x-no''abc.txt") + "\ndata\n").raised,
            "UnsupportedFormatException, 0: Unhandled charset: x-no");
}

TEST_F(Attachments, NameFromTheContentId) {
  Start();
  const struct {
    const char* id;
    const char* name;
  } kRows[] = {
      {"<part1.12345>", "part1.12345.png"},
      {"<logo.png>", "logo.png"},
      {"<LOGO.PNG>", "LOGO.PNG"},
      {"<.png>", ".png.png"},
      {"<x.png>", "x.png"},
      {"bare", "bare.png"},
      {"<>", "<>.png"},
      {"<a>", "a.png"},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(FileName(std::string("Content-Type: image/png\nContent-ID: ") + row.id + "\n", kPng),
              row.name)
        << row.id;
  }
}

// `position` bytes, then the marker of JPEG data, then other bytes.
std::string JpegWithMarkerAt(std::size_t position) {
  return std::string(position, 'x') + "JFIF and more";
}

TEST_F(Attachments, ExtensionFromTheData) {
  Start();
  const struct {
    std::string data;
    const char* name;
  } kRows[] = {
      {"GIF89a", "attachment.gif"},
      {"<html><p>", "attachment.html"},
      {"<HTML><p>", "attachment"},
      {"BM1234", "attachment.bmp"},
      {kPng, "attachment.png"},
      {"MM\x01*ab", "attachment.tif"},
      {"II*\x01"
       "ab",
       "attachment.tif"},
      {JpegWithMarkerAt(6), "attachment.jpg"},
      {JpegWithMarkerAt(29), "attachment.jpg"},
      {JpegWithMarkerAt(30), "attachment"},
      {"GIF89", "attachment"},
      {"something else", "attachment"},
      {"", "attachment"},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(FileName("Content-Type: application/x\n", row.data), row.name) << row.data;
  }
}

TEST_F(Attachments, TextsOfTheFields) {
  Start();
  const Object record = RecordOf(
      "MIME-Version: 1.0\nContent-Type: image/png; name=a.png\n"
      "Content-Transfer-Encoding: 8bit\nContent-Disposition: inline; filename=\"b.png\"\n"
      "Content-Description: A picture\nContent-ID: <id@example.org>\n",
      "data");
  EXPECT_EQ(ShowProperty(record, "MimeType"), "0x600 image/png");
  EXPECT_EQ(ShowProperty(record, "MimeVersion"), "0x600 1.0");
  EXPECT_EQ(ShowProperty(record, "ContentType"), "0x600 image/png; name=\"a.png\"");
  EXPECT_EQ(ShowProperty(record, "ContentTransferEncoding"), "0x600 8bit");
  EXPECT_EQ(ShowProperty(record, "ContentDisposition"), "0x600 inline; filename=\"b.png\"");
  EXPECT_EQ(ShowProperty(record, "ContentDescription"), "0x600 A picture");
  EXPECT_EQ(ShowProperty(record, "contentId"), "0x600 <id@example.org>");
  EXPECT_EQ(ShowProperty(record, "Data"), "0x600 data");
}

// Properties for absent fields: the parser's default text, or nil when that is empty.
TEST_F(Attachments, TextsOfAbsentFields) {
  Start();
  const Object record = RecordOf("X-Some: field\n", "data");
  EXPECT_EQ(ShowProperty(record, "MimeType"), "nil");
  EXPECT_EQ(ShowProperty(record, "ContentType"), "0x600 /");
  EXPECT_EQ(ShowProperty(record, "MimeVersion"), "0x600 0.0");
  for (const char* name :
       {"ContentTransferEncoding", "ContentDisposition", "ContentDescription", "contentId"}) {
    EXPECT_EQ(ShowProperty(record, name), "nil") << name;
  }
}

TEST_F(Attachments, DescriptionOfBlanksIsNil) {
  Start();
  const Object record =
      RecordOf("Content-Type: application/x\nContent-Description: \t  \n", "data");
  EXPECT_EQ(ShowProperty(record, "ContentDescription"), "nil");
}

TEST_F(Attachments, SecondPlainTextIsListedWithItsText) {
  Start();
  const Object message = Parse(
      "Content-Type: multipart/mixed; boundary=b\n\n"
      "--b\nContent-Type: text/plain\n\nFirst\n"
      "--b\nContent-Type: text/plain; charset=utf-8\n\ncaf\xC3\xA9\n--b--\n");
  EXPECT_EQ(ShowProperty(message, "PlainText"), "0x600 First");
  const Object record = ObjectOf(Call(message, "Attachments", 0));
  EXPECT_EQ(ShowProperty(record, "Data"), "0x8000100 caf\xC3\xA9");
}

}  // namespace
}  // namespace zqv::interface_test
