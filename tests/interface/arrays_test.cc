// Lists as an application uses them: bounds, counts and elements. An element is read directly from
// the host's storage when the self-test has confirmed its layout, and through the host otherwise.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tests/interface/child.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

using standin::ArrayLayout;

constexpr const char* kRead = "RuntimeDirectReadObjectArray";

class Arrays : public InterfaceTest {};

// A list of the library: its owner, and the methods that give its array, its count and its
// elements.
struct List {
  const char* name;
  Object owner;
  const char* whole;  // the method that returns the array
  const char* indexed;
};

// One list of each class, all in one message.
std::vector<List> EveryList(const Object& message) {
  const Object header = ObjectOf(Get(message, "Header"));
  const Object addresses = ObjectOf(Get(header, "too"));
  const Object group = ObjectOf(Get(ObjectOf(Call(addresses, "Addresses", 0)), "Group"));
  return {
      {"Inlines", message, "Inlines as MimeAttachmentZQV()",
       "Inlines(index as Integer) as MimeAttachmentZQV"},
      {"Attachments", message, "Attachments as MimeAttachmentZQV()",
       "Attachments(index as Integer) as MimeAttachmentZQV"},
      {"Parts", ObjectOf(Get(message, "Body")), "Parts as MimeEntityZQV()",
       "Parts(index as Integer) as MimeEntityZQV"},
      {"Fields", header, "Fields as MimeFieldZQV()", "Fields(index as Integer) as MimeFieldZQV"},
      {"Addresses", addresses, "Addresses as MimeAddressZQV()",
       "Addresses(index as Integer) as MimeAddressZQV"},
      {"from", ObjectOf(Get(header, "from")), "Mailboxes as MimeMailboxZQV()",
       "Mailboxes(index as Integer) as MimeMailboxZQV"},
      {"group", group, "Mailboxes as MimeMailboxZQV()",
       "Mailboxes(index as Integer) as MimeMailboxZQV"},
  };
}

std::string OutOfBounds(std::int64_t index, std::int64_t count) {
  return "OutOfBoundsException, 0: The parameter index  is too " +
         std::string(index < 0 ? "small" : "big") + ". Range is 0 to " + std::to_string(count - 1) +
         ", but value is " + std::to_string(index) + ".";
}

// Reads every element of every list, and expects each to equal the array's element. Returns the
// number of elements.
std::uint64_t ReadEveryElement(const Object& message) {
  std::uint64_t reads = 0;
  for (const List& list : EveryList(message)) {
    const Object array = ObjectOf(Call(list.owner, list.whole));
    EXPECT_GT(array.Size(), 0) << list.name;
    for (std::int64_t i = 0; i < array.Size(); ++i) {
      const Object element = ObjectOf(Call(list.owner, list.indexed, i));
      EXPECT_FALSE(element.IsNil()) << list.name << " " << i;
      EXPECT_TRUE(element == ObjectOf(array.At(i))) << list.name << " " << i;
      ++reads;
    }
  }
  return reads;
}

TEST_F(Arrays, IndexOutOfBoundsRaises) {
  Start();
  const Object message = Parse(RichMessage());
  for (const List& list : EveryList(message)) {
    const std::int64_t count = ObjectOf(Call(list.owner, list.whole)).Size();
    for (const std::int64_t index :
         {std::int64_t{-1}, std::numeric_limits<std::int64_t>::min(), count, count + 1,
          std::int64_t{0x100000000}, std::numeric_limits<std::int64_t>::max()}) {
      EXPECT_EQ(RaisedBy([&] { Call(list.owner, list.indexed, index); }), OutOfBounds(index, count))
          << list.name;
    }
  }
}

// The text of the exception, byte for byte, with its two blanks after "index".
TEST_F(Arrays, OutOfBoundsTextKeepsTwoBlanks) {
  Start();
  const Object list = FromText("MimeMailboxListZQV", "a@b.org, c@b.org, d@b.org");
  EXPECT_EQ(RaisedBy([&] { Call(list, "Mailboxes", -1); }),
            "OutOfBoundsException, 0: The parameter index  is too small. Range is 0 to 2, but "
            "value is -1.");
  EXPECT_EQ(RaisedBy([&] { Call(list, "Mailboxes", 7); }),
            "OutOfBoundsException, 0: The parameter index  is too big. Range is 0 to 2, but value "
            "is 7.");
}

TEST_F(Arrays, AnyIndexIntoAnEmptyListRaises) {
  Start();
  const Object message = Parse(PlainMessage());
  const Object body = ObjectOf(Get(message, "Body"));
  for (const std::int64_t index : {-1, 0, 1}) {
    EXPECT_EQ(RaisedBy([&] { Call(message, "Inlines", index); }), OutOfBounds(index, 0));
    EXPECT_EQ(RaisedBy([&] { Call(message, "Attachments", index); }), OutOfBounds(index, 0));
    EXPECT_EQ(RaisedBy([&] { Call(body, "Parts", index); }), OutOfBounds(index, 0));
  }
  EXPECT_EQ(OutOfBounds(0, 0),
            "OutOfBoundsException, 0: The parameter index  is too big. Range is 0 to -1, but value "
            "is 0.");
}

TEST_F(Arrays, CountsOfListsWithoutArrayEmptyAndFull) {
  Start();
  const auto count = [](const Object& list) { return std::get<std::int64_t>(Get(list, "Count")); };
  for (const char* name : {"MimeMailboxListZQV", "MimeAddressListZQV", "MimeGroupZQV"}) {
    EXPECT_EQ(count(NewInstance(name)), 0) << name;
    EXPECT_EQ(count(FromText(name, "")), 0) << name;
  }
  EXPECT_EQ(count(FromText("MimeMailboxListZQV", "a@b.org, c@b.org, d@b.org")), 3);
  EXPECT_EQ(count(FromText("MimeAddressListZQV", "a@b.org, c@b.org, d@b.org")), 3);
  EXPECT_EQ(count(FromText("MimeGroupZQV", "G: a@b.org, c@b.org, d@b.org;")), 3);
}

struct LayoutRow {
  const char* name;
  double version;
  ArrayLayout layout;
  bool is_direct;  // whether the self-test passes
};

constexpr LayoutRow kLayouts[] = {
    {"old host", 2013.0, ArrayLayout::kByVersion, true},
    {"last old host", 2020.99, ArrayLayout::kByVersion, true},
    {"first new host", 2021.0, ArrayLayout::kByVersion, true},
    {"new host", 2024.1, ArrayLayout::kByVersion, true},
    {"old layout in a new host", 2021.0, ArrayLayout::kOld, false},
    {"new layout in an old host", 2020.99, ArrayLayout::kNew, false},
    {"lock count", 2024.1, ArrayLayout::kWrongLocks, false},
    {"dimensions", 2024.1, ArrayLayout::kWrongDimensions, false},
    {"upper bound", 2024.1, ArrayLayout::kWrongUpperBound, false},
    {"no storage", 2024.1, ArrayLayout::kNoStorage, false},
    {"slot 0", 2024.1, ArrayLayout::kWrongSlot0, false},
    {"slot 9", 2024.1, ArrayLayout::kWrongSlot9, false},
    {"lock count, old", 2013.0, ArrayLayout::kWrongLocks, false},
    {"dimensions, old", 2013.0, ArrayLayout::kWrongDimensions, false},
    {"upper bound, old", 2013.0, ArrayLayout::kWrongUpperBound, false},
    {"no storage, old", 2013.0, ArrayLayout::kNoStorage, false},
    {"slot 0, old", 2013.0, ArrayLayout::kWrongSlot0, false},
    {"slot 9, old", 2013.0, ArrayLayout::kWrongSlot9, false},
};

Capabilities CapabilitiesOf(const LayoutRow& row) {
  Capabilities capabilities;
  capabilities.version = row.version;
  capabilities.array_layout = row.layout;
  return capabilities;
}

// After a passed self-test elements are never read through the host, after a failed one always.
TEST_F(Arrays, ElementsAreReadDirectlyOnlyAfterAPassedSelfTest) {
  LoadLibraryFile();
  for (const LayoutRow& row : kLayouts) {
    InChild(row.name, [&row] {
      Session session(CapabilitiesOf(row));
      const Object message = Parse(RichMessage());
      // EveryList has read one element, an address, before.
      const std::uint64_t reads = ReadEveryElement(message) + 1;
      EXPECT_EQ(session.host().CallCount(kRead), row.is_direct ? 0 : reads);
      EXPECT_GT(reads, 20U);
    });
  }
}

// The self-test creates one array of integers, only once, whatever list is read and however often.
TEST_F(Arrays, SelfTestRunsOnceAtTheFirstValidIndex) {
  LoadLibraryFile();
  for (const LayoutRow& row : {kLayouts[3], kLayouts[7]}) {
    InChild(row.name, [&row] {
      Session session(CapabilitiesOf(row));
      Host& host = session.host();
      const Object list = FromText("MimeMailboxListZQV", "a@b.org");
      static_cast<void>(RaisedBy([&] { Call(list, "Mailboxes", 1); }));
      static_cast<void>(Call(NewInstance("MimeMailboxListZQV"), "Mailboxes", 0));
      EXPECT_EQ(host.CallCount("PluginIntegerArraySetProc"), 0U)
          << "no valid index was read yet, so no self-test";
      Call(list, "Mailboxes", 0);
      EXPECT_EQ(host.CallCount("PluginIntegerArraySetProc"), 2U);
      EXPECT_EQ(host.CallCount("PluginIntegerArrayGetProc"), 3U);
      Call(list, "Mailboxes", 0);
      static_cast<void>(ReadEveryElement(Parse(RichMessage())));
      EXPECT_EQ(host.CallCount("PluginIntegerArraySetProc"), 2U);
      EXPECT_EQ(host.CallCount("PluginIntegerArrayGetProc"), 3U);
    });
  }
}

// A nil element of the host's array is returned as nil, by both ways of reading.
TEST_F(Arrays, NilElementIsNil) {
  LoadLibraryFile();
  for (const LayoutRow& row : {kLayouts[0], kLayouts[3], kLayouts[7]}) {
    InChild(row.name, [&row] {
      Session session(CapabilitiesOf(row));
      const Object list = FromText("MimeMailboxListZQV", "a@b.org");
      ObjectOf(Call(list, "Mailboxes as MimeMailboxZQV()")).Append(Object());
      EXPECT_TRUE(standin::IsNil(Call(list, "Mailboxes", 1)));
      EXPECT_FALSE(standin::IsNil(Call(list, "Mailboxes", 0)));
      const Object header = ObjectOf(Get(Parse(PlainMessage()), "Header"));
      ObjectOf(Call(header, "Fields as MimeFieldZQV()")).Append(Object());
      EXPECT_FALSE(std::get<bool>(Call(header, "hasField", MakeString("Nobody"))));
    });
  }
}

// The list is so long that the host reallocates its storage more than once.
TEST_F(Arrays, LongListIsReadCorrectlyInBothWays) {
  LoadLibraryFile();
  for (const LayoutRow& row : {kLayouts[0], kLayouts[3], kLayouts[7]}) {
    InChild(row.name, [&row] {
      Session session(CapabilitiesOf(row));
      std::string text;
      for (int i = 0; i < 1000; ++i) text += "u" + std::to_string(i) + "@example.org,";
      const Object list = FromText("MimeMailboxListZQV", text);
      EXPECT_EQ(std::get<std::int64_t>(Get(list, "Count")), 1000);
      for (const int i : {0, 1, 9, 500, 999}) {
        EXPECT_EQ(standin::BytesOf(Get(ObjectOf(Call(list, "Mailboxes", i)), "Mailbox")),
                  "u" + std::to_string(i));
      }
      EXPECT_NE(RaisedBy([&] { Call(list, "Mailboxes", 1000); }), "");
    });
  }
}

// When an entry point that the self-test needs is missing, the test fails, and elements are read
// through the host.
TEST_F(Arrays, SelfTestFailsWithoutItsEntryPoints) {
  LoadLibraryFile();
  for (const char* missing : {"PluginIntegerArraySetProc", "PluginIntegerArrayGetProc"}) {
    InChild(missing, [missing] {
      Capabilities capabilities;
      capabilities.faults[missing] = Fault();
      Session session(capabilities);
      const std::uint64_t reads = ReadEveryElement(Parse(RichMessage())) + 1;
      EXPECT_EQ(session.host().CallCount(kRead), reads);
    });
  }
}

}  // namespace
}  // namespace zqv::interface_test
