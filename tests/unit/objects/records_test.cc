// For each record: its slots are all there is in it, and the destructor gives each of them back.
#include "objects/records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "host/arrays.h"
#include "objects/attachment.h"
#include "tests/unit/objects/objects_fixture.h"

namespace zqv::test {
namespace {

// Puts something of a slot's kind into it.
const void* Fill(host::StringSlot& slot) {
  slot.Put(NewText("x"));
  return slot.get();
}
const void* Fill(host::ObjectSlot& slot) {
  slot.Put(NewThing());
  return slot.get();
}
const void* Fill(host::ArraySlot& slot) {
  slot.Put(host::NewObjectArray());
  return slot.get();
}

template <class Record>
std::vector<const void*> FillAll(Record& record) {
  std::vector<const void*> filled;
  std::apply([&](auto... slot) { (filled.push_back(Fill(record.*slot)), ...); },
             objects::kSlots<Record>);
  return filled;
}

template <class Record>
std::vector<const void*> WordsOf(const Record& record) {
  std::vector<const void*> words(sizeof record / sizeof(void*));
  std::memcpy(words.data(), &record, sizeof record);
  return words;
}

template <class Record>
class RecordSlots : public ObjectsTest {
 protected:
  void SetUp() override {
    StartObjects();
    RegisterClass<objects::MimeAttachmentClassData, objects::Destructor>("MimeAttachmentZQV");
  }
};

using Records =
    ::testing::Types<objects::MimeEntityClassData, objects::MimeBodyClassData,
                     objects::MimeHeaderClassData, objects::MimeFieldClassData,
                     objects::MimeMailboxClassData, objects::MimeGroupClassData,
                     objects::MimeAddressClassData, objects::MimeMailboxListClassData,
                     objects::MimeAddressListClassData, objects::MimeAttachmentClassData>;

// Numbers of the records; clang warns of a suite without names.
struct RecordNumbers {
  template <class Record>
  static std::string GetName(int number) {
    return std::to_string(number);
  }
};
TYPED_TEST_SUITE(RecordSlots, Records, RecordNumbers);

// A slot that kSlots lacks would stay nil, one that it has twice would be in the list twice.
TYPED_TEST(RecordSlots, AreAllThatIsInTheRecord) {
  const auto object = host::NewInstance<TypeParam>();
  auto& record = *host::RecordOf<TypeParam>(object.get());
  std::vector<const void*> filled = FillAll(record);
  std::vector<const void*> words = WordsOf(record);
  words.erase(std::remove(words.begin(), words.end(), nullptr), words.end());  // isGroup
  EXPECT_THAT(words, ::testing::UnorderedElementsAreArray(filled));
}

TYPED_TEST(RecordSlots, AreGivenBackInTheirOrder) {
  this->RecordUnlocks();
  auto object = host::NewInstance<TypeParam>();
  std::vector<const void*> expected = {object.get()};
  for (const void* thing : FillAll(*host::RecordOf<TypeParam>(object.get())))
    expected.push_back(thing);
  object = {};
  EXPECT_EQ(this->Unlocked(), expected);
}

}  // namespace
}  // namespace zqv::test
