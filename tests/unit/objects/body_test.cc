#include "objects/body.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "mime/parser.h"
#include "objects/header.h"
#include "tests/support/thread_stack.h"
#include "tests/unit/mime/nested_message.h"
#include "tests/unit/objects/objects_fixture.h"

namespace zqv::test {
namespace {

using objects::MimeBodyClassData;
using objects::MimeEntityClassData;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// What one call of the sink was given.
struct Told {
  std::string name;  // of the entity, by its field X-Name
  MimeEntityClassData* record;
  abi::REALobject body;
  abi::REALobject header;
  abi::REALobject body_in_record;
  abi::REALobject header_in_record;
  std::int64_t children;  // in the body object
};

class RecordingSink final : public mime::EntitySink {
 public:
  void OnEntity(const mimetic::MimeEntity&, const mime::HeaderView& fields,
                MimeEntityClassData& record, abi::REALobject body,
                abi::REALobject header) override {
    const auto* body_record = host::RecordOf<MimeBodyClassData>(body);
    told.push_back({ValueOf(fields, "X-Name"), &record, body, header, record.Body.get(),
                    record.Header.get(),
                    body_record == nullptr ? -1 : host::ArrayCount(body_record->parts.get())});
  }

  const mime::MessageTexts& texts() const override { return *texts_; }
  // Of the message that is walked, which must outlive the walk.
  void Walk(const mime::MessageTexts& texts) { texts_ = &texts; }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const Told& call : told) names.push_back(call.name);
    return names;
  }

  std::vector<Told> told;

 private:
  const mime::MessageTexts* texts_ = nullptr;
};

constexpr char kNested[] =
    "Content-Type: multipart/mixed; boundary=o\n"
    "\n"
    "before\n"
    "--o\n"
    "X-Name: inner\n"
    "Content-Type: multipart/alternative; boundary=i\n"
    "\n"
    "--i\n"
    "X-Name: first\n"
    "\n"
    "one\n"
    "--i\n"
    "X-Name: second\n"
    "\n"
    "two\n"
    "--i--\n"
    "--o\n"
    "X-Name: last\n"
    "\n"
    "three\n"
    "--o--\n"
    "after\n";

class Body : public ObjectsTest {
 protected:
  host::ObjectRef Build(std::string_view message) { return Build(*Parse(message)); }
  host::ObjectRef Build(const ParsedMessage& message) {
    sink_.Walk(message.texts);
    return objects::NewMimeBodyZQV(message.entity, sink_);
  }

  static MimeBodyClassData& RecordOf(const host::ObjectRef& body) {
    return *host::RecordOf<MimeBodyClassData>(body.get());
  }

  static std::vector<MimeEntityClassData*> Parts(const MimeBodyClassData& body) {
    return RecordsIn<MimeEntityClassData>(body.parts.get());
  }
  static std::vector<MimeEntityClassData*> Parts(const host::ObjectRef& body) {
    return Parts(RecordOf(body));
  }
  static MimeBodyClassData& BodyOf(const MimeEntityClassData& entity) {
    return *host::RecordOf<MimeBodyClassData>(entity.Body.get());
  }

  RecordingSink sink_;
};

TEST_F(Body, TellsOfChildrenBeforeTheirParentsInTheOrderOfTheMessage) {
  const auto body = Build(kNested);
  EXPECT_THAT(sink_.Names(), ElementsAre("first", "second", "inner", "last"));
}

TEST_F(Body, DoesNotTellOfTheMessageItself) {
  const auto body = Build("X-Name: only\n\ntext\n");
  EXPECT_THAT(sink_.told, IsEmpty());
}

TEST_F(Body, GivesTheSinkTheRecordAndTheObjectsOfTheEntity) {
  const auto body = Build(kNested);
  const auto outer = Parts(body);
  ASSERT_EQ(outer.size(), 2U);
  const auto inner = Parts(BodyOf(*outer[0]));
  ASSERT_EQ(inner.size(), 2U);
  const MimeEntityClassData* expected[] = {inner[0], inner[1], outer[0], outer[1]};
  ASSERT_EQ(sink_.told.size(), std::size(expected));
  for (std::size_t i = 0; i < std::size(expected); ++i) {
    const Told& call = sink_.told[i];
    EXPECT_EQ(call.record, expected[i]) << call.name;
    EXPECT_NE(call.body, nullptr) << call.name;
    EXPECT_NE(call.header, nullptr) << call.name;
    EXPECT_EQ(call.body, call.body_in_record) << call.name;
    EXPECT_EQ(call.header, call.header_in_record) << call.name;
  }
  EXPECT_EQ(sink_.told[2].children, 2) << "the children of an entity are there before it is told";
}

TEST_F(Body, HoldsPreambleEpilogueAndOwnText) {
  const auto body = Build(kNested);
  const MimeBodyClassData& top = RecordOf(body);
  EXPECT_EQ(Show(top.preamble), Ascii("before"));
  EXPECT_EQ(Show(top.epilogue), Ascii("after\n"));
  EXPECT_EQ(Show(top.StringValue), "nil");
  const MimeBodyClassData& last = BodyOf(*Parts(body)[1]);
  EXPECT_EQ(Show(last.preamble), "nil");
  EXPECT_EQ(Show(last.epilogue), "nil");
  EXPECT_EQ(Show(last.StringValue), Ascii("three"));
}

TEST_F(Body, TextIsAsItStandsInTheMessage) {
  const auto body = Build(
      "Content-Type: text/plain; charset=iso-8859-1\nContent-Transfer-Encoding: base64\n\n"
      "Y2Fm6Q==\n");
  EXPECT_EQ(Show(RecordOf(body).StringValue), Ascii("Y2Fm6Q==\n"));
}

TEST_F(Body, TextTakesItsEncodingFromItsBytesAndEndsAtANul) {
  EXPECT_EQ(Show(RecordOf(Build("A: b\n\ncaf\xC3\xA9")).StringValue), Utf8("caf\xC3\xA9"));
  EXPECT_EQ(Show(RecordOf(Build("A: b\n\ncaf\xE9")).StringValue), MacRoman("caf\xE9"));
  EXPECT_EQ(Show(RecordOf(Build({"A: b\n\none\0two", 13})).StringValue), Ascii("one"));
  EXPECT_EQ(Show(RecordOf(Build({"A: b\n\n\0two", 10})).StringValue), "nil");
}

TEST_F(Body, OfASinglePartHasAnEmptyListAndNotNil) {
  const auto body = Build("A: b\n\ntext\n");
  EXPECT_NE(RecordOf(body).parts.get(), nullptr);
  EXPECT_EQ(objects::BodyParts::Count(body.get()), 0);
  EXPECT_EQ(objects::BodyParts::At(body.get(), 0), nullptr);
  EXPECT_EQ(TakeRaised(),
            "OutOfBoundsException, 0: The parameter index  is too big. Range is 0 to -1, but value "
            "is 0.");
}

TEST_F(Body, TreeIsAsDeepAsTheNesting) {
  const auto body = Build(NestedMessage(Nesting::kBoth, 6));
  const MimeBodyClassData* inner = &RecordOf(body);
  int levels = 0;
  for (; host::ArrayCount(inner->parts.get()) == 1; inner = &BodyOf(*Parts(*inner)[0])) ++levels;
  EXPECT_EQ(levels, 6);
  EXPECT_EQ(Show(inner->StringValue), Ascii("end\n"));
}

TEST_F(Body, SkipsANullPart) {
  mimetic::MimeEntity entity;
  entity.body().parts().push_back(nullptr);
  entity.body().parts().push_back(new mimetic::MimeEntity);
  const mime::MessageTexts none;
  sink_.Walk(none);
  const auto body = objects::NewMimeBodyZQV(entity, sink_);
  EXPECT_EQ(objects::BodyParts::Count(body.get()), 1);
  EXPECT_EQ(sink_.told.size(), 1U);
}

TEST_F(Body, IsNilWhenTheHostCannotMakeOne) {
  StartObjectsWithoutClass("MimeBodyZQV");
  EXPECT_FALSE(Build(kNested));
  EXPECT_THAT(sink_.told, IsEmpty());
}

TEST_F(Body, IsNilWhenItsClassWasNeverRegistered) {
  host::BindRecord<MimeBodyClassData>(nullptr);
  EXPECT_FALSE(Build(kNested));
  objects::MimeBodyDestructor(nullptr);
}

// Instances are made in this order: body, then for a child its entity, body and header.
TEST_F(Body, OfAChildIsNilWhenTheHostCannotMakeIt) {
  StartObjectsWithFault("PluginNewInstance", {standin::Fault::Kind::kNothing, 3, 1});
  const auto body =
      Build("Content-Type: multipart/mixed; boundary=o\n\n--o\nX-Name: a\n\n1\n--o--\n");
  ASSERT_THAT(sink_.Names(), ElementsAre("a"));
  EXPECT_EQ(sink_.told[0].body, nullptr);
  EXPECT_NE(sink_.told[0].header, nullptr);
  EXPECT_EQ(objects::BodyParts::Count(body.get()), 1);
}

TEST_F(Body, TellsOfAnEntityWithoutAHeaderObject) {
  StartObjectsWithoutClass("MimeHeaderZQV");
  const auto body = Build(kNested);
  ASSERT_THAT(sink_.Names(), ElementsAre("first", "second", "inner", "last"));
  for (const Told& call : sink_.told) {
    EXPECT_EQ(call.header, nullptr);
    EXPECT_NE(call.body, nullptr);
  }
}

TEST_F(Body, SkipsAnEntityThatTheHostCannotMakeWithItsSubtree) {
  StartObjectsWithFault("PluginNewInstance", {standin::Fault::Kind::kNothing, 2, 1});
  const auto body = Build(kNested);
  EXPECT_THAT(sink_.Names(), ElementsAre("last"));
  EXPECT_EQ(objects::BodyParts::Count(body.get()), 1);
}

TEST_F(Body, IsWalkedWithoutAListAndGivesTheEntitiesBack) {
  StartObjectsWithFault("RuntimeArrayCreateSingleDimBoundedArray");
  const auto body = Build(kNested);
  EXPECT_THAT(sink_.Names(), ElementsAre("first", "second", "inner", "last"));
  EXPECT_EQ(RecordOf(body).parts.get(), nullptr);
  EXPECT_EQ(host().ledger().Live().objects, 1) << "the body itself";
}

TEST_F(Body, DropsEntitiesThatTheHostCannotInsert) {
  StartObjectsWithFault("PluginObjectArrayInsertProc");
  const auto body = Build(kNested);
  EXPECT_EQ(sink_.told.size(), 4U);
  EXPECT_EQ(objects::BodyParts::Count(body.get()), 0);
  EXPECT_EQ(host().ledger().Live().objects, 1) << "the body itself";
}

class ThrowingSink final : public mime::EntitySink {
 public:
  explicit ThrowingSink(const mime::MessageTexts& texts) : texts_(texts) {}

  void OnEntity(const mimetic::MimeEntity&, const mime::HeaderView& fields, MimeEntityClassData&,
                abi::REALobject, abi::REALobject) override {
    if (ValueOf(fields, "X-Name") == "second") throw std::runtime_error("enough");
  }
  const mime::MessageTexts& texts() const override { return texts_; }

 private:
  const mime::MessageTexts& texts_;
};

TEST_F(Body, LetsThroughWhatTheSinkThrowsAndKeepsNothing) {
  const auto message = Parse(kNested);
  ThrowingSink sink(message->texts);
  EXPECT_THROW(static_cast<void>(objects::NewMimeBodyZQV(message->entity, sink)),
               std::runtime_error);
  EXPECT_EQ(host().ledger().Report(), "");
}

TEST_F(Body, MembersGiveTheListItself) {
  const auto body = Build(kNested);
  const abi::REALobject self = body.get();
  const auto whole = host::ArrayRef::Adopt(objects::BodyParts::Whole(self));
  const auto again = host::ArrayRef::Adopt(objects::BodyParts::Whole(self));
  const auto variant = host::ObjectRef::Adopt(objects::BodyParts::Variant(self));
  EXPECT_EQ(whole.get(), RecordOf(body).parts.get());
  EXPECT_EQ(again.get(), whole.get());
  EXPECT_EQ(static_cast<void*>(variant.get()), static_cast<void*>(whole.get()));
  EXPECT_EQ(LocksOf(whole.get()), 4) << "the record's and ours";
}

TEST_F(Body, LivesOnInAPartThatIsHeld) {
  auto body = Build(kNested);
  const auto inner = host::ObjectRef::Adopt(objects::BodyParts::At(body.get(), 0));
  body = {};
  const auto& entity = *host::RecordOf<MimeEntityClassData>(inner.get());
  EXPECT_EQ(Show(BodyOf(*Parts(BodyOf(entity))[1]).StringValue), Ascii("two"));
}

TEST_F(Body, DestructorGivesEverythingBackInOrder) {
  RecordUnlocks();
  auto body = host::NewInstance<MimeBodyClassData>();
  MimeBodyClassData& record = RecordOf(body);
  record.preamble.Put(NewText("p"));
  record.epilogue.Put(NewText("e"));
  record.StringValue.Put(NewText("s"));
  record.parts.Put(host::NewObjectArray());
  const std::vector<const void*> expected = {body.get(), record.preamble.get(),
                                             record.epilogue.get(), record.StringValue.get(),
                                             record.parts.get()};
  body = {};
  EXPECT_EQ(Unlocked(), expected);
}

TEST_F(Body, ConstructorAndDestructorOfAnEmptyObjectDoNothing) {
  RecordUnlocks();
  auto body = host::NewInstance<MimeBodyClassData>();
  objects::MimeBodyConstructor(body.get());
  EXPECT_EQ(objects::BodyParts::Whole(body.get()), nullptr);
  EXPECT_EQ(objects::BodyParts::Variant(body.get()), nullptr);
  const std::vector<const void*> expected = {body.get()};
  body = {};
  EXPECT_EQ(Unlocked(), expected);
}

// What the parser accepts on a stack can also be built, written and destroyed there; less one level
// that the frames of the test may cost.
class DeepBody : public Body, public ::testing::WithParamInterface<Nesting> {};

TEST_P(DeepBody, IsBuiltWrittenAndDestroyedOnASmallStack) {
  const std::size_t most = MostLevels(GetParam(), kSmallStack) - 1;
  RunOnStack(kSmallStack, [&] {
    const std::string message = NestedMessage(GetParam(), most);
    const auto body = Build(message);
    EXPECT_EQ(sink_.told.size(), most);
    mimetic::MimeEntity entity;
    mime::ParseMessage(message, entity);
    std::ostringstream written;
    written << entity;
    EXPECT_NE(written.str().find("end\n"), std::string::npos);
  });
}

TEST_P(DeepBody, IsBuiltWrittenAndDestroyedOnALargeStack) {
  const std::size_t most = MostLevels(GetParam(), kLargeStack) - 1;
  RunOnStack(kLargeStack, [&] {
    const std::string message = NestedMessage(GetParam(), most);
    const auto body = Build(message);
    EXPECT_EQ(sink_.told.size(), most);
    mimetic::MimeEntity entity;
    mime::ParseMessage(message, entity);
    std::ostringstream written;
    written << entity;
    EXPECT_NE(written.str().find("end\n"), std::string::npos);
  });
}

INSTANTIATE_TEST_SUITE_P(Nestings, DeepBody,
                         ::testing::Values(Nesting::kMultipart, Nesting::kMessage, Nesting::kBoth),
                         [](const auto& row) {
                           return row.param == Nesting::kMultipart ? "Multipart"
                                  : row.param == Nesting::kMessage ? "Message"
                                                                   : "Both";
                         });

}  // namespace
}  // namespace zqv::test
