// Every message of tests/data/messages against the results that were worked out for it by hand, as
// it stands and with CR LF, through each constructor. tests/data/README.md explains the keys.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "tests/interface/files.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

using Json = nlohmann::json;

constexpr const char* kMessages = ZQV_TEST_DATA "/messages";

// "origin/what-is-odd" of every message.
std::vector<std::string> MessageNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(kMessages)) {
    if (entry.path().extension() != ".eml") continue;
    names.push_back(entry.path().parent_path().filename().string() + "/" +
                    entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string WithCrLf(std::string_view text) {
  std::string result;
  for (const char c : text) result += c == '\n' ? std::string("\r\n") : std::string(1, c);
  return result;
}

std::string DecodeBase64(std::string_view text) {
  static constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  std::uint32_t bits = 0;
  unsigned count = 0;
  for (const char c : text) {
    const std::size_t digit = kDigits.find(c);
    if (digit == std::string_view::npos) break;
    bits = bits << 6U | static_cast<std::uint32_t>(digit);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count & 0xFFU);
  }
  return bytes;
}

// One message read in one way, compared with what is expected.
class Comparison {
 public:
  Comparison(const Json& expected, bool with_crlf) : expected_(expected), with_crlf_(with_crlf) {}

  void Run(Way way, const std::string& bytes) {
    const Input input(way, bytes);
    static constexpr const char* kConstructors[] = {"Constructor(Content as string)",
                                                    "Constructor(Content as MemoryBlock)",
                                                    "Constructor(File as FolderItem)"};
    const Constructed constructed = ConstructOn(
        NewInstance("MimeEmailZQV"), kConstructors[static_cast<std::size_t>(way)], input.value());
    EXPECT_EQ(constructed.raised, ExpectedException());
    const Object& message = constructed.message;
    CheckSource(message, way, input.value(), bytes);
    CheckTexts(message);
    CheckList(message, "Attachments", expected_.at("attachments"));
    CheckList(message, "Inlines", expected_.at("inlines"));
    CheckParts(message);
  }

 private:
  std::string ExpectedException() const {
    if (!expected_.contains("exception")) return {};
    const Json& exception = expected_.at("exception");
    return exception.at("class").get<std::string>() +
           ", 0: " + exception.at("message").get<std::string>();
  }

  // In the form of Show.
  std::string Expected(const Json& value) const {
    if (value.is_null()) return "nil";
    std::string bytes = value.contains("text")
                            ? value.at("text").get<std::string>()
                            : DecodeBase64(value.at("bytes_base64").get<std::string>());
    if (with_crlf_ && value.value("line_ends", "") == "message") bytes = WithCrLf(bytes);
    return Label(value.at("encoding").get<std::uint32_t>()) + bytes;
  }

  static std::string Label(std::uint32_t encoding) {
    std::string label = Show(MakeString("x", encoding));
    label.pop_back();
    return label;
  }

  // A text whose encoding the file leaves open.
  static Json TextOrNull(const Value& value) {
    return standin::IsNil(value) ? Json() : Json(standin::BytesOf(value));
  }

  void CheckSource(const Object& message, Way way, const Value& input,
                   const std::string& bytes) const {
    const Value source = Get(message, "Source");
    if (way == Way::kString) {
      EXPECT_TRUE(std::get<String>(input).IsNil() ? standin::IsNil(source) : source == input);
      return;
    }
    const Json& expected = expected_.at("source");
    EXPECT_EQ(Show(source), expected.is_null()
                                ? "nil"
                                : Label(expected.at("encoding").get<std::uint32_t>()) + bytes);
  }

  void CheckTexts(const Object& message) const {
    static constexpr std::pair<const char*, const char*> kTexts[] = {
        {"plain_text", "PlainText"}, {"html_text", "HTMLText"}, {"body_decoded", "BodyDecoded"}};
    for (const auto& [key, property] : kTexts) {
      if (!expected_.contains(key)) continue;
      EXPECT_EQ(ShowProperty(message, property), Expected(expected_.at(key))) << key;
    }
    if (expected_.contains("subject")) {
      EXPECT_EQ(TextOrNull(Get(message, "Subject")), expected_.at("subject"));
    }
    static constexpr std::pair<const char*, const char*> kDates[] = {
        {"sent_date", "Date"}, {"received_date", "ReceivedDate"}};
    for (const auto& [key, property] : kDates) {
      if (!expected_.contains(key)) continue;
      EXPECT_EQ(!standin::IsNil(Get(message, property)), expected_.at(key).get<bool>()) << key;
    }
  }

  void CheckList(const Object& message, const std::string& list, const Json& expected) const {
    const Object array = ObjectOf(Call(message, list));
    ASSERT_FALSE(array.IsNil()) << list;
    ASSERT_EQ(static_cast<std::size_t>(array.Size()), expected.size()) << list;
    for (std::size_t i = 0; i < expected.size(); ++i) {
      SCOPED_TRACE(list + " " + std::to_string(i));
      CheckRecord(ObjectOf(Call(message, list, i)), expected[i]);
    }
  }

  void CheckRecord(const Object& record, const Json& expected) const {
    EXPECT_EQ(TextOrNull(Get(record, "MimeType")), expected.at("mime_type"));
    const std::string field = standin::BytesOf(Get(record, "ContentDisposition"));
    const std::string disposition = field.substr(0, field.find(';'));
    EXPECT_EQ(disposition.empty() ? Json() : Json(disposition),
              expected.at("content_disposition_type"));
    if (expected.contains("filename")) {
      EXPECT_EQ(TextOrNull(Get(record, "Filename")), expected.at("filename"));
    }
    EXPECT_EQ(ShowProperty(record, "Data"), Expected(expected.at("data")));
  }

  void CheckParts(const Object& message) const {
    const Object body = ObjectOf(Get(message, "Body"));
    const Json& parts = expected_.at("parts");
    ASSERT_EQ(body.IsNil(), parts.is_null());
    if (parts.is_null()) return;
    const Object array = ObjectOf(Call(body, "Parts as MimeEntityZQV()"));
    ASSERT_EQ(array.Size(), parts.get<std::int64_t>());
    if (!expected_.contains("child_bodies")) return;
    const Json& bodies = expected_.at("child_bodies");
    for (std::size_t i = 0; i < bodies.size(); ++i) {
      const Object part = ObjectOf(Call(body, "Parts", i));
      EXPECT_EQ(ShowProperty(part, "BodyDecoded"), Expected(bodies[i])) << "part " << i;
    }
  }

  const Json& expected_;
  const bool with_crlf_;
};

class Corpus : public InterfaceTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(Corpus, GivesWhatWasWorkedOut) {
  const std::string path = std::string(kMessages) + "/" + GetParam();
  const std::string bytes = ReadWholeFile(path + ".eml");
  const Json expected = Json::parse(ReadWholeFile(path + ".json"));
  // A message of one part asks for its charset twice and so may raise twice in one call.
  const bool raises = expected.value("raise_unknown_formats", false);
  const Session session({}, raises ? Exceptions::kMayBeLost : Exceptions::kNoneLost);
  SetShared("MimeEmailZQV", "RaiseUnknownFormatExceptions", raises);
  for (const bool with_crlf : {false, true}) {
    if (with_crlf && !expected.value("crlf", true)) continue;
    for (const Way way : kAllWays) {
      SCOPED_TRACE(std::string(with_crlf ? "CR LF, " : "LF, ") + NameOf(way));
      Comparison(expected, with_crlf).Run(way, with_crlf ? WithCrLf(bytes) : bytes);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Messages, Corpus, ::testing::ValuesIn(MessageNames()),
                         [](const auto& row) {
                           std::string name = row.param;
                           for (char& c : name) {
                             if (c == '/' || c == '-') c = '_';
                           }
                           return name;
                         });

// An empty folder would make no test at all.
TEST(CorpusFolder, HasMessagesOfEveryOrigin) {
  for (const char* origin :
       {"bom", "start", "single", "transfer", "charset", "routing", "malformed"}) {
    const std::string prefix = std::string(origin) + "/";
    const std::vector<std::string> names = MessageNames();
    EXPECT_TRUE(std::any_of(names.begin(), names.end(), [&](const std::string& name) {
      return name.substr(0, prefix.size()) == prefix;
    })) << origin;
  }
}

}  // namespace
}  // namespace zqv::interface_test
