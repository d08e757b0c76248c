// The classes and members that the library registers when it is loaded, their order, and the
// differences between host versions.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "standin/library.h"
#include "tests/interface/child.h"
#include "tests/interface/files.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

constexpr const char* kEntryPoints[] = {
#define ZQV_ENTRY_POINT(name, result, arguments, ownership) #name,
#include "abi/entry_points.def"
};

class Registration : public InterfaceTest {};
class RegistrationFor : public InterfaceTest, public ::testing::WithParamInterface<std::string> {};

// The parameter is a host version, as in the name of a listing; "none" is a host that reports no
// version. expected_classes.py makes the listings from tables written by hand.
TEST_P(RegistrationFor, ListsTheClasses) {
  Capabilities capabilities;
  if (GetParam() == "none") {
    capabilities.faults["REALGetRBVersion"] = Fault();
  } else {
    capabilities.version = std::stod(GetParam());
  }
  const std::string expected =
      ReadWholeFile(ZQV_TEST_DATA "/tables/classes-" + GetParam() + ".txt");
  ASSERT_NE(expected, "");
  EXPECT_EQ(Start(capabilities).ListClasses(), expected);
}

INSTANTIATE_TEST_SUITE_P(Hosts, RegistrationFor,
                         ::testing::Values("none", "2009", "2012.5", "2013.035", "2013.04",
                                           "2019.1", "2020.02", "2024.1"),
                         [](const auto& row) {
                           std::string name = row.param;
                           for (char& c : name) c = c == '.' ? '_' : c;
                           return name;
                         });

int AnnouncedTo(double version) {
  Capabilities capabilities;
  capabilities.version = version;
  Session session(capabilities);
  const std::set<int>& announced = session.host().classes().announced();
  EXPECT_EQ(announced.size(), 1U);
  return announced.empty() ? 0 : *announced.begin();
}

TEST_F(Registration, AnnouncesTheDefinitionVersionOfTheHost) {
  const struct {
    double version;
    int announced;
  } kRows[] = {{0, 9},        {2011.9, 9},    {2011.99, 9},  {2012.0, 10},
               {2012.5, 10},  {2012.99, 10},  {2013.0, 11},  {2013.02, 11},
               {2013.03, 12}, {2013.035, 12}, {2013.04, 13}, {2024.1, 13}};
  LoadLibraryFile();
  for (const auto& row : kRows) {
    InChild(std::to_string(row.version),
            [&] { EXPECT_EQ(AnnouncedTo(row.version), row.announced) << row.version; });
  }
}

TEST_F(Registration, ComesInTheStatedOrderAfterTheAnnouncement) {
  Start();
  std::vector<std::string> names;
  for (const standin::ClassInfo* info : host().classes().registered()) names.push_back(info->name);
  EXPECT_EQ(names, (std::vector<std::string>{"MimeBodyZQV", "MimeHeaderZQV", "MimeEntityZQV",
                                             "MimeAddressZQV", "MimeGroupZQV", "MimeAddressListZQV",
                                             "MimeMailboxListZQV", "MimeMailboxZQV", "MimeFieldZQV",
                                             "MimeEmailZQV", "MimeAttachmentZQV"}));
  EXPECT_EQ(host().CallCount("RegisterPluginVersion"), 1U);
  EXPECT_EQ(host().CallCount("PluginRegisterClass"), 11U);
}

TEST_F(Registration, RecordSizesAreMultiplesOf16) {
  Start();
  for (const standin::ClassInfo* info : host().classes().registered()) {
    EXPECT_EQ(info->definition->dataSize % 16, 0U) << info->name;
    EXPECT_EQ(info->definition->dataSize == 0, info->name == "MimeEmailZQV") << info->name;
  }
}

TEST_F(Registration, HappensInTheEntryFunctionOnly) {
  const auto host = Host::Start();
  const standin::Library library(ZQV_LIBRARY);
  EXPECT_EQ(host->ListClasses(), "");
  EXPECT_EQ(host->TotalCalls(), 0U);
  for (const char* name : kEntryPoints) EXPECT_EQ(host->ResolveCount(name), 0U) << name;
  library.Enter(*host);
  EXPECT_EQ(host->classes().registered().size(), 11U);
}

TEST_F(Registration, NullResolverRegistersNothing) {
  const auto host = Host::Start();
  const standin::Library library(ZQV_LIBRARY);
  library.EnterWith(nullptr);
  EXPECT_EQ(host->ListClasses(), "");
  EXPECT_EQ(host->TotalCalls(), 0U);
  EXPECT_EQ(host->ledger().Live().Total(), 0);
}

TEST_F(Registration, HostWithoutRegistrationGetsNoClass) {
  Capabilities capabilities;
  capabilities.faults["PluginRegisterClass"] = Fault();
  EXPECT_EQ(Start(capabilities).ListClasses(), "");
}

TEST_F(Registration, HostWithoutAnnouncementGetsTheClassesAllTheSame) {
  Capabilities capabilities;
  capabilities.faults["RegisterPluginVersion"] = Fault();
  Start(capabilities);
  EXPECT_EQ(host().classes().registered().size(), 11U);
  EXPECT_TRUE(host().classes().announced().empty());
}

// Other entry points are resolved when they are needed.
TEST_F(Registration, ResolvesOnlyWhatItNeeds) {
  Start();
  std::vector<std::string> resolved;
  for (const char* name : kEntryPoints) {
    if (host().ResolveCount(name) != 0) resolved.emplace_back(name);
  }
  EXPECT_EQ(resolved, (std::vector<std::string>{"REALGetRBVersion", "RegisterPluginVersion",
                                                "PluginRegisterClass"}));
}

void EachIsResolvedOnceAtMost(double version, standin::DateFlavour date_flavour) {
  Capabilities capabilities;
  capabilities.version = version;
  capabilities.date_flavour = date_flavour;
  Session session(capabilities);
  for (int round = 0; round < 2; ++round) {
    for (const Way way : kAllWays) UseEverything(way, RichMessage());
  }
  for (const std::string_view name : kEntryPoints) {
    // This host lacks it. A missing entry point is looked up again each time; the code for this one
    // runs on a single platform.
    if (name == "REALGetStringCFString") continue;
    const bool called = session.host().CallCount(name) > 0;
    EXPECT_EQ(session.host().ResolveCount(name), called ? 1U : 0U) << name;
  }
}

TEST_F(Registration, EachEntryPointIsResolvedOnce) {
  LoadLibraryFile();
  for (const double version : {2011.0, 2024.1}) {
    InChild(std::to_string(version),
            [&] { EachIsResolvedOnceAtMost(version, standin::DateFlavour::kNoConstructor); });
  }
}

// QUIRK: the record stores MimeType before MimeVersion, and the class table lists them in the
// opposite order.
TEST_F(Registration, AttachmentKeepsBothOrders) {
  Start();
  const auto& properties = host().classes().Find("MimeAttachmentZQV")->properties;
  EXPECT_EQ(properties[4].name, "MimeVersion");
  EXPECT_EQ(properties[5].name, "MimeType");
  EXPECT_EQ(properties[4].row->param, 5 * 8);
  EXPECT_EQ(properties[5].row->param, 4 * 8);
}

TEST_F(Registration, OnlyTheRecordlessConstructorsArePrivate) {
  Start();
  std::vector<std::string> private_in;
  for (const standin::ClassInfo* info : host().classes().registered()) {
    for (const standin::Method& method : info->methods) {
      if ((method.flags & abi::kFlagPrivate) != 0) private_in.push_back(info->name);
    }
  }
  EXPECT_EQ(private_in, (std::vector<std::string>{"MimeBodyZQV", "MimeHeaderZQV", "MimeEntityZQV",
                                                  "MimeAttachmentZQV"}));
}

}  // namespace
}  // namespace zqv::interface_test
