#include "standin/mirror.h"

#include "tests/support/thread_stack.h"
#include "tests/unit/standin/fixture.h"

namespace zqv::standin {
namespace {

using Json = nlohmann::ordered_json;
using namespace std::string_view_literals;

class MirrorTest : public HostTest {
 protected:
  void SetUp() override { StartWithPlugin(); }
  static Object NewAnimal(std::string_view name) {
    return Construct("Animal", "Constructor(Name as String)", MakeString(name, abi::kAscii));
  }
};

TEST_F(MirrorTest, WritesEveryMemberInOrder) {
  const Object tom = NewAnimal("Tom");
  EXPECT_EQ(Mirror(tom).dump(), Json::parse(R"({
      "class": "Animal",
      "Name": {"text": "Tom", "encoding": "US-ASCII"},
      "Friend": null,
      "Legs": 4,
      "Weight": 12.5,
      "Tame": false,
      "FriendsVariant": {"same": "/Friends"},
      "Count": 0,
      "LoudName": {"text": "Tom!", "encoding": "UTF-8"},
      "Half": 2.0,
      "IsBig": false,
      "Born": "1904-01-02T00:00:00",
      "Param": 99,
      "Friends": []})")
                                    .dump());
}

TEST_F(MirrorTest, SharedThingsAreNamedByTheirFirstPath) {
  const Object tom = NewAnimal("Tom");
  const Object rex = Construct("Dog", "Constructor(Name as String)", MakeString("Rex"));
  Call(tom, "Befriend", rex);
  Call(tom, "Befriend", rex);
  MirrorOptions options;
  options.skip = [](std::string_view, std::string_view member) {
    return member != "Name" && member != "Friend" && member != "Friends" && member != "Keeper";
  };
  EXPECT_EQ(Mirror(tom, options).dump(), Json::parse(R"({
      "class": "Animal",
      "Name": {"text": "Tom", "encoding": "US-ASCII"},
      "Friend": {
        "class": "Dog",
        "Name": {"text": "Rex", "encoding": "UTF-8"},
        "Friend": null,
        "Friends": [],
        "Keeper": {"class": "Keeper"}},
      "Friends": [{"same": "/Friend"}, {"same": "/Friend"}]})")
                                             .dump());
}

TEST_F(MirrorTest, DepthIsLimitedOnRequest) {
  const Object tom = NewAnimal("Tom");
  Call(tom, "Befriend", NewAnimal("Pip"));
  MirrorOptions options;
  options.max_depth = 1;
  options.repeat_shared = true;
  const Json json = Mirror(tom, options);
  EXPECT_EQ(json["Friend"]["Name"]["text"], "Pip");
  EXPECT_EQ(json["Friend"]["Friends"], Json({{"cut", "Array of objects"}}));
  EXPECT_EQ(json["Friends"][0], Json({{"cut", "Animal"}}));
}

TEST_F(MirrorTest, RepeatsSharedThingsOnRequest) {
  const Object tom = NewAnimal("Tom");
  Call(tom, "Befriend", NewAnimal("Pip"));
  MirrorOptions options;
  options.repeat_shared = true;
  const Json json = Mirror(tom, options);
  EXPECT_EQ(json["Friends"][0]["Name"]["text"], "Pip");
  EXPECT_EQ(json["FriendsVariant"][0]["Name"]["text"], "Pip");
}

TEST_F(MirrorTest, DeepTreesDoNotExhaustTheStack) {
  constexpr int kLinks = 20'000;
  // The handles keep every animal alive until the vector is cleared from its start, so that no
  // destructor runs another.
  std::vector<Object> all = {NewAnimal("0")};
  for (int i = 1; i < kLinks; ++i) {
    all.push_back(NewAnimal("x"));
    Call(all[all.size() - 2], "Befriend", all.back());
  }
  MirrorOptions options;
  options.max_depth = 2 * kLinks;
  options.skip = [](std::string_view, std::string_view member) { return member != "Friend"; };
  test::RunOnStack(test::kTinyStack, [&] {
    const Json json = Mirror(all.front(), options);
    int depth = 0;
    for (const Json* level = &json; level->is_object(); level = &(*level)["Friend"]) ++depth;
    EXPECT_EQ(depth, kLinks);
  });
}

TEST_F(MirrorTest, TextIsUtf8WhereItConverts) {
  EXPECT_EQ(MirrorText(MakeString("\xE4", abi::kIsoLatin1)),
            Json({{"text", "\xC3\xA4"}, {"encoding", "ISO-8859-1"}}));
  EXPECT_EQ(MirrorText(MakeString("abc", abi::kUnknownEncoding)),
            Json({{"text", "abc"}, {"encoding", "unknown"}}));
  EXPECT_EQ(MirrorText(String()), Json(nullptr));
}

TEST_F(MirrorTest, UndecodableBytesAreEscaped) {
  EXPECT_EQ(MirrorText(MakeString("a\\\xFF\n", abi::kUtf8)),
            Json({{"bytes", "a\\\\\\xFF\\x0A"}, {"encoding", "UTF-8"}}));
  EXPECT_EQ(MirrorText(MakeString("\xE4\0"sv, abi::kUnknownEncoding)),
            Json({{"bytes", "\\xE4\\x00"}, {"encoding", "unknown"}}));
}

TEST_F(MirrorTest, NilIsNull) { EXPECT_EQ(Mirror(Object()), Json(nullptr)); }

TEST_F(MirrorTest, PropagatesExceptions) {
  EXPECT_THROW(Mirror(NewInstance("Keeper")), HostException);
}

TEST_F(MirrorTest, NativeObjects) {
  EXPECT_EQ(Mirror(NewInstance("Date")), Json("2001-01-31T12:34:56"));
  EXPECT_EQ(Mirror(NewInstance("IOException")), Json({{"class", "IOException"}}));
}

}  // namespace
}  // namespace zqv::standin
