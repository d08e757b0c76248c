// The document through the built library: the members that it leaves out give nothing that another
// one does not give. What the keys are called and hold is for tests/cli/json_test.py and the
// messages of tests/corpus.
#include "cli/document.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/session.h"
#include "standin/application.h"
#include "standin/handles.h"
#include "standin/mirror.h"

namespace zqv::cli {
namespace {

using standin::MakeString;
using Json = nlohmann::ordered_json;

Session StartSession() {
  SessionOptions options;
  options.library = ZQV_LIBRARY;
  return Session(options);
}

// The values of a document or mirror that the library gave, each as often as it was given. Numbers
// of parts and names of classes are not the library's.
void CollectValues(const Json& json, std::multiset<std::string>* values) {
  for (const auto& [key, value] : json.items()) {
    if (key == "number" || key == "part" || key == "class" || key == "same") continue;
    if (value.contains("encoding")) {
      values->insert(value.dump());
    } else if (value.is_structured()) {
      CollectValues(value, values);
    } else if (!value.is_null()) {
      values->insert(value.dump());
    }
  }
}

// Variants give what another member gives.
bool IsVariant(std::string_view, std::string_view member) {
  constexpr std::string_view kSuffix = "Variant";
  return member.size() > kSuffix.size() && member.substr(member.size() - kSuffix.size()) == kSuffix;
}

std::vector<std::string> Samples() {
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator(ZQV_SAMPLES)) {
    if (entry.path().extension() == ".eml") paths.push_back(entry.path().string());
  }
  return paths;
}

TEST(Document, GivesEveryValueThatTheRegisteredMembersGive) {
  const Session session = StartSession();
  standin::MirrorOptions options;
  options.skip = IsVariant;
  std::size_t values = 0;
  for (const std::string& path : Samples()) {
    SCOPED_TRACE(path);
    const standin::Object email = session.Open({path, path, path, std::nullopt});
    std::multiset<std::string> mirrored;
    CollectValues(standin::Mirror(email, options), &mirrored);
    std::multiset<std::string> described;
    CollectValues(DescribeMessage(email, standin::MirrorText), &described);
    EXPECT_EQ(described, mirrored);
    values += mirrored.size();
  }
  EXPECT_GT(values, 1000U);
}

TEST(Document, GivesTheObjectsThatNoSampleHas) {
  const Session session = StartSession();
  const standin::Object email = standin::Construct(
      kEmailClass, "Constructor(Content as string)",
      MakeString("Sender: =?utf-8?Q?s?= <@r:s@a.example>\nFrom: f@b.example\n"
                 "To: =?utf-8?Q?G?=:m@c.example,n@d.example;,,o@e.example\nCc: p@f.example\n"
                 "Bcc: q@g.example\nReply-To: r@h.example\nMessage-ID: <i@j>\n"
                 "Content-ID: <k@l>\nContent-Description: d\nContent-Disposition: inline\n"
                 "Date: Mon, 05 Feb 2024 10:00:00 +0000\n"
                 "Received: by x; Mon, 05 Feb 2024 11:00:00 +0000\n\nbody\n"));
  standin::MirrorOptions options;
  options.skip = IsVariant;
  std::multiset<std::string> mirrored;
  CollectValues(standin::Mirror(email, options), &mirrored);
  std::multiset<std::string> described;
  CollectValues(DescribeMessage(email, standin::MirrorText), &described);
  EXPECT_EQ(described, mirrored);
  EXPECT_EQ(mirrored.count("true"), 1U);  // one group
}

TEST(SnakeCase, PartsWords) {
  for (const auto& [name, snake] : {std::pair{"StringValue", "string_value"},
                                    {"isGroup", "is_group"},
                                    {"HTMLText", "html_text"},
                                    {"subjectDecoded", "subject_decoded"},
                                    {"TextAsHTML", "text_as_html"},
                                    {"Sourceroute", "sourceroute"},
                                    {"cc", "cc"},
                                    {"", ""}}) {
    EXPECT_EQ(SnakeCase(name), snake);
  }
}

TEST(ReadableText, SaysBytesThatAreNoText) {
  const Session session = StartSession();
  EXPECT_EQ(ReadableText(MakeString("caf\xE9", 1280)), "caf\u00E9");
  EXPECT_EQ(ReadableText(MakeString("caf\xC3\xA9", 0xFFFF)), "caf\u00E9");
  EXPECT_EQ(ReadableText(MakeString("a\\\xE9\n", 0xFFFF)).dump(),
            R"({"bytes":"a\\\\\\xE9\\x0A","encoding":65535})");
  EXPECT_EQ(ReadableText(MakeString("\xE9", 0x08000100)).dump(),
            R"({"bytes":"\\xE9","encoding":134217984})");
}

TEST(RawText, IsBase64) {
  const Session session = StartSession();
  // RFC 4648, section 10, and the last two digits.
  const std::pair<const char*, const char*> rows[] = {
      {"f", "Zg=="},         {"fo", "Zm8="},         {"foo", "Zm9v"},      {"foob", "Zm9vYg=="},
      {"fooba", "Zm9vYmE="}, {"foobar", "Zm9vYmFy"}, {"\xFB\xFF", "+/8="}, {"\xFF\xFF\xFF", "////"},
  };
  for (const auto& [bytes, base64] : rows) {
    EXPECT_EQ(RawText(MakeString(bytes, 1280)).dump(),
              R"({"base64":")" + std::string(base64) + R"(","encoding":1280})");
  }
}

}  // namespace
}  // namespace zqv::cli
