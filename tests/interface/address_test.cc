// The five address classes, made from text and read from headers.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/interface/reading.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

class Addresses : public InterfaceTest {};

std::string Bytes(const Object& object, std::string_view property) {
  return standin::BytesOf(Get(object, property));
}
std::int64_t CountOf(const Object& list) { return std::get<std::int64_t>(Get(list, "Count")); }

struct MailboxRow {
  std::string text;
  const char* label;
  const char* mailbox;
  const char* domain;
  const char* email;  // an empty text means nil
};

TEST_F(Addresses, MailboxFromText) {
  Start();
  const MailboxRow kRows[] = {
      {"Ada Example <ada@example.org>", "Ada Example", "ada", "example.org", "ada@example.org"},
      {"ada@example.org", "", "ada", "example.org", "ada@example.org"},
      {"<ada@example.org>", "", "ada", "example.org", "ada@example.org"},
      {"\"Ada, Dr.\" <ada@example.org>", "\"Ada, Dr.\"", "ada", "example.org", "ada@example.org"},
      {"ada@", "", "ada", "", "ada@"},
      {"@example.org", "", "", "example.org", "@example.org"},
      {"ada", "", "", "", ""},
      {"", "", "", "", ""},
      {std::string("ada@example.org\0.net", 20), "", "ada", "example.org", "ada@example.org"},
  };
  for (const MailboxRow& row : kRows) {
    const Object mailbox = FromText("MimeMailboxZQV", row.text);
    EXPECT_EQ(Bytes(mailbox, "Label"), row.label) << row.text;
    EXPECT_EQ(Bytes(mailbox, "Mailbox"), row.mailbox) << row.text;
    EXPECT_EQ(Bytes(mailbox, "Domain"), row.domain) << row.text;
    EXPECT_EQ(Bytes(mailbox, "Email"), row.email) << row.text;
    for (const char* name : {"Label", "Mailbox", "Domain", "Email"}) {
      EXPECT_EQ(standin::IsNil(Get(mailbox, name)), Bytes(mailbox, name).empty()) << name;
    }
  }
}

TEST_F(Addresses, TheRouteIsNotPartOfTheEmail) {
  Start();
  const Object mailbox = FromText("MimeMailboxZQV", "<@relay.example:ada@example.org>");
  EXPECT_EQ(Bytes(mailbox, "Sourceroute"), "@relay.example");
  EXPECT_EQ(Bytes(mailbox, "Email"), "ada@example.org");
}

// Constructing an address again replaces everything: after the text of a mailbox it has no group
// any more, and the group of the first construction is given back.
TEST_F(Addresses, ASecondConstructionReplacesTheFirst) {
  Start();
  const Object address = FromText("MimeAddressZQV", "Crew: ada@example.org;");
  ASSERT_FALSE(standin::IsNil(Get(address, "Group")));
  Call(address, "Constructor(TextToParse as String)", MakeString("bob@example.net"));
  EXPECT_TRUE(standin::IsNil(Get(address, "Group")));
  EXPECT_EQ(std::get<bool>(Get(address, "isGroup")), false);
  EXPECT_EQ(Bytes(ObjectOf(Get(address, "Mailbox")), "Email"), "bob@example.net");
  Call(address, "Constructor(TextToParse as String)", MakeString("Rest: carol@example.com;"));
  EXPECT_TRUE(standin::IsNil(Get(address, "Mailbox")));
  EXPECT_EQ(CountOf(ObjectOf(Get(address, "Group"))), 1);
}

// Each call of Email returns a new string, of which the application owns the lock.
TEST_F(Addresses, EmailIsANewStringAtEachCall) {
  Start();
  const Object mailbox = FromText("MimeMailboxZQV", "ada@example.org");
  const auto first = std::get<String>(Get(mailbox, "Email"));
  EXPECT_EQ(first.locks(), 1);
  EXPECT_FALSE(first == std::get<String>(Get(mailbox, "Email")));
}

TEST_F(Addresses, EncodedLabelIsKeptAndDecoded) {
  Start();
  const Object mailbox = FromText("MimeMailboxZQV", "=?utf-8?Q?Ren=C3=A9?= <rene@example.org>");
  EXPECT_EQ(ShowProperty(mailbox, "Label"), "0x600 =?utf-8?Q?Ren=C3=A9?=");
  EXPECT_EQ(ShowProperty(mailbox, "LabelDecoded"), "0x8000100 Ren\xC3\xA9");
}

TEST_F(Addresses, DecodedLabelLosesItsQuotes) {
  Start();
  const Object mailbox = FromText("MimeMailboxZQV", "\"Ada Example\" <ada@example.org>");
  EXPECT_EQ(Bytes(mailbox, "Label"), "\"Ada Example\"");
  EXPECT_EQ(Bytes(mailbox, "LabelDecoded"), "Ada Example");
}

// The name of a group is decoded like a label, but keeps its quotes.
TEST_F(Addresses, GroupNameKeepsItsQuotes) {
  Start();
  const Object group = FromText("MimeGroupZQV", "\"The Team\": ada@example.org;");
  EXPECT_EQ(Bytes(group, "Name"), "\"The Team\"");
  EXPECT_EQ(Bytes(group, "NameDecoded"), "\"The Team\"");
}

TEST_F(Addresses, EncodedGroupNameIsDecoded) {
  Start();
  const Object group = FromText("MimeGroupZQV", "=?utf-8?Q?Caf=C3=A9?=: ada@example.org;");
  EXPECT_EQ(ShowProperty(group, "Name"), "0x600 =?utf-8?Q?Caf=C3=A9?=");
  EXPECT_EQ(ShowProperty(group, "NameDecoded"), "0x8000100 Caf\xC3\xA9");
}

TEST_F(Addresses, ListWithOneGroup) {
  Start();
  const Object list = FromText("MimeAddressListZQV", "Team: ada@example.org, bob@example.net;");
  EXPECT_EQ(CountOf(list), 1);
  const Object address = ObjectOf(Call(list, "Addresses", 0));
  EXPECT_TRUE(std::get<bool>(Get(address, "isGroup")));
  EXPECT_TRUE(standin::IsNil(Get(address, "Mailbox")));
  const Object group = ObjectOf(Get(address, "Group"));
  EXPECT_EQ(Bytes(group, "Name"), "Team");
  EXPECT_EQ(CountOf(group), 2);
  EXPECT_EQ(Bytes(ObjectOf(Call(group, "Mailboxes", 1)), "Email"), "bob@example.net");
}

// The text forms of the group, of its address, of the list and of the header field agree.
TEST_F(Addresses, GroupTextHasNoColon) {
  Start();
  const char* text = "Team: ada@example.org, bob@example.net;";
  const char* written = "Teamada@example.org,bob@example.net;";
  for (const char* name : {"MimeGroupZQV", "MimeAddressZQV", "MimeAddressListZQV"}) {
    EXPECT_EQ(Bytes(FromText(name, text), "StringValue"), written) << name;
  }
  const Object header = ObjectOf(Get(Parse("To: " + std::string(text) + "\n\nText\n"), "Header"));
  EXPECT_EQ(Bytes(ObjectOf(Call(header, "Fields", 0)), "Value"), written);
}

TEST_F(Addresses, AddressIsAMailboxOrAGroup) {
  Start();
  const Object mailbox = FromText("MimeAddressZQV", "ada@example.org");
  EXPECT_FALSE(std::get<bool>(Get(mailbox, "isGroup")));
  EXPECT_TRUE(standin::IsNil(Get(mailbox, "Group")));
  EXPECT_EQ(Bytes(ObjectOf(Get(mailbox, "Mailbox")), "Email"), "ada@example.org");
  const Object group = FromText("MimeAddressZQV", "Team: ada@example.org;");
  EXPECT_TRUE(std::get<bool>(Get(group, "isGroup")));
  EXPECT_TRUE(standin::IsNil(Get(group, "Mailbox")));
  EXPECT_EQ(Bytes(ObjectOf(Get(group, "Group")), "Name"), "Team");
}

TEST_F(Addresses, AddressOfNobodyHasNeither) {
  Start();
  for (const char* text : {"", "ada", "@example.org", ":"}) {
    const Object address = FromText("MimeAddressZQV", text);
    EXPECT_TRUE(standin::IsNil(Get(address, "Mailbox"))) << text;
    EXPECT_TRUE(standin::IsNil(Get(address, "Group"))) << text;
    EXPECT_EQ(std::get<bool>(Get(address, "isGroup")), text == std::string(":")) << text;
  }
}

// An address list keeps an entry without a local part, a mailbox list leaves it out.
TEST_F(Addresses, EntriesWithoutLocalPart) {
  Start();
  const char* text = "ada@example.org, @example.org, bob@example.net";
  const Object mailboxes = FromText("MimeMailboxListZQV", text);
  EXPECT_EQ(CountOf(mailboxes), 2);
  EXPECT_EQ(Bytes(ObjectOf(Call(mailboxes, "Mailboxes", 1)), "Mailbox"), "bob");
  const Object addresses = FromText("MimeAddressListZQV", text);
  EXPECT_EQ(CountOf(addresses), 3);
  EXPECT_TRUE(standin::IsNil(Get(ObjectOf(Call(addresses, "Addresses", 1)), "Mailbox")));
  const Object group = FromText("MimeGroupZQV", std::string("Team: ") + text + ";");
  EXPECT_EQ(CountOf(group), 2);
}

TEST_F(Addresses, EmptyListStillHasItsArray) {
  Start();
  const struct {
    const char* class_name;
    const char* whole;
    const char* indexed;
  } kRows[] = {
      {"MimeMailboxListZQV", "Mailboxes as MimeMailboxZQV()", "Mailboxes"},
      {"MimeAddressListZQV", "Addresses as MimeAddressZQV()", "Addresses"},
      {"MimeGroupZQV", "Mailboxes as MimeMailboxZQV()", "Mailboxes"},
  };
  for (const auto& row : kRows) {
    const Object list = FromText(row.class_name, "");
    EXPECT_EQ(CountOf(list), 0) << row.class_name;
    const Object array = ObjectOf(Call(list, row.whole));
    ASSERT_FALSE(array.IsNil()) << row.class_name;
    EXPECT_EQ(array.Size(), 0) << row.class_name;
    EXPECT_EQ(RaisedBy([&] { Call(list, row.indexed, 0); }).substr(0, 20), "OutOfBoundsException");
  }
}

TEST_F(Addresses, NilTextIsAnEmptyOne) {
  Start();
  for (const char* name : {"MimeMailboxZQV", "MimeGroupZQV", "MimeAddressZQV", "MimeMailboxListZQV",
                           "MimeAddressListZQV", "MimeFieldZQV"}) {
    EXPECT_EQ(RaisedBy([&] { standin::Construct(name, "Constructor", nullptr); }), "") << name;
  }
}

TEST_F(Addresses, TextInAnotherEncodingIsTakenInUtf8) {
  Start();
  const String text = MakeString("Ren\x8E <rene@example.org>", abi::kMacRoman);
  const Object mailbox = standin::Construct("MimeMailboxZQV", "Constructor", text);
  EXPECT_EQ(ShowProperty(mailbox, "Label"), "0x8000100 Ren\xC3\xA9");
  EXPECT_EQ(ShowProperty(mailbox, "Mailbox"), "0x600 rene");
}

// One comma of input makes an object of hundreds of bytes, so their number is limited.
TEST_F(Addresses, TooManyInOneTextAreRefused) {
  Start();
  for (const char* class_name : {"MimeAddressListZQV", "MimeMailboxListZQV", "MimeGroupZQV"}) {
    EXPECT_EQ(RaisedBy([&] { FromText(class_name, "g:" + std::string(300'000, ',')); }),
              "RuntimeException, 0: C++ Exception: the text has too many addresses")
        << class_name;
  }
}

TEST_F(Addresses, TooManyInAMessageAreRefused) {
  Start();
  const Constructed constructed =
      ConstructFromString("To: " + std::string(300'000, ',') + "\n\nbody\n");
  EXPECT_EQ(constructed.raised,
            "RuntimeException, 0: C++ Exception: the message has too many addresses or parameters");
  EXPECT_FALSE(standin::IsNil(Get(constructed.message, "Source")));
  EXPECT_TRUE(standin::IsNil(Get(constructed.message, "Header")));
}

}  // namespace
}  // namespace zqv::interface_test
