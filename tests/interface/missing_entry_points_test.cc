// Hosts that lack entry points. The step that needs one is skipped; nothing may crash, leak or
// throw a C++ exception out of the library. The stand-in host ends the process when a lock is
// misused, so each configuration runs in a child process.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/interface/broken_host.h"
#include "tests/interface/child.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

class MissingEntryPoints : public InterfaceTest {};

// The other tests prove something only if the run uses every entry point.
TEST_F(MissingEntryPoints, TheRunUsesEveryEntryPoint) {
  LoadLibraryFile();
  for (const HostKind& kind : kHosts) {
    InChild(kind.name, [&] {
      Session session(CapabilitiesOf(kind));
      UseAllWays();
      for (const char* name : kEntryPoints) {
        const bool is_used_elsewhere =
            name == std::string_view("REALGetStringCFString") ||
            (kind.version < 2013 ? name == std::string_view("REALBuildStringWithEncoding")
                                 : name == std::string_view("REALBuildString") ||
                                       name == std::string_view("REALSetStringEncoding") ||
                                       name == std::string_view("RuntimeDirectReadObjectArray"));
        EXPECT_EQ(session.host().CallCount(name) == 0, is_used_elsewhere) << name;
      }
    });
  }
}

TEST_F(MissingEntryPoints, EachMissingInTurn) {
  LoadLibraryFile();
  for (const HostKind& kind : kHosts) {
    for (const char* name : kEntryPoints) {
      InChild(std::string(kind.name) + " without " + name, [&] {
        UseWithFaults(kind, {{name, Fault()}});
      });
    }
  }
}

// Groups of entry points of which one can replace another, or of which one is useless without
// another.
const std::vector<std::vector<std::string>> kFamilies = {
    // strings
    {"REALLockString", "REALUnlockString", "REALBuildString", "REALBuildStringWithEncoding",
     "REALGetStringEncoding", "REALSetStringEncoding", "REALConvertString", "StringGetCString",
     "REALLoadGlobalMethod", "RuntimeAddString", "RuntimeStringCompare", "REALGetStringCFString"},
    // the text of strings
    {"PluginGetStringData", "PluginDisposeStringData", "StringGetCString", "REALLoadGlobalMethod",
     "REALGetStringEncoding"},
    // arrays
    {"RuntimeUBound", "RuntimeArrayCreateSingleDimBoundedArray", "PluginObjectArrayInsertProc",
     "RuntimeDirectReadObjectArray", "PluginIntegerArrayGetProc", "PluginIntegerArraySetProc"},
    // objects
    {"PluginNewInstance", "REALLockObject", "REALUnlockObject"},
    // properties and methods
    {"REALGetPropValueString", "REALGetPropValueDouble", "REALSetPropValueString",
     "REALSetPropValueInteger", "REALSetPropValueDouble", "REALLoadObjectMethod",
     "REALLoadGlobalMethod"},
    // exceptions
    {"PluginNewInstance", "REALSetPropValueString", "REALSetPropValueInteger",
     "RuntimeRaiseException"},
    // memory blocks
    {"memoryBlockGetPtr", "memoryBlockGetSize"},
    // registration
    {"REALGetRBVersion", "RegisterPluginVersion", "PluginRegisterClass"},
};

TEST_F(MissingEntryPoints, EachPairOfAFamily) {
  LoadLibraryFile();
  std::set<std::string> covered;
  for (const std::vector<std::string>& family : kFamilies) {
    covered.insert(family.begin(), family.end());
    for (auto first = family.begin(); first != family.end(); ++first) {
      for (auto second = first + 1; second != family.end(); ++second) {
        for (const HostKind& kind : kHosts) {
          InChild(std::string(kind.name) + " without " + *first + " and " + *second, [&] {
            UseWithFaults(kind, {{*first, Fault()}, {*second, Fault()}});
          });
        }
      }
    }
  }
  EXPECT_EQ(covered.size(), std::size(kEntryPoints)) << "each entry point belongs to a family";
}

TEST_F(MissingEntryPoints, WholeFamilies) {
  LoadLibraryFile();
  for (const std::vector<std::string>& family : kFamilies) {
    Faults faults;
    for (const std::string& name : family) faults[name] = Fault();
    for (const HostKind& kind : kHosts) {
      InChild(std::string(kind.name) + " without any like " + family.front(),
              [&] { UseWithFaults(kind, faults); });
    }
  }
}

// A host without any entry point, and a host that offers only those for registration.
TEST_F(MissingEntryPoints, AllAtOnce) {
  LoadLibraryFile();
  for (const HostKind& kind : kHosts) {
    Faults faults;
    for (const char* name : kEntryPoints) faults[name] = Fault();
    InChild(std::string(kind.name) + " without anything", [&] { UseWithFaults(kind, faults); });
    faults.erase("PluginRegisterClass");
    InChild(std::string(kind.name) + " that only registers", [&] { UseWithFaults(kind, faults); });
  }
}

// Uses each list of the library in a host that reports no upper bounds.
TEST_F(MissingEntryPoints, EveryListSurvives) {
  LoadLibraryFile();
  InChild("without RuntimeUBound", [] {
    TakeRealResolver();
    Capabilities capabilities;
    capabilities.faults["RuntimeUBound"] = Fault();
    capabilities.refuses_insertion_beyond_the_end = true;
    Session session(capabilities, Exceptions::kNoneLost, &TolerantResolver);
    const Object message = Parse(RichMessage());
    const Object header = ObjectOf(Get(message, "Header"));
    EXPECT_EQ(ObjectOf(Call(message, "Attachments as MimeAttachmentZQV()")).Size(), 0);
    EXPECT_EQ(ObjectOf(Call(message, "Inlines as MimeAttachmentZQV()")).Size(), 0);
    EXPECT_EQ(ObjectOf(Call(ObjectOf(Get(message, "Body")), "Parts as MimeEntityZQV()")).Size(), 0);
    EXPECT_EQ(ObjectOf(Call(header, "Fields as MimeFieldZQV()")).Size(), 0);
    EXPECT_EQ(std::get<std::int64_t>(Get(ObjectOf(Get(header, "from")), "Count")), 1);
    EXPECT_EQ(std::get<std::int64_t>(Get(ObjectOf(Get(header, "too")), "Count")), 1);
    EXPECT_EQ(ShowProperty(message, "PlainText"), "0x201 Caf\xE9 at noon");
  });
}

// When a string cannot be built, the exception of that failure is raised, and the result is nil.
TEST_F(MissingEntryPoints, FailingToBuildAStringGivesNil) {
  LoadLibraryFile();
  for (const Fault::Kind kind : {Fault::Kind::kMissing, Fault::Kind::kNothing}) {
    InChild(std::to_string(static_cast<int>(kind)), [kind] {
      Capabilities capabilities;
      capabilities.faults["REALBuildStringWithEncoding"] = Fault{kind};
      Session session(capabilities);
      const Object message = Parse(RichMessage());
      for (const char* name : {"Subject", "PlainText", "HTMLText"}) {
        EXPECT_EQ(ShowProperty(message, name), "nil") << name;
      }
      EXPECT_EQ(ObjectOf(Call(message, "Attachments as MimeAttachmentZQV()")).Size(), 2)
          << "text that could not be built counts as absent, so a later text is not a second one";
    });
  }
}

struct MissingRow {
  const char* entry_point;
  const char* property;  // of the message
  bool is_nil;
};

// Only the step that needs the missing entry point is skipped.
TEST_F(MissingEntryPoints, OnlyTheStepIsSkipped) {
  static constexpr MissingRow kRows[] = {
      {"RuntimeArrayCreateSingleDimBoundedArray", "InlinesVariant", true},
      {"RuntimeArrayCreateSingleDimBoundedArray", "Subject", false},
      {"REALGetPropValueDouble", "Date", false},
      {"REALSetPropValueDouble", "Date", false},
      {"REALLoadObjectMethod", "Date", false},
      {"REALLoadObjectMethod", "Subject", false},
      {"PluginNewInstance", "Header", true},
      {"PluginNewInstance", "Body", true},
      {"PluginNewInstance", "Date", true},
      {"PluginNewInstance", "Subject", false},
      {"PluginNewInstance", "Source", false},
      {"PluginObjectArrayInsertProc", "InlinesVariant", false},
      {"PluginObjectArrayInsertProc", "Body", false},
  };
  LoadLibraryFile();
  for (const MissingRow& row : kRows) {
    InChild(std::string(row.property) + " without " + row.entry_point, [&] {
      Capabilities capabilities;
      capabilities.faults[row.entry_point] = Fault();
      Session session(capabilities);
      const Object message = Parse(RichMessage());
      EXPECT_EQ(standin::IsNil(Get(message, row.property)), row.is_nil);
    });
  }
}

// A value that an application reads, and what it is when an entry point is missing.
struct FallbackRow {
  const char* entry_point;
  const char* what;
  std::string (*see)();
  const char* expected;
};

std::string EmptyText() { return ConstructFromString("").raised; }
std::string PlainFrom(Way way) { return Construct(way, PlainMessage()).raised; }
std::string Utf16Text() {
  // "Hi" in UTF-16, after a byte order mark in this machine's byte order.
  return ShowProperty(Parse("Content-Type: text/plain; charset=utf-16\n"
                            "Content-Transfer-Encoding: base64\n\n//5IAGkA\n"),
                      "PlainText");
}
Object HeaderOfPlain() { return ObjectOf(Get(Parse(PlainMessage()), "Header")); }
std::string Email() { return ShowProperty(FromText("MimeMailboxZQV", "ada@example.org"), "Email"); }
std::string FieldCount() {
  return std::to_string(ObjectOf(Call(HeaderOfPlain(), "Fields as MimeFieldZQV()")).Size());
}
std::string CountOfTwo() {
  const Object list = FromText("MimeMailboxListZQV", "a@example.org, b@example.org");
  return std::to_string(std::get<std::int64_t>(Get(list, "Count")));
}
std::string MacRomanHtml() {
  return Show(CallShared("MimeEmailZQV", "HTMLToPlainText", MakeString("Caf\x8E", abi::kMacRoman)));
}

// The value that replaces the result of a skipped step.
TEST_F(MissingEntryPoints, FallbackValues) {
  static constexpr char kNoText[] = "UnsupportedOperationException, 0: Can't parse empty text.";
  static constexpr char kNoFile[] = "IOException, 0: Failed to open file for reading.";
  static constexpr FallbackRow kRows[] = {
      {"RuntimeRaiseException", "nothing is raised", &EmptyText, ""},
      {"PluginNewInstance", "there is nothing to raise", &EmptyText, ""},
      {"REALSetPropValueString", "no text", &EmptyText, "UnsupportedOperationException, 0: "},
      {"REALBuildStringWithEncoding", "no text", &EmptyText, "UnsupportedOperationException, 0: "},
      {"REALSetPropValueInteger", "the number is 0 anyway", &EmptyText, kNoText},
      {"REALUnlockObject", "raised all the same", &EmptyText, kNoText},
      {"StringGetCString", "no bytes", [] { return PlainFrom(Way::kString); }, kNoText},
      {"REALLoadGlobalMethod", "no length", [] { return PlainFrom(Way::kString); }, kNoText},
      {"memoryBlockGetPtr", "no bytes", [] { return PlainFrom(Way::kBlock); }, kNoText},
      {"memoryBlockGetSize", "no bytes", [] { return PlainFrom(Way::kBlock); }, kNoText},
      {"REALGetPropValueString", "no path", [] { return PlainFrom(Way::kFile); }, kNoFile},
      {"StringGetCString", "not needed", [] { return PlainFrom(Way::kBlock); }, ""},
      {"REALConvertString", "UTF-16 cannot be converted", &Utf16Text, "nil"},
      {"RuntimeAddString", "the two parts cannot be joined", &Email, "nil"},
      {"RuntimeUBound", "counts as 0, which is one element", &CountOfTwo, "1"},
      {"PluginObjectArrayInsertProc", "elements are dropped", &FieldCount, "0"},
      {"PluginObjectArrayInsertProc", "elements are dropped", &CountOfTwo, "0"},
      {"PluginGetStringData", "the text cannot be had", &MacRomanHtml, "nil"},
  };
  LoadLibraryFile();
  for (const FallbackRow& row : kRows) {
    InChild(std::string(row.entry_point) + ": " + row.what, [&] {
      const auto session = StartBroken(kHosts[0], {{row.entry_point, Fault()}});
      EXPECT_EQ(row.see(), row.expected);
    });
  }
}

// An array of an unknown layout is read through the host; when the host cannot do that either,
// elements are nil.
TEST_F(MissingEntryPoints, WithoutReadingArraysElementsAreNil) {
  LoadLibraryFile();
  for (const bool is_missing : {false, true}) {
    InChild(is_missing ? "missing" : "there", [is_missing] {
      Capabilities capabilities;
      capabilities.array_layout = standin::ArrayLayout::kWrongDimensions;
      if (is_missing) capabilities.faults["RuntimeDirectReadObjectArray"] = Fault();
      Session session(capabilities);
      const Object header = HeaderOfPlain();
      EXPECT_EQ(ObjectOf(Call(header, "Fields", 0)).IsNil(), is_missing);
      EXPECT_EQ(std::get<bool>(Call(header, "hasField", MakeString("Subject"))), !is_missing);
    });
  }
}

TEST_F(MissingEntryPoints, WithoutComparisonNoFieldIsFound) {
  LoadLibraryFile();
  InChild("without RuntimeStringCompare", [] {
    Capabilities capabilities;
    capabilities.faults["RuntimeStringCompare"] = Fault();
    Session session(capabilities);
    const Object header = ObjectOf(Get(Parse(PlainMessage()), "Header"));
    EXPECT_FALSE(std::get<bool>(Call(header, "hasField", MakeString("Subject"))));
    EXPECT_TRUE(standin::IsNil(Call(header, "FieldByName", MakeString("Subject"))));
  });
}

// When no lock can be added, getters return nil, because the application would unlock what they
// return.
TEST_F(MissingEntryPoints, WithoutLocksGettersGiveNil) {
  LoadLibraryFile();
  InChild("without locks", [] {
    Capabilities capabilities;
    capabilities.faults["REALLockString"] = Fault();
    capabilities.faults["REALLockObject"] = Fault();
    Session session(capabilities);
    const Object message = Parse(RichMessage());
    for (const char* name : {"Subject", "InlinesVariant", "Date"}) {
      EXPECT_TRUE(standin::IsNil(Get(message, name))) << name;
    }
  });
}

// When the host cannot create instances of a class, its objects and everything below them are
// missing.
TEST_F(MissingEntryPoints, ClassesThatTheHostCannotMake) {
  LoadLibraryFile();
  for (const char* name : {"MimeBodyZQV", "MimeHeaderZQV", "MimeEntityZQV", "MimeAddressZQV",
                           "MimeGroupZQV", "MimeAddressListZQV", "MimeMailboxListZQV",
                           "MimeMailboxZQV", "MimeFieldZQV", "MimeAttachmentZQV", "Date"}) {
    InChild(name, [name] {
      Capabilities capabilities;
      capabilities.unknown_classes = {name};
      Session session(capabilities);
      UseAllWays();
      const std::string mirror = MirrorWithoutDates(Parse(RichMessage())).dump();
      EXPECT_EQ(mirror.find("\"class\":\"" + std::string(name)), std::string::npos);
    });
  }
}

}  // namespace
}  // namespace zqv::interface_test
