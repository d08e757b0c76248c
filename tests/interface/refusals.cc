#include "tests/interface/refusals.h"

#include <gtest/gtest.h>

namespace zqv::interface_test {

Constructed ConstructWith(const char* constructor, const Value& content) {
  return ConstructOn(NewInstance("MimeEmailZQV"), constructor, content);
}

std::string RaisedByFile(std::string_view path) {
  return ConstructWith(kFromFile, MakeFolderItem(path)).raised;
}

void ExpectNoParsedMembers(const Object& message) {
  for (const char* name : {"Header", "Body", "BodyDecoded", "Subject", "PlainText", "HTMLText",
                           "Date", "ReceivedDate"}) {
    EXPECT_TRUE(standin::IsNil(Get(message, name))) << name;
  }
}

void ExpectRefused(const Constructed& constructed, const std::string& raised,
                   const std::string& source) {
  EXPECT_EQ(constructed.raised, raised);
  const Object& message = constructed.message;
  for (const char* list : {"Inlines", "Attachments"}) {
    const Object array = ObjectOf(Call(message, list));
    ASSERT_FALSE(array.IsNil()) << list;
    EXPECT_EQ(array.Size(), 0) << list;
  }
  EXPECT_EQ(ShowProperty(message, "Source"), source);
  ExpectNoParsedMembers(message);
}

void ExpectNothingSet(const Constructed& constructed, const std::string& raised) {
  EXPECT_EQ(constructed.raised, raised);
  for (const char* name : {"Source", "InlinesVariant", "AttachmentsVariant"}) {
    EXPECT_TRUE(standin::IsNil(Get(constructed.message, name))) << name;
  }
  ExpectNoParsedMembers(constructed.message);
}

}  // namespace zqv::interface_test
