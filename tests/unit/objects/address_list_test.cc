#include "objects/address_list.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "mime/limits.h"
#include "tests/unit/objects/objects_fixture.h"

namespace zqv::test {
namespace {

using objects::MimeAddressClassData;
using objects::MimeAddressListClassData;

class AddressList : public ObjectsTest {
 protected:
  void TearDown() override {
    list_ = {};
    ObjectsTest::TearDown();
  }

  const MimeAddressListClassData& Make(std::string_view text) {
    list_ = host::NewInstance<MimeAddressListClassData>();
    objects::MimeAddressListConstructor(list_.get(), NewText(text).get());
    return *host::RecordOf<MimeAddressListClassData>(list_.get());
  }
  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    const auto& record = *host::RecordOf<MimeAddressListClassData>(list_.get());
    for (const auto* address : RecordsIn<MimeAddressClassData>(record.addresses.get()))
      texts.push_back(Show(address->StringValue));
    return texts;
  }

  host::ObjectRef list_;
};

TEST_F(AddressList, HasEveryAddressWithItsText) {
  const auto& record = Make("A <a@b>,Team:c@d;,e@f");
  EXPECT_EQ(Show(record.StringValue), Ascii("A <a@b>, Teamc@d;, e@f"));
  EXPECT_EQ(Texts(), (std::vector<std::string>{Ascii("A <a@b>"), Ascii("Teamc@d;"), Ascii("e@f")}));
}

// In its text form, an address after a comma and a blank keeps the blank.
TEST_F(AddressList, TextKeepsTheBlankBehindAComma) {
  const auto& record = Make("a@b, c@d");
  EXPECT_EQ(Show(record.StringValue), Ascii("a@b,  c@d"));
  EXPECT_EQ(Texts(), (std::vector<std::string>{Ascii("a@b"), Ascii(" c@d")}));
}

TEST_F(AddressList, LeavesNoAddressOut) {
  Make("nobody, a@b");
  const auto& record = *host::RecordOf<MimeAddressListClassData>(list_.get());
  const auto addresses = RecordsIn<MimeAddressClassData>(record.addresses.get());
  ASSERT_EQ(addresses.size(), 2U);
  EXPECT_EQ(addresses[0]->Mailbox.get(), nullptr);
  EXPECT_NE(addresses[1]->Mailbox.get(), nullptr);
}

TEST_F(AddressList, OfNothingIsEmpty) {
  const auto& record = Make("");
  EXPECT_EQ(Show(record.StringValue), "nil");
  EXPECT_NE(record.addresses.get(), nullptr);
  EXPECT_EQ(objects::ListedAddresses::Count(list_.get()), 0);
}

TEST_F(AddressList, LeavesOutThoseThatTheHostCannotMake) {
  // Instances are created in this order: the list, then each address and its mailbox. The fourth is
  // the second address.
  StartObjectsWithFault("PluginNewInstance", {standin::Fault::Kind::kNothing, 4, 1});
  Make("a@b,c@d,e@f");
  EXPECT_EQ(Texts(), (std::vector<std::string>{Ascii("a@b"), Ascii("e@f")}));
}

TEST_F(AddressList, HasNoListWhenTheHostCannotMakeOne) {
  StartObjectsWithFault("RuntimeArrayCreateSingleDimBoundedArray");
  const auto& record = Make("a@b");
  EXPECT_EQ(record.addresses.get(), nullptr);
  EXPECT_EQ(Show(record.StringValue), Ascii("a@b"));
}

TEST_F(AddressList, BeyondTheLimitRaisesAndHoldsNothing) {
  const auto& record = Make(std::string(mime::kMostEntries + 1, ','));
  EXPECT_EQ(TakeRaised(), "RuntimeException, 0: C++ Exception: the text has too many addresses");
  EXPECT_EQ(Show(record.StringValue), "nil");
  EXPECT_EQ(record.addresses.get(), nullptr);
}

TEST_F(AddressList, DestructorGivesTheTextBackBeforeTheList) {
  Make("");
  auto& record = *host::RecordOf<MimeAddressListClassData>(list_.get());
  record.StringValue.Put(NewText("x"));
  RecordUnlocks();
  const std::vector<const void*> expected = {list_.get(), record.StringValue.get(),
                                             record.addresses.get()};
  list_ = {};
  EXPECT_EQ(Unlocked(), expected);
  objects::MimeAddressListDestructor(nullptr);
}

}  // namespace
}  // namespace zqv::test
