// From construction to release: what constructors store, what getters return, and who owns it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "standin/invoke.h"
#include "standin/mirror.h"
#include "tests/interface/child.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

constexpr const char* kEmail = "MimeEmailZQV";
constexpr const char* kFromString = "Constructor(Content as string)";

class Lifecycle : public InterfaceTest {};

std::string TextOf(const Object& object, std::string_view property) {
  return standin::BytesOf(Get(object, property));
}

Object Element(const Object& object, std::string_view method, int index) {
  return ObjectOf(Call(object, method, index));
}

TEST_F(Lifecycle, SourceOfAStringIsTheSameString) {
  Start();
  const String content = MakeString(PlainMessage(), abi::kUnknownEncoding);
  const Object message = standin::Construct(kEmail, kFromString, content);
  EXPECT_EQ(content.locks(), 2) << "one of the application, one of the record";
  EXPECT_TRUE(std::get<String>(Get(message, "Source")) == content);
  EXPECT_EQ(content.encoding(), abi::kUnknownEncoding) << "relabelled";
}

TEST_F(Lifecycle, SourceOfABlockOrFileHasTheBytesWithTheMark) {
  Start();
  const std::string bytes = "\xEF\xBB\xBF" + PlainMessage();
  for (const Way way : {Way::kBlock, Way::kFile}) {
    const Object message = Parse(bytes, way);
    EXPECT_EQ(ShowProperty(message, "Source"), "0xffff " + bytes) << NameOf(way);
    EXPECT_EQ(ShowProperty(message, "Subject"), "0x8000100 Caf\xC3\xA9 at noon") << NameOf(way);
  }
}

TEST_F(Lifecycle, SourceOfLowBytesIsAscii) {
  Start();
  const std::string bytes = "Subject: Hi\n\nHello\n";
  for (const Way way : {Way::kBlock, Way::kFile}) {
    EXPECT_EQ(ShowProperty(Parse(bytes, way), "Source"), "0x600 " + bytes) << NameOf(way);
  }
}

// Each of the three constructors gives the same message, apart from its source.
TEST_F(Lifecycle, AllConstructorsGiveTheSameMessage) {
  Start();
  const auto read = [](Way way) { return MirrorWithoutDates(Parse(RichMessage(), way)).dump(1); };
  const std::string from_string = read(Way::kString);
  EXPECT_NE(from_string.find("\"Filename\""), std::string::npos);
  EXPECT_EQ(read(Way::kBlock), from_string);
  EXPECT_EQ(read(Way::kFile), from_string);
}

TEST_F(Lifecycle, GettersReturnTheSameStringWithOneMoreLock) {
  Start();
  const Object message = Parse(RichMessage());
  for (const char* name : {"Source", "Subject", "PlainText", "HTMLText"}) {
    const auto first = std::get<String>(Get(message, name));
    const std::int64_t locks = first.locks();
    const auto second = std::get<String>(Get(message, name));
    EXPECT_TRUE(first == second) << name;
    EXPECT_EQ(first.locks(), locks + 1) << name;
  }
}

TEST_F(Lifecycle, GettersReturnTheSameObjectWithOneMoreLock) {
  Start();
  const Object message = Parse(RichMessage());
  for (const char* name :
       {"Date", "ReceivedDate", "InlinesVariant", "AttachmentsVariant", "Header", "Body"}) {
    const Object first = ObjectOf(Get(message, name));
    ASSERT_FALSE(first.IsNil()) << name;
    const std::int64_t locks = first.locks();
    const Object second = ObjectOf(Get(message, name));
    EXPECT_TRUE(first == second) << name;
    EXPECT_EQ(first.locks(), locks + 1) << name;
  }
}

void ExpectOneArray(const Object& owner, const char* method, const char* variant) {
  const Object first = ObjectOf(Call(owner, method));
  ASSERT_TRUE(!first.IsNil() && first.IsArray()) << method;
  EXPECT_EQ(first.locks(), 2) << method;
  const Object second = ObjectOf(Call(owner, method));
  EXPECT_TRUE(first == second) << method;
  if (variant == nullptr) return;
  EXPECT_TRUE(ObjectOf(Get(owner, variant)) == first) << variant;
}

TEST_F(Lifecycle, EveryListIsOneArrayInEachForm) {
  Start();
  const Object message = Parse(RichMessage());
  const Object header = ObjectOf(Get(message, "Header"));
  const Object list = ObjectOf(Get(header, "too"));
  ExpectOneArray(message, "Inlines as MimeAttachmentZQV()", "InlinesVariant");
  ExpectOneArray(message, "Attachments as MimeAttachmentZQV()", "AttachmentsVariant");
  ExpectOneArray(ObjectOf(Get(message, "Body")), "Parts as MimeEntityZQV()", "PartsVariant");
  ExpectOneArray(header, "Fields as MimeFieldZQV()", nullptr);
  ExpectOneArray(ObjectOf(Get(header, "from")), "Mailboxes as MimeMailboxZQV()",
                 "MailboxesVariant");
  ExpectOneArray(list, "Addresses as MimeAddressZQV()", "AddressesVariant");
  ExpectOneArray(ObjectOf(Get(Element(list, "Addresses", 0), "Group")),
                 "Mailboxes as MimeMailboxZQV()", "MailboxesVariant");
}

// The list's array is returned itself, not a copy, so a change by the application changes the list.
TEST_F(Lifecycle, ChangingTheArrayChangesTheList) {
  Start();
  const Object message = Parse(RichMessage());
  const Object array = ObjectOf(Call(message, "Attachments as MimeAttachmentZQV()"));
  const std::int64_t size = array.Size();
  const Object own = NewInstance("MimeAttachmentZQV");
  array.Append(own);
  EXPECT_TRUE(ObjectOf(Call(message, "Attachments", size)) == own);
}

TEST_F(Lifecycle, ElementsComeWithOneMoreLock) {
  Start();
  const Object message = Parse(RichMessage());
  const Object first = Element(message, "Attachments", 0);
  EXPECT_EQ(first.locks(), 2) << "one of the array, one of the application";
  const Object second = Element(message, "Attachments", 0);
  EXPECT_TRUE(first == second);
  EXPECT_EQ(first.locks(), 3);
}

TEST_F(Lifecycle, AttachmentsShareTheObjectsOfTheirPart) {
  Start();
  const Object message = Parse(RichMessage());
  const Object part = Element(ObjectOf(Get(message, "Body")), "Parts", 1);
  const Object attachment = Element(message, "Attachments", 0);
  EXPECT_TRUE(ObjectOf(Get(attachment, "Body")) == ObjectOf(Get(part, "Body")));
  EXPECT_TRUE(ObjectOf(Get(attachment, "Header")) == ObjectOf(Get(part, "Header")));
  const auto data = std::get<String>(Get(attachment, "Data"));
  EXPECT_TRUE(data == std::get<String>(Get(part, "BodyDecoded")));
  EXPECT_EQ(data.locks(), 3)
      << "one held by the part, one by the attachment, one by the application";
}

TEST_F(Lifecycle, ThePlainTextIsTheStringOfItsPart) {
  Start();
  const Object message = Parse(PlainMessage());
  const auto text = std::get<String>(Get(message, "PlainText"));
  EXPECT_EQ(text.bytes(), "See you at the caf\xC3\xA9.\n");
}

TEST_F(Lifecycle, SecondConstructionReplacesEverything) {
  constexpr const char* kSecond = "Subject: B\nContent-Type: text/plain\n\nText\n";
  Start();
  const Object message = Parse(RichMessage());
  const Object kept = Element(message, "Attachments", 0);
  const Constructed again = ConstructOn(message, kFromString, MakeString(kSecond));
  EXPECT_EQ(again.raised, "");
  EXPECT_EQ(TextOf(message, "Subject"), "B");
  EXPECT_EQ(TextOf(message, "PlainText"), "Text\n");
  EXPECT_EQ(ShowProperty(message, "HTMLText"), "nil");
  EXPECT_TRUE(ObjectOf(Get(message, "Date")).IsNil());
  EXPECT_EQ(ObjectOf(Call(message, "Attachments as MimeAttachmentZQV()")).Size(), 0);
  EXPECT_EQ(TextOf(kept, "MimeType"), "application/pdf")
      << "an object of the first construction stays valid";
}

TEST_F(Lifecycle, SecondConstructionOfTheTextClasses) {
  Start();
  for (const char* class_name : {"MimeMailboxZQV", "MimeGroupZQV", "MimeAddressZQV",
                                 "MimeMailboxListZQV", "MimeAddressListZQV", "MimeFieldZQV"}) {
    const Object object = FromText(class_name, "Group: a@example.org, b@example.org;");
    Call(object, "Constructor", MakeString("c@example.net"));
    EXPECT_EQ(object.locks(), 1) << class_name;
  }
}

// The end of each session checks the ledger too; this test checks it after each kind of message.
TEST_F(Lifecycle, TenThousandMessagesLeaveNoObjects) {
  Start();
  const std::string messages[] = {PlainMessage(), RichMessage(), NestedMultiparts(5)};
  for (const std::string& bytes : messages) UseEverything(Way::kString, bytes);
  const std::int64_t before = host().ledger().Live().Total();
  const int count = Repetitions(10'000, 600);
  for (int i = 0; i < count; ++i) {
    Parse(messages[static_cast<std::size_t>(i) % std::size(messages)],
          i % 2 == 0 ? Way::kString : Way::kBlock);
  }
  EXPECT_EQ(host().ledger().Live().Total(), before);
  EXPECT_EQ(before, 0);
}

// Each object that an application holds stays valid after its message is released.
TEST_F(Lifecycle, ObjectsOutliveTheMessage) {
  Start();
  const auto take = [](const char* what) {
    const Object message = Parse(RichMessage());
    const Object header = ObjectOf(Get(message, "Header"));
    const Object part = Element(ObjectOf(Get(message, "Body")), "Parts", 0);
    if (what == std::string("attachment")) return Element(message, "Attachments", 0);
    if (what == std::string("header")) return header;
    if (what == std::string("body")) return ObjectOf(Get(message, "Body"));
    if (what == std::string("part")) return part;
    if (what == std::string("field")) return Element(header, "Fields", 2);
    if (what == std::string("group")) {
      return ObjectOf(Get(Element(ObjectOf(Get(header, "too")), "Addresses", 0), "Group"));
    }
    return ObjectOf(Call(message, "Inlines as MimeAttachmentZQV()"));
  };
  EXPECT_EQ(TextOf(take("attachment"), "Data"), "%PDF-1.4\n");
  EXPECT_EQ(TextOf(ObjectOf(Get(take("attachment"), "Header")), "ContentDescription"), "The plan");
  EXPECT_EQ(TextOf(take("header"), "messageid"), "<rich@example.org>");
  EXPECT_EQ(TextOf(take("body"), "preamble"), "What stands before the parts.");
  EXPECT_EQ(ObjectOf(Call(ObjectOf(Get(take("part"), "Body")), "Parts as MimeEntityZQV()")).Size(),
            2);
  EXPECT_EQ(TextOf(take("field"), "Name"), "From");
  EXPECT_EQ(TextOf(Element(take("group"), "Mailboxes", 1), "Email"), "carol@example.net");
  EXPECT_EQ(TextOf(ObjectOf(take("array").At(0)), "MimeType"), "image/png");
  EXPECT_EQ(host().ledger().Live().Total(), 0);
}

TEST_F(Lifecycle, StringsOutliveTheMessage) {
  Start();
  const auto source = std::get<String>(Get(Parse(RichMessage(), Way::kBlock), "Source"));
  EXPECT_EQ(source.bytes(), RichMessage());
  EXPECT_EQ(source.locks(), 1);
}

// The names of the members of an object that are not empty.
std::vector<std::string> Filled(const Object& object) {
  std::vector<std::string> names;
  const nlohmann::ordered_json mirror = standin::Mirror(object);
  for (const auto& [name, value] : mirror.items()) {
    const bool is_empty = value.is_null() || value == 0 || value == false;
    if (name != "class" && !is_empty) names.push_back(name);
  }
  return names;
}

// Every string, object and list is nil, counts are 0, and no field is found. An element of a
// missing list is nil, and no exception is raised.
TEST_F(Lifecycle, InstancesOfTheApplicationAreEmpty) {
  Start();
  for (const standin::ClassInfo* info : host().classes().registered()) {
    const Object object = NewInstance(info->name);
    EXPECT_THAT(Filled(object), ::testing::IsEmpty()) << info->name;
    for (const standin::Method& method : info->methods) {
      if (method.declaration.parameters.size() != 1) continue;
      if (standin::KindOf(method.declaration.parameters[0].type) != standin::TypeKind::kInteger) {
        continue;
      }
      for (const int index : {-1, 0, 1}) {
        EXPECT_TRUE(standin::IsNil(Call(object, method.row->declaration, index)))
            << method.full_name;
      }
    }
  }
  const Object header = NewInstance("MimeHeaderZQV");
  EXPECT_FALSE(std::get<bool>(Call(header, "hasField", MakeString("Subject"))));
  EXPECT_TRUE(standin::IsNil(Call(header, "FieldByName", MakeString("Subject"))));
  EXPECT_TRUE(standin::IsNil(Call(NewInstance(kEmail), "SourceWithoutAttachments")));
}

// These constructors do nothing, and applications cannot call them.
TEST_F(Lifecycle, PrivateConstructorsDoNothing) {
  Start();
  for (const char* name : {"MimeBodyZQV", "MimeHeaderZQV", "MimeEntityZQV", "MimeAttachmentZQV"}) {
    EXPECT_THROW(standin::Construct(name, "Constructor"), std::invalid_argument) << name;
    const Object object = NewInstance(name);
    standin::CallArguments arguments;
    arguments.Add(object.thing());
    standin::CallNothing(standin::FunctionOf(name, "Constructor"), arguments, name);
    EXPECT_THAT(Filled(object), ::testing::IsEmpty()) << name;
  }
}

const standin::Property& SharedProperty(std::string_view name) {
  const auto& rows = Host::Get("the test").classes().Find(kEmail)->shared_properties;
  for (const standin::Property& row : rows) {
    if (row.name == name) return row;
  }
  throw std::invalid_argument("no such shared property");
}

TEST_F(Lifecycle, SharedSwitchesAreOffAndKeepTheirValue) {
  Start();
  for (const char* name : {"RaiseUnknownFormatExceptions", "Debugging"}) {
    EXPECT_FALSE(std::get<bool>(GetShared(kEmail, name))) << name;
    for (const bool value : {true, true, false, false, true, false}) {
      SetShared(kEmail, name, value);
      EXPECT_EQ(std::get<bool>(GetShared(kEmail, name)), value) << name;
    }
    // Any value except 0 is true. A read must give 1, because the host accepts only 0 and 1.
    standin::CallArguments two;
    two.Add(std::int64_t{2});
    standin::CallNothing(SharedProperty(name).row->setter, two, name);
    EXPECT_TRUE(std::get<bool>(GetShared(kEmail, name))) << name;
    SetShared(kEmail, name, false);
  }
}

TEST_F(Lifecycle, SwitchesAreSharedByAllMessages) {
  // A message of one part looks its charset up twice, so two exceptions are raised.
  const Session session({}, Exceptions::kMayBeLost);
  const std::string bytes = "Content-Type: text/plain; charset=foo\n\nText\n";
  const std::string raised = "UnsupportedFormatException, 0: Unhandled charset: foo";
  EXPECT_EQ(ConstructFromString(bytes).raised, "");
  SetShared(kEmail, "RaiseUnknownFormatExceptions", true);
  EXPECT_EQ(ConstructFromString(bytes).raised, raised);
  EXPECT_EQ(Construct(Way::kBlock, bytes).raised, raised);
  SetShared(kEmail, "RaiseUnknownFormatExceptions", false);
  EXPECT_EQ(ConstructFromString(bytes).raised, "");
}

}  // namespace
}  // namespace zqv::interface_test
