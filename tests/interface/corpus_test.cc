// Compares every message of tests/corpus with its expected values, which were worked out by hand:
// as it is and with CRLF, through each constructor. The corpus's README explains the keys.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "cli/document.h"
#include "tests/interface/files.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"
#include "tests/support/zone.h"

namespace zqv::interface_test {
namespace {

using Json = nlohmann::json;

constexpr const char* kCorpus = ZQV_CORPUS;

// The names of all messages, "origin/name".
std::vector<std::string> MessageNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(kCorpus)) {
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

// The expected values of one message, as a document in which strings have the form of Show.
class Expectation {
 public:
  Expectation(const Json& file, const Json& common, bool with_crlf)
      : file_(file), common_(common), with_crlf_(with_crlf) {}

  Json Message() const { return Object(file_.at("message")); }

  // The expected source of a message constructed from a block or file.
  std::string Source(const std::string& bytes) const {
    const Json& source = file_.at("source");
    return source.is_null() ? "nil" : Label(source.at("encoding").get<std::uint32_t>()) + bytes;
  }

  // The expected exception in the form of Constructed::raised.
  std::string Exception() const {
    if (!file_.contains("exception")) return {};
    const Json& exception = file_.at("exception");
    return exception.at("class").get<std::string>() +
           ", 0: " + exception.at("message").get<std::string>();
  }

 private:
  static bool IsHostString(const Json& value) {
    return value.is_object() && (value.contains("text") || value.contains("bytes_base64"));
  }

  Json Object(const Json& object) const {
    Json result = Json::object();
    for (const auto& [key, value] : object.items()) {
      // These values are not host strings.
      const bool is_plain = key == "number" || key == "part" || key == "date" ||
                            key == "received_date" || !(value.is_string() || value.is_structured());
      result[key] = is_plain ? value : key == "fields" ? Fields(value) : Any(value);
    }
    return result;
  }

  Json Any(const Json& value) const {
    if (value.is_array()) {
      Json list = Json::array();
      for (const Json& element : value) list.push_back(Any(element));
      return list;
    }
    if (IsHostString(value)) return HostString(value);
    if (value.is_object()) return Object(value);
    const auto& text = value.get_ref<const std::string&>();
    if (text.front() == '@') return Object(common_.at(text.substr(1)));
    return HostString({{"text", text}});
  }

  Json Fields(const Json& pairs) const {
    Json fields = Json::array();
    for (const Json& pair : pairs) {
      fields.push_back({{"name", Any(pair.at(0))}});
      if (pair.size() > 1) fields.back()["value"] = Any(pair.at(1));
    }
    return fields;
  }

  std::string HostString(const Json& value) const {
    const bool is_text = value.contains("text");
    std::string bytes = is_text ? value.at("text").get<std::string>()
                                : DecodeBase64(value.at("bytes_base64").get<std::string>());
    const bool is_ascii = std::all_of(bytes.begin(), bytes.end(),
                                      [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    if (with_crlf_ && value.value("line_ends", "") == "message") bytes = WithCrLf(bytes);
    return Label(value.value("encoding", is_ascii ? abi::kAscii : abi::kUtf8)) + bytes;
  }

  static std::string Label(abi::Encoding encoding) {
    std::string label = Show(MakeString("x", encoding));
    label.pop_back();
    return label;
  }

  const Json& file_;
  const Json& common_;
  const bool with_crlf_;
};

// The document without values that are nil, false or an empty list.
Json WithoutEmpty(const Json& json) {
  if (!json.is_structured()) return json;
  Json result = json.is_object() ? Json::object() : Json::array();
  for (const auto& [key, value] : json.items()) {
    if (json.is_array()) {
      result.push_back(WithoutEmpty(value));
    } else if (!value.is_null() && value != false && value != Json::array()) {
      result[key] = WithoutEmpty(value);
    }
  }
  return result;
}

// Everything that the library returns, in the form of Expectation::Message.
Json Given(const Object& message) {
  const nlohmann::ordered_json document =
      cli::DescribeMessage(message, [](const String& string) { return Show(string); });
  Json json = WithoutEmpty(document);
  json.erase("source");
  return json;
}

// The document in ASCII, for the message of a failed test.
std::string Printable(const Json& json) {
  return json.dump(1, ' ', true, Json::error_handler_t::replace);
}

void Compare(const Expectation& expected, Way way, const std::string& bytes) {
  const Input input(way, bytes);
  static constexpr const char* kConstructors[] = {"Constructor(Content as string)",
                                                  "Constructor(Content as MemoryBlock)",
                                                  "Constructor(File as FolderItem)"};
  const Constructed constructed = ConstructOn(
      NewInstance("MimeEmailZQV"), kConstructors[static_cast<std::size_t>(way)], input.value());
  EXPECT_EQ(constructed.raised, expected.Exception());
  const Value source = Get(constructed.message, "Source");
  if (way == Way::kString) {
    const bool is_nil = std::get<String>(input.value()).IsNil();
    EXPECT_TRUE(is_nil ? standin::IsNil(source) : source == input.value());
  } else {
    EXPECT_EQ(Show(source), expected.Source(bytes));
  }
  const Json given = Given(constructed.message);
  const Json wanted = expected.Message();
  EXPECT_TRUE(given == wanted) << "the changes from the expected values to the actual ones:\n"
                               << Printable(Json::diff(wanted, given));
}

class Corpus : public InterfaceTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(Corpus, HasTheExpectedValues) {
  const std::string path = std::string(kCorpus) + "/" + GetParam();
  const std::string bytes = ReadWholeFile(path + ".eml");
  const Json expected = Json::parse(ReadWholeFile(path + ".json"));
  const Json common = Json::parse(ReadWholeFile(std::string(kCorpus) + "/common.json"));
  ASSERT_TRUE(test::SetZone("UTC0"));
  // A message of one part looks its charset up twice, so one call can raise two exceptions.
  const bool raises = expected.value("raise_unknown_formats", false);
  const Session session({}, raises ? Exceptions::kMayBeLost : Exceptions::kNoneLost);
  SetShared("MimeEmailZQV", "RaiseUnknownFormatExceptions", raises);
  for (const bool with_crlf : {false, true}) {
    if (with_crlf && !expected.value("crlf", true)) continue;
    for (const Way way : kAllWays) {
      SCOPED_TRACE(std::string(with_crlf ? "CR LF, " : "LF, ") + NameOf(way));
      Compare(Expectation(expected, common, with_crlf), way, with_crlf ? WithCrLf(bytes) : bytes);
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

// Without messages there would be no test, and nothing would fail.
TEST(CorpusFolder, HasMessagesOfEveryOrigin) {
  for (const char* origin : {"addresses", "bom", "charset", "dates", "fields", "html", "malformed",
                             "names", "routing", "single", "start", "transfer", "words"}) {
    const std::string prefix = std::string(origin) + "/";
    const std::vector<std::string> names = MessageNames();
    EXPECT_TRUE(std::any_of(names.begin(), names.end(), [&](const std::string& name) {
      return name.substr(0, prefix.size()) == prefix;
    })) << origin;
  }
}

}  // namespace
}  // namespace zqv::interface_test
