#include "plugin/register.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "host/entry_points.h"
#include "host/record.h"
#include "objects/attachment.h"
#include "objects/records.h"
#include "plugin/classes.h"
#include "standin/capabilities.h"
#include "standin/host.h"
#include "tests/support/alone.h"
#include "tests/unit/host/host_fixture.h"

extern "C" void REALPluginMain(zqv::abi::Resolver resolver);

namespace zqv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct VersionRow {
  const char* name;
  double host_version;
  std::int32_t control_version;
};

void PrintTo(const VersionRow& row, std::ostream* out) { *out << row.name; }

class ControlVersion : public ::testing::TestWithParam<VersionRow> {};

TEST_P(ControlVersion, IsAsListed) {
  EXPECT_EQ(plugin::ControlVersionFor(GetParam().host_version), GetParam().control_version);
}

constexpr VersionRow kVersions[] = {
    // clang-format off
    {"Unknown",     0.0,       9},
    {"Negative",    -1.0,      9},
    {"V2011_9",     2011.9,    9},
    {"V2011_99",    2011.99,   9},
    {"V2012",       2012.0,    10},
    {"V2012_5",     2012.5,    10},
    {"V2012_99",    2012.99,   10},
    {"V2013",       2013.0,    11},
    {"V2013_02",    2013.02,   11},
    {"V2013_029",   2013.029,  11},
    {"V2013_03",    2013.03,   12},
    {"V2013_035",   2013.035,  12},
    {"V2013_039",   2013.039,  12},
    {"V2013_04",    2013.04,   13},
    {"V2013_1",     2013.1,    13},
    {"V2024_1",     2024.1,    13},
    // clang-format on
};
INSTANTIATE_TEST_SUITE_P(Hosts, ControlVersion, ::testing::ValuesIn(kVersions),
                         [](const auto& row) { return row.param.name; });

struct FlagRow {
  const char* name;
  double host_version;
  std::uint32_t flags;
  std::uint32_t fixed;
};

void PrintTo(const FlagRow& row, std::ostream* out) { *out << row.name; }

class Flags : public ::testing::TestWithParam<FlagRow> {};

TEST_P(Flags, AreFixedAsListed) {
  EXPECT_EQ(plugin::FixFlags(GetParam().flags, GetParam().host_version), GetParam().fixed);
}

constexpr FlagRow kFlags[] = {
    // clang-format off
    {"DateOfAnOldHost",             2019.1,    0x30a,    0x6},
    {"DateJustBefore",              2020.019,  0x30a,    0x6},
    {"DateFromThenOn",              2020.02,   0x30a,    0x30a},
    {"DateOfANewHost",              2024.1,    0x30a,    0x30a},
    {"DateOfAnUnknownHost",         0.0,       0x30a,    0x6},
    {"AllBits",                     2019.1,    0x308,    0x4},
    {"AllBitsAndOthers",            2019.1,    0x3fb,    0xf7},
    {"AllTargetsAlready",           2019.1,    0x30c,    0x4},
    {"WithIos",                     2019.1,    0x70a,    0x70a},
    {"WithoutConsole",              2019.1,    0x302,    0x302},
    {"WithoutWeb",                  2019.1,    0x20a,    0x20a},
    {"WithoutDesktop",              2019.1,    0x10a,    0x10a},
    {"Ordinary",                    2019.1,    0x6,      0x6},
    {"Hidden",                      2019.1,    0x26,     0x26},
    {"Private",                     2019.1,    0x84,     0x84},
    {"None",                        2019.1,    0x0,      0x0},
    {"NewerBit",                    2024.1,    0x40002,  0x6},
    {"NewerBitFromThenOn",          2010.029,  0x40002,  0x6},
    {"NewerBitJustBefore",          2010.028,  0x40002,  0x2},
    {"NewerBitOfAnUnknownHost",     0.0,       0x40002,  0x2},
    {"NewerBitBesideAllTargets",    2010.028,  0x40006,  0x6},
    {"BothOfAnOldHost",             2019.1,    0x4030a,  0x6},
    {"BothOfAnOlderHost",           2010.028,  0x4030a,  0x6},
    {"BothOfANewHost",              2024.1,    0x4030a,  0x30e},
    // clang-format on
};
INSTANTIATE_TEST_SUITE_P(Hosts, Flags, ::testing::ValuesIn(kFlags),
                         [](const auto& row) { return row.param.name; });

abi::REALclassDefinition* const kDefinitions[] = {
    &plugin::g_mime_body_class,         &plugin::g_mime_header_class,
    &plugin::g_mime_entity_class,       &plugin::g_mime_address_class,
    &plugin::g_mime_group_class,        &plugin::g_mime_address_list_class,
    &plugin::g_mime_mailbox_list_class, &plugin::g_mime_mailbox_class,
    &plugin::g_mime_field_class,        &plugin::g_mime_email_class,
    &plugin::g_mime_attachment_class};

// Registration changes the class tables in place, once in the life of a process. Each test
// therefore restores the tables.
class Registration : public HostTest {
 protected:
  Registration() {
    for (abi::REALclassDefinition* definition : kDefinitions) saved_.emplace_back(*definition);
  }
  ~Registration() override {
    for (const Saved& saved : saved_) saved.Restore();
    plugin::CurrentREALControlVersion = 15;
  }

  // Calls the exported function as a host with these capabilities does.
  standin::Host& Register(const standin::Capabilities& capabilities) {
    Start(capabilities);
    REALPluginMain(host().resolver());
    return host();
  }
  standin::Host& RegisterVersion(double version) {
    standin::Capabilities capabilities;
    capabilities.version = version;
    return Register(capabilities);
  }
  standin::Host& RegisterWithout(const char* name) {
    standin::Capabilities capabilities;
    capabilities.faults[name] = standin::Fault();
    return Register(capabilities);
  }

  static std::vector<std::string> Names(standin::Host& host) {
    std::vector<std::string> names;
    for (const auto* info : host.classes().registered()) names.push_back(info->name);
    return names;
  }

 private:
  struct Saved {
    explicit Saved(abi::REALclassDefinition& changed)
        : definition(&changed),
          value(changed),
          properties(changed.properties, changed.properties + changed.propertyCount),
          methods(changed.methods, changed.methods + changed.methodCount) {}

    void Restore() const {
      *definition = value;
      std::copy(properties.begin(), properties.end(), definition->properties);
      std::copy(methods.begin(), methods.end(), definition->methods);
    }

    abi::REALclassDefinition* definition;
    abi::REALclassDefinition value;
    std::vector<abi::REALproperty> properties;
    std::vector<abi::REALmethodDefinition> methods;
  };
  std::vector<Saved> saved_;
};

constexpr const char* kOrder[] = {"MimeBodyZQV",        "MimeHeaderZQV",    "MimeEntityZQV",
                                  "MimeAddressZQV",     "MimeGroupZQV",     "MimeAddressListZQV",
                                  "MimeMailboxListZQV", "MimeMailboxZQV",   "MimeFieldZQV",
                                  "MimeEmailZQV",       "MimeAttachmentZQV"};

TEST_F(Registration, KeepsItsOrder) {
  EXPECT_THAT(Names(RegisterVersion(2024.1)), ::testing::ElementsAreArray(kOrder));
}

TEST_F(Registration, AnnouncesTheVersionThatEveryClassHas) {
  for (const auto& [host_version, control_version] :
       {std::pair{2011.9, 9}, {2012.5, 10}, {2013.02, 11}, {2013.035, 12}, {2013.04, 13}}) {
    standin::Host& registered = RegisterVersion(host_version);
    EXPECT_THAT(registered.classes().announced(), ElementsAre(control_version));
    for (const abi::REALclassDefinition* definition : kDefinitions)
      EXPECT_EQ(definition->version, static_cast<std::uint32_t>(control_version));
    EXPECT_EQ(plugin::CurrentREALControlVersion, control_version);
  }
}

TEST_F(Registration, VersionIsFifteenUntilItIsSet) {
  if (!IsAlone()) return;
  EXPECT_EQ(plugin::CurrentREALControlVersion, 15);
  for (const abi::REALclassDefinition* definition : kDefinitions)
    EXPECT_EQ(definition->version, 15U);
}

TEST_F(Registration, KnowsTheHostsVersion) {
  RegisterVersion(2013.035);
  EXPECT_EQ(host::HostVersion(), 2013.035);
}

TEST_F(Registration, OfAHostThatTellsNoVersionIsThatOfTheOldest) {
  standin::Host& host = RegisterWithout("REALGetRBVersion");
  EXPECT_EQ(host::HostVersion(), 0.0);
  EXPECT_THAT(host.classes().announced(), ElementsAre(9));
  EXPECT_EQ(Names(host).size(), 11U);
}

TEST_F(Registration, GoesOnWithoutAnAnnouncement) {
  EXPECT_EQ(Names(RegisterWithout("RegisterPluginVersion")).size(), 11U);
}

TEST_F(Registration, IsSilentWhenTheHostCannotRegister) {
  EXPECT_THAT(Names(RegisterWithout("PluginRegisterClass")), IsEmpty());
  EXPECT_EQ(plugin::MyREALRegisterClass(&plugin::g_mime_body_class), 0);
  EXPECT_EQ(TakeRaised(), "");
}

TEST_F(Registration, WithoutAResolverDoesNothing) {
  Start();
  REALPluginMain(nullptr);
  EXPECT_THAT(Names(host()), IsEmpty());
  EXPECT_EQ(host().TotalCalls(), 0U);
  EXPECT_EQ(host::HostVersion(), 0.0);
  EXPECT_EQ(plugin::CurrentREALControlVersion, 9);
}

TEST_F(Registration, GivesWhatTheHostGives) {
  StartVersion(2024.1);
  host().classes().AnnounceVersion(plugin::CurrentREALControlVersion);
  EXPECT_EQ(plugin::MyREALRegisterClass(&plugin::g_mime_body_class), 1);
}

TEST_F(Registration, RoundsDataSizesUpToSixteen) {
  StartVersion(2024.1);
  host().SetFault("PluginRegisterClass", standin::Fault{standin::Fault::Kind::kNothing});
  for (const auto& [size, rounded] : {std::pair<std::size_t, std::size_t>{0, 0},
                                      {1, 16},
                                      {15, 16},
                                      {16, 16},
                                      {17, 32},
                                      {88, 96},
                                      {96, 96},
                                      {136, 144}}) {
    abi::REALclassDefinition definition{};
    definition.dataSize = size;
    plugin::MyREALRegisterClass(&definition);
    EXPECT_EQ(definition.dataSize, rounded);
  }
}

TEST_F(Registration, FixesTheFlagsOfTheClassAndOfEveryTable) {
  StartVersion(2019.1);
  host().SetFault("PluginRegisterClass", standin::Fault{standin::Fault::Kind::kNothing});
  constexpr std::uint32_t kBefore = 0x30a;
  constexpr std::uint32_t kAfter = 0x6;
  abi::REALproperty properties[2]{};
  abi::REALproperty shared_properties[2]{};
  abi::REALmethodDefinition methods[2]{};
  abi::REALmethodDefinition shared_methods[2]{};
  for (std::size_t i = 0; i < 2; ++i) {
    for (std::uint32_t* flags : {&properties[i].flags, &shared_properties[i].flags,
                                 &methods[i].flags, &shared_methods[i].flags})
      *flags = kBefore;
  }
  abi::REALclassDefinition definition{};
  definition.flags = kBefore;
  definition.properties = properties;
  definition.methods = methods;
  definition.sharedProperties = shared_properties;
  definition.sharedMethods = shared_methods;
  definition.propertyCount = definition.methodCount = 2;
  definition.sharedPropertyCount = definition.sharedMethodCount = 2;
  plugin::MyREALRegisterClass(&definition);
  EXPECT_EQ(definition.flags, kAfter);
  for (std::size_t i = 0; i < 2; ++i) {
    for (const std::uint32_t flags : {properties[i].flags, shared_properties[i].flags,
                                      methods[i].flags, shared_methods[i].flags})
      EXPECT_EQ(flags, kAfter);
  }
}

TEST_F(Registration, LeavesTablesAloneThatAreMissingOrEmpty) {
  StartVersion(2019.1);
  host().SetFault("PluginRegisterClass", standin::Fault{standin::Fault::Kind::kNothing});
  abi::REALproperty property{};
  property.flags = 0x30a;
  abi::REALclassDefinition definition{};
  definition.properties = &property;
  definition.methodCount = 3;
  plugin::MyREALRegisterClass(&definition);
  EXPECT_EQ(property.flags, 0x30aU);
}

TEST_F(Registration, GivesOldHostsTheDatesOnAllTargets) {
  for (const auto& [version, flags] : {std::pair{2019.1, 0x6U}, {2020.02, 0x30aU}}) {
    for (std::size_t i = 0; i < plugin::g_mime_email_class.propertyCount; ++i) {
      abi::REALproperty& property = plugin::g_mime_email_class.properties[i];
      if (std::string(property.type) == "Date") property.flags = 0x30a;
    }
    RegisterVersion(version);
    std::vector<std::uint32_t> dates;
    for (std::size_t i = 0; i < plugin::g_mime_email_class.propertyCount; ++i) {
      const abi::REALproperty& property = plugin::g_mime_email_class.properties[i];
      if (std::string(property.type) == "Date") dates.push_back(property.flags);
    }
    EXPECT_THAT(dates, ElementsAre(flags, flags)) << version;
  }
}

// The host writes the offset of each record into the definition, and the library finds records by
// it.
TEST_F(Registration, BindsEachRecordToItsClass) {
  RegisterVersion(2024.1);
  const auto entity = host::NewInstance<objects::MimeEntityClassData>();
  ASSERT_TRUE(entity);
  EXPECT_EQ(reinterpret_cast<const standin::Thing*>(entity.get())->type->name, "MimeEntityZQV");
  EXPECT_EQ(reinterpret_cast<char*>(host::RecordOf<objects::MimeEntityClassData>(entity.get())) -
                reinterpret_cast<char*>(entity.get()),
            plugin::g_mime_entity_class.forSystemUse);
}

TEST_F(Registration, AttachmentKeepsBothOrders) {
  EXPECT_LT(offsetof(objects::MimeAttachmentClassData, MimeType),
            offsetof(objects::MimeAttachmentClassData, MimeVersion));
  std::vector<std::string> names;
  for (std::size_t i = 0; i < plugin::g_mime_attachment_class.propertyCount; ++i)
    names.push_back(plugin::g_mime_attachment_class.properties[i].name);
  ASSERT_EQ(names.size(), 11U);
  EXPECT_EQ(names[4], "MimeVersion");
  EXPECT_EQ(names[5], "MimeType");
}

}  // namespace
}  // namespace zqv::test
