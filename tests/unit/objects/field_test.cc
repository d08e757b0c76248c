#include "objects/field.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "host/strings.h"
#include "tests/unit/objects/objects_fixture.h"

namespace zqv::test {
namespace {

using objects::MimeFieldClassData;

// A text, and name and value of a field that is made from it.
struct FieldRow {
  const char* name;
  std::string_view text;
  std::string field_name;  // as Show gives it, as is the value
  std::string field_value;
};

void PrintTo(const FieldRow& row, std::ostream* out) { *out << row.name; }

class FieldFromText : public ObjectsTest, public ::testing::WithParamInterface<FieldRow> {};

TEST_P(FieldFromText, HasNameAndValue) {
  const auto text = NewText(GetParam().text);
  const auto field = host::NewInstance<MimeFieldClassData>();
  objects::MimeFieldConstructor(field.get(), text.get());
  const auto& record = *host::RecordOf<MimeFieldClassData>(field.get());
  EXPECT_EQ(Show(record.Name), GetParam().field_name);
  EXPECT_EQ(Show(record.Value), GetParam().field_value);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, FieldFromText,
    ::testing::Values(FieldRow{"Plain", "Subject: hello", Ascii("Subject"), Ascii("hello")},
                      FieldRow{"WithoutBlank", "Subject:hello", Ascii("Subject"), Ascii("hello")},
                      FieldRow{"SeveralColons", "A: b: c", Ascii("A"), Ascii("b: c")},
                      FieldRow{"EncodedWordStays", "Subject: =?utf-8?Q?a?=", Ascii("Subject"),
                               Ascii("=?utf-8?Q?a?=")},
                      FieldRow{"NameIsNotTrimmed", "A : b", Ascii("A "), Ascii("b")},
                      FieldRow{"BlanksBeforeTheValueGo", "A:   b  ", Ascii("A"), Ascii("b  ")},
                      FieldRow{"TabBeforeTheValueStays", "A: \tb", Ascii("A"), Ascii("\tb")},
                      FieldRow{"LineEndStays", "A: b\r\n c", Ascii("A"), Ascii("b\r\n c")},
                      FieldRow{"OnlyABlank", "A: ", Ascii("A"), Ascii(" ")},
                      FieldRow{"OnlyAName", "A:", Ascii("A"), "nil"},
                      FieldRow{"OnlyAValue", ": b", "nil", Ascii("b")},
                      FieldRow{"NoColon", "hello", "nil", "nil"},
                      FieldRow{"CutAtANul", std::string_view("A: b\0c", 6), Ascii("A"), Ascii("b")},
                      FieldRow{"NotAscii", "A: caf\xC3\xA9", Ascii("A"), Utf8("caf\xC3\xA9")}),
    [](const auto& row) { return row.param.name; });

class Field : public ObjectsTest {};

TEST_F(Field, ReadsTextOfAnotherEncodingAsUtf8) {
  const auto text = host::BuildString("A: caf\xE9", abi::kIsoLatin1);
  const auto field = host::NewInstance<MimeFieldClassData>();
  objects::MimeFieldConstructor(field.get(), text.get());
  EXPECT_EQ(Show(host::RecordOf<MimeFieldClassData>(field.get())->Value), Utf8("caf\xC3\xA9"));
}

TEST_F(Field, FromNilIsEmpty) {
  const auto field = host::NewInstance<MimeFieldClassData>();
  objects::MimeFieldConstructor(field.get(), nullptr);
  const auto& record = *host::RecordOf<MimeFieldClassData>(field.get());
  EXPECT_EQ(Show(record.Name), "nil");
  EXPECT_EQ(Show(record.Value), "nil");
}

TEST_F(Field, MadeTwiceHoldsTheSecondText) {
  const auto field = host::NewInstance<MimeFieldClassData>();
  objects::MimeFieldConstructor(field.get(), NewText("A: b").get());
  objects::MimeFieldConstructor(field.get(), NewText("C: d").get());
  const auto& record = *host::RecordOf<MimeFieldClassData>(field.get());
  EXPECT_EQ(Show(record.Name), Ascii("C"));
  EXPECT_EQ(Show(record.Value), Ascii("d"));
}

TEST_F(Field, ConstructorRaisesWhatTheHostThrows) {
  StartObjectsWithFault("PluginGetStringData", {standin::Fault::Kind::kThrows});
  const auto field = host::NewInstance<MimeFieldClassData>();
  // The library calls this entry point only for text that has to be converted.
  objects::MimeFieldConstructor(field.get(),
                                host::BuildString("A: caf\xE9", abi::kIsoLatin1).get());
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: C++ Exception: fault of PluginGetStringData");
  EXPECT_EQ(Show(host::RecordOf<MimeFieldClassData>(field.get())->Name), "nil");
}

TEST_F(Field, ConstructorWithoutARecordDoesNothing) {
  objects::MimeFieldConstructor(nullptr, NewText("A: b").get());
  objects::MimeFieldDestructor(nullptr);
}

TEST_F(Field, SetTakesTheEncodingFromTheBytes) {
  const auto field = host::NewInstance<MimeFieldClassData>();
  auto& record = *host::RecordOf<MimeFieldClassData>(field.get());
  objects::Set(record, "X", "caf\xE9");
  EXPECT_EQ(Show(record.Name), Ascii("X"));
  EXPECT_EQ(Show(record.Value), MacRoman("caf\xE9"));
}

TEST_F(Field, DestructorGivesTheNameBackBeforeTheValue) {
  RecordUnlocks();
  auto field = host::NewInstance<MimeFieldClassData>();
  auto& record = *host::RecordOf<MimeFieldClassData>(field.get());
  objects::Set(record, "X", "y");
  const std::vector<const void*> expected = {field.get(), record.Name.get(), record.Value.get()};
  field = {};
  EXPECT_EQ(Unlocked(), expected);
}

}  // namespace
}  // namespace zqv::test
