#include "objects/dates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/unit/base/log_capture.h"
#include "tests/unit/objects/email_fixture.h"

namespace zqv::test {
namespace {

// The time that the replaced clock returns; the real time when empty.
std::optional<std::time_t> g_now;
bool g_localtime_fails = false;
int g_localtime_calls = 0;

constexpr char kUtc[] = "UTC0";
constexpr char kOneHourEast[] = "<+01>-1";
constexpr char kSummerTime[] = "CET-1CEST,M3.5.0,M10.5.0/3";

}  // namespace
}  // namespace zqv::test

// The linker uses these instead of time and localtime_r.
extern "C" {
std::time_t __real_time(std::time_t* result);
std::time_t __wrap_time(std::time_t* result);
std::tm* __real_localtime_r(const std::time_t* time, std::tm* result);
std::tm* __wrap_localtime_r(const std::time_t* time, std::tm* result);
}

std::time_t __wrap_time(std::time_t* result) {
  if (!zqv::test::g_now.has_value()) return __real_time(result);
  if (result != nullptr) *result = *zqv::test::g_now;
  return *zqv::test::g_now;
}

std::tm* __wrap_localtime_r(const std::time_t* time, std::tm* result) {
  ++zqv::test::g_localtime_calls;
  return zqv::test::g_localtime_fails ? nullptr : __real_localtime_r(time, result);
}

namespace zqv::test {
namespace {

using objects::MimeEntityClassData;
using ::testing::ElementsAre;
using ::testing::Pair;

constexpr std::int64_t kDay = 24 * 60 * 60;

class Dates : public EmailTest {
 protected:
  void SetUp() override {
    const char* zone = std::getenv("TZ");
    if (zone != nullptr) zone_before_ = zone;
    SetZone(kUtc);
    EmailTest::SetUp();
  }

  void TearDown() override {
    email_ = {};
    g_now.reset();
    g_localtime_fails = false;
    if (zone_before_.has_value()) {
      SetZone(zone_before_->c_str());
    } else {
      unsetenv("TZ");
      tzset();
    }
    EmailTest::TearDown();
  }

  static void SetZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }

  // Starts a host whose class Date offers one way of construction.
  void StartWithDates(standin::DateFlavour flavour) {
    standin::Capabilities capabilities;
    capabilities.date_flavour = flavour;
    StartEmail(capabilities);
  }

  // The record of an entity that has these header lines.
  const MimeEntityClassData& ParseHeader(const std::string& lines) {
    email_ = NewEmail();
    objects::LocalOffset local_offset;
    objects::ParseDate(RecordOf(email_), Parse(lines + "\n")->Header(), local_offset);
    return RecordOf(email_);
  }
  std::string Sent(const std::string& date) {
    return DateText(ParseHeader("Date: " + date + "\n").SentDate);
  }
  std::string Received(const std::string& lines) {
    return DateText(ParseHeader(lines).ReceivedDate);
  }

  host::ObjectRef email_;

 private:
  std::optional<std::string> zone_before_;
};

TEST_F(Dates, AreMovedFromTheMessagesZoneToTheLocalOne) {
  SetZone(kOneHourEast);
  EXPECT_EQ(Sent("Tue, 1 Jan 2019 10:00:00 +0200"), "2019-01-01T09:00:00");
  EXPECT_EQ(Sent("Tue, 1 Jan 2019 10:00:00 +0000"), "2019-01-01T11:00:00");
}

TEST_F(Dates, StayInUtcOnAMachineAtUtc) {
  EXPECT_EQ(Sent("Tue, 1 Jan 2019 10:00:00 +0000"), "2019-01-01T10:00:00");
  EXPECT_EQ(Sent("Tue, 1 Jan 2019 10:00:00"), "2019-01-01T10:00:00");
}

TEST_F(Dates, OfWesternZonesMoveForward) {
  EXPECT_EQ(Sent("Tue, 1 Jan 2019 10:00:00 -0130"), "2019-01-01T11:30:00");
  EXPECT_EQ(Sent("Mon, 31 Dec 2018 22:00:00 -0500"), "2019-01-01T03:00:00");
}

// A zone of a date field, and its offset in seconds.
struct ZoneRow {
  int zone;
  double seconds;
};

class ZoneOffset : public ::testing::TestWithParam<ZoneRow> {};

TEST_P(ZoneOffset, IsInSeconds) {
  EXPECT_EQ(objects::ZoneOffset(GetParam().zone), GetParam().seconds);
}

INSTANTIATE_TEST_SUITE_P(Zones, ZoneOffset,
                         ::testing::Values(ZoneRow{0, 0}, ZoneRow{200, 7'200},
                                           ZoneRow{-500, -18'000}, ZoneRow{-130, -5'400},
                                           ZoneRow{530, 19'800}, ZoneRow{-30, -1'800},
                                           ZoneRow{1400, 50'400}, ZoneRow{-1, -60},
                                           ZoneRow{199, 9'540}),
                         [](const auto& row) {
                           return std::string(row.param.zone < 0 ? "West" : "East") +
                                  std::to_string(std::abs(row.param.zone));
                         });

// 2019-01-15 and 2019-07-15, both 12:00 UTC.
constexpr std::time_t kInWinter = 1'547'553'600;
constexpr std::time_t kInSummer = 1'563'192'000;

TEST_F(Dates, UsesTheOffsetOfTheMoment) {
  SetZone(kSummerTime);
  for (const char* month : {"Jan", "Jul"}) {
    const std::string date = std::string("15 ") + month + " 2019 10:00:00 +0000";
    g_now = kInWinter;
    EXPECT_THAT(Sent(date), ::testing::EndsWith("T11:00:00")) << month;
    g_now = kInSummer;
    EXPECT_THAT(Sent(date), ::testing::EndsWith("T12:00:00")) << month;
  }
}

TEST_F(Dates, LocalTimeIsReadOnceForAllDatesOfAMessage) {
  g_localtime_calls = 0;
  ParseHeader(
      "Date: 1 Jan 2019 10:00:00 +0000\nReceived: a; 2 Jan 2019 10:00:00 +0000\n"
      "Received: b; 4 Jan 2019 10:00:00 +0000\n");
  EXPECT_EQ(g_localtime_calls, 1);
}

TEST_F(Dates, StayWhenTheLocalTimeCannotBeHad) {
  SetZone(kOneHourEast);
  g_localtime_fails = true;
  const LogCapture log;
  EXPECT_EQ(Sent("Tue, 1 Jan 2019 10:00:00 +0000"), "2019-01-01T10:00:00");
  EXPECT_THAT(log.Text(), ::testing::Not(::testing::HasSubstr("tm_gmtoff")));
}

TEST_F(Dates, ReceivedIsWhatFollowsTheSemicolon) {
  EXPECT_EQ(Received("Received: from a by b; Tue, 1 Jan 2019 10:00:00 +0000\n"),
            "2019-01-01T10:00:00");
}

TEST_F(Dates, ReceivedWithoutSemicolonAndBlankChangesNothing) {
  EXPECT_EQ(Received("Received: from a by b;Tue, 1 Jan 2019 10:00:00 +0000\n"), "nil");
  EXPECT_EQ(Received("Received: from a; Tue, 1 Jan 2019 10:00:00 +0000\nReceived: from b\n"),
            "2019-01-01T10:00:00");
}

TEST_F(Dates, FirstSemicolonAndBlankWins) {
  EXPECT_EQ(Received("Received: from a (x; 2 Feb 2018 01:02:03 +0000); Tue, 1 Jan 2019 10:00:00 "
                     "+0000\n")
                .substr(0, 10),
            "2018-02-02");
}

TEST_F(Dates, LastOfSeveralWinsAndTheOthersAreGivenBack) {
  const auto& record = ParseHeader(
      "Date: 1 Jan 2019 10:00:00 +0000\nReceived: a; 2 Jan 2019 10:00:00 +0000\n"
      "Date: 3 Jan 2019 10:00:00 +0000\nReceived: b; 4 Jan 2019 10:00:00 +0000\n"
      "Received: c\n");
  EXPECT_EQ(DateText(record.SentDate), "2019-01-03T10:00:00");
  EXPECT_EQ(DateText(record.ReceivedDate), "2019-01-04T10:00:00");
  EXPECT_EQ(host().ledger().Live().objects, 3) << "only the entity and two dates are left";
  EXPECT_EQ(LocksOf(record.SentDate.get()), 1);
}

TEST_F(Dates, FieldNamesIgnoreCase) {
  EXPECT_EQ(DateText(ParseHeader("dATE: 1 Jan 2019 10:00:00 +0000\n").SentDate),
            "2019-01-01T10:00:00");
  EXPECT_EQ(Received("RECEIVED: a; 1 Jan 2019 10:00:00 +0000\n"), "2019-01-01T10:00:00");
}

TEST_F(Dates, AreNilWithoutTheirFields) {
  const auto& record = ParseHeader("X-Date: 1 Jan 2019 10:00:00 +0000\nDate-Sent: x\n");
  EXPECT_EQ(record.SentDate.get(), nullptr);
  EXPECT_EQ(record.ReceivedDate.get(), nullptr);
}

// The result of mimetic's date parser is used unchanged, even where it is wrong.
TEST_F(Dates, TakeWhatMimeticReads) {
  EXPECT_EQ(Sent("1 January 2019 10:20"), "2019-01-01T10:20:00");
  EXPECT_EQ(Sent("Tue, 1 Jan 2019 10:00:00 EST"), "2019-01-01T15:00:00");
  EXPECT_EQ(Sent("31 Jun 2019 10:00:00 +0000"), "2019-07-01T10:00:00")
      << "the host makes 1 July of 31 June";
  EXPECT_NE(Sent("no date at all"), "nil");
  EXPECT_EQ(Sent(""), "1970-01-01T00:00:00");
}

// Tests of the three ways to create a date: with seven arguments, with six, by setting its
// properties.
using MakesDate = Dates;

std::array<std::int64_t, 6> g_six{};
double g_offset = 0;
std::string g_declared;

void SevenArguments(abi::REALobject, abi::RBInteger year, abi::RBInteger month, abi::RBInteger day,
                    abi::RBInteger hour, abi::RBInteger minute, abi::RBInteger second,
                    double offset) {
  g_six = {year, month, day, hour, minute, second};
  g_offset = offset;
}

void SixArguments(abi::REALobject, abi::RBInteger year, abi::RBInteger month, abi::RBInteger day,
                  abi::RBInteger hour, abi::RBInteger minute, abi::RBInteger second) {
  g_six = {year, month, day, hour, minute, second};
}

void* LoadSeven(abi::REALobject, const char* declaration) {
  g_declared += std::string(declaration) + "\n";
  return reinterpret_cast<void*>(&SevenArguments);
}

void* LoadSecond(abi::REALobject, const char* declaration) {
  const bool is_first = g_declared.empty();
  g_declared += std::string(declaration) + "\n";
  return is_first ? nullptr : reinterpret_cast<void*>(&SixArguments);
}

constexpr char kSevenDeclared[] =
    "Constructor(Year as Integer, Month as Integer, Day as Integer, Hour as Integer, Minute as "
    "Integer, Second as Integer, GMTOffset as Double)\n";
constexpr char kSixDeclared[] =
    "Constructor(Year as Integer, Month as Integer, Day as Integer, hour as Integer, minute as "
    "Integer, second as Integer)\n";

TEST_F(MakesDate, WithSevenArgumentsFirst) {
  g_declared.clear();
  Replace("REALLoadObjectMethod", &LoadSeven);
  const auto date = objects::NewDate(2019, 2, 3, 4, 5, 6);
  EXPECT_TRUE(date);
  EXPECT_EQ(g_declared, kSevenDeclared);
  EXPECT_THAT(g_six, ElementsAre(2019, 2, 3, 4, 5, 6));
  EXPECT_EQ(g_offset, -10'000.0);
}

TEST_F(MakesDate, WithSixArgumentsNext) {
  g_declared.clear();
  Replace("REALLoadObjectMethod", &LoadSecond);
  const auto date = objects::NewDate(2019, 2, 3, 4, 5, 6);
  EXPECT_TRUE(date);
  EXPECT_EQ(g_declared, std::string(kSevenDeclared) + kSixDeclared);
  EXPECT_THAT(g_six, ElementsAre(2019, 2, 3, 4, 5, 6));
}

std::vector<std::pair<std::string, std::int64_t>> g_set;
decltype(host::entry::REALSetPropValueInteger)::Function g_set_integer = nullptr;

abi::RBBoolean RecordSetInteger(abi::REALobject object, const char* name, abi::RBInteger value) {
  g_set.emplace_back(name, value);
  return g_set_integer(object, name, value);
}

// In this host a new date is the 31st of a month. Setting month and day in turn could pass through
// a day that does not exist and roll over, so the day is first set to 3.
TEST_F(Dates, PropertyPathSetsTheDayTo3First) {
  StartWithDates(standin::DateFlavour::kNoConstructor);
  g_set.clear();
  g_set_integer =
      reinterpret_cast<decltype(g_set_integer)>(host::Resolve("REALSetPropValueInteger"));
  Replace("REALSetPropValueInteger", &RecordSetInteger);
  EXPECT_EQ(Sent("Thu, 28 Feb 2019 04:05:06 +0000"), "2019-02-28T04:05:06");
  EXPECT_THAT(g_set,
              ElementsAre(Pair("Day", 3), Pair("Year", 2019), Pair("Month", 2), Pair("Day", 28),
                          Pair("Hour", 4), Pair("Minute", 5), Pair("Second", 6)));
}

TEST_F(Dates, AreTheSameInEveryKindOfHost) {
  for (const auto flavour :
       {standin::DateFlavour::kSevenArguments, standin::DateFlavour::kSixArguments,
        standin::DateFlavour::kNoConstructor}) {
    email_ = {};
    StartWithDates(flavour);
    EXPECT_EQ(Sent("Tue, 31 Dec 2019 23:59:58 +0000"), "2019-12-31T23:59:58");
    EXPECT_EQ(Sent("Sat, 29 Feb 2020 23:59:58 -0001"), "2020-03-01T00:00:58");
  }
}

TEST_F(Dates, AreSetByPropertiesWhenTheHostHasNoMethods) {
  StartEmailWithFault("REALLoadObjectMethod");
  EXPECT_EQ(Sent("Tue, 31 Dec 2019 23:59:58 +0000"), "2019-12-31T23:59:58");
}

TEST_F(Dates, AreNilWhenTheHostHasNoDates) {
  standin::Capabilities capabilities;
  capabilities.unknown_classes.insert("Date");
  StartEmail(capabilities);
  EXPECT_EQ(Sent("Tue, 1 Jan 2019 10:00:00 +0200"), "nil");
  EXPECT_EQ(Received("Received: a; Tue, 1 Jan 2019 10:00:00 +0200\n"), "nil");
}

TEST_F(Dates, AreNilWhenTheHostMakesNoInstances) {
  StartEmailWithFault("PluginNewInstance");
  EXPECT_EQ(Sent("Tue, 1 Jan 2019 10:00:00 +0200"), "nil");
}

TEST_F(Dates, CountFromTheHostsFirstSecondWhenItsSecondsCannotBeRead) {
  StartEmailWithFault("REALGetPropValueDouble");
  EXPECT_EQ(Sent("Tue, 1 Jan 2019 10:00:00 +0000"), "1904-01-01T00:00:00");
  EXPECT_EQ(Sent("Tue, 1 Jan 2019 10:00:00 -0100"), "1904-01-01T01:00:00");
}

TEST_F(Dates, StayWhereTheyAreWhenTheHostsSecondsCannotBeSet) {
  StartEmailWithFault("REALSetPropValueDouble");
  EXPECT_EQ(Sent("Tue, 1 Jan 2019 10:00:00 +0200"), "2019-01-01T10:00:00");
}

TEST_F(Dates, ForWhichTheHostThrowsAreDroppedAndOthersAreMade) {
  StartEmailWithFault("REALGetPropValueDouble", {standin::Fault::Kind::kThrows, 1, 1});
  const auto& record =
      ParseHeader("Date: 1 Jan 2019 10:00:00 +0000\nReceived: a; 2 Jan 2019 10:00:00 +0000\n");
  EXPECT_EQ(DateText(record.SentDate), "nil");
  EXPECT_EQ(DateText(record.ReceivedDate), "2019-01-02T10:00:00");
  EXPECT_EQ(TakeRaised(), "");
}

TEST_F(Dates, ForWhichTheHostThrowsKeepAnEarlierDate) {
  StartEmailWithFault("REALGetPropValueDouble", {standin::Fault::Kind::kThrows, 2, 1});
  const auto& record =
      ParseHeader("Date: 1 Jan 2019 10:00:00 +0000\nDate: 2 Jan 2019 10:00:00 +0000\n");
  EXPECT_EQ(DateText(record.SentDate), "2019-01-01T10:00:00");
}

// The log lines for the fields of a date, without the lines for the constructors.
std::vector<std::string> FieldLines() {
  return {"day 1",    "month 2",  "year 2019", "hour 3",
          "minute 4", "second 5", "zone -130", "NewDate 2019, 2, 1, 3, 4, 5"};
}

std::string Lines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += Logged({line});
  return text;
}

std::string Pointer(void* pointer) {
  char text[32];
  std::snprintf(text, sizeof text, "%p", pointer);
  return text;
}

// 2019-02-01 03:04:05 in seconds since the host's epoch, 1904: 115 years with 29 leap days, and 31
// days.
constexpr std::int64_t kSeconds = (115 * 365 + 29 + 31) * kDay + 3 * 3'600 + 4 * 60 + 5;

std::vector<std::string> SecondsLines() {
  const auto number = [](std::int64_t value) { return std::to_string(value) + ".000000"; };
  return {"GetDateTotalSeconds " + number(kSeconds), "seconds " + number(kSeconds),
          "zoneOffset -5400.000000", "tm_gmtoff 3600",
          "seconds " + number(kSeconds + 5'400 + 3'600)};
}

std::vector<std::string> Joined(std::vector<std::string> lines,
                                const std::vector<std::string>& more) {
  lines.insert(lines.end(), more.begin(), more.end());
  return lines;
}

constexpr char kLoggedDate[] = "Date: Fri, 1 Feb 2019 03:04:05 -0130\n";

TEST_F(Dates, LogEachStepWithSevenArguments) {
  SetZone(kOneHourEast);
  const auto date = NewThing();
  const std::string f1 = Pointer(host::entry::REALLoadObjectMethod(
      date.get(), std::string(kSevenDeclared, sizeof kSevenDeclared - 2).c_str()));
  const LogCapture log;
  ParseHeader(kLoggedDate);
  EXPECT_EQ(log.Text(), Lines(Joined(Joined(FieldLines(), {"f1 " + f1}), SecondsLines())));
}

TEST_F(Dates, LogEachStepWithSixArguments) {
  SetZone(kOneHourEast);
  StartWithDates(standin::DateFlavour::kSixArguments);
  const auto date = NewThing();
  const std::string f2 = Pointer(host::entry::REALLoadObjectMethod(
      date.get(), std::string(kSixDeclared, sizeof kSixDeclared - 2).c_str()));
  const LogCapture log;
  ParseHeader(kLoggedDate);
  EXPECT_EQ(log.Text(),
            Lines(Joined(Joined(FieldLines(), {"f1 (nil)", "f2 " + f2}), SecondsLines())));
}

TEST_F(Dates, LogEachStepWithoutAConstructor) {
  SetZone(kOneHourEast);
  StartWithDates(standin::DateFlavour::kNoConstructor);
  const LogCapture log;
  ParseHeader(kLoggedDate);
  EXPECT_EQ(
      log.Text(),
      Lines(Joined(Joined(FieldLines(), {"f1 (nil)", "f2 (nil)", "Date Constructor 3 missing!?"}),
                   SecondsLines())));
}

TEST_F(Dates, LogNoZoneOffsetForZoneZeroAndNoConstructorWithoutADate) {
  standin::Capabilities capabilities;
  capabilities.unknown_classes.insert("Date");
  StartEmail(capabilities);
  const LogCapture log;
  ParseHeader("Date: 1 Feb 2019 03:04:05 +0000\n");
  EXPECT_EQ(log.Text(),
            Logged({"day 1", "month 2", "year 2019", "hour 3", "minute 4", "second 5", "zone 0",
                    "NewDate 2019, 2, 1, 3, 4, 5", "GetDateTotalSeconds 0.000000",
                    "seconds 0.000000", "tm_gmtoff 0", "seconds 0.000000"}));
}

TEST_F(Dates, LogWhatTheHostThrows) {
  StartEmailWithFault("PluginNewInstance", {standin::Fault::Kind::kThrows, 1, 1});
  const LogCapture log;
  ParseHeader(kLoggedDate);
  EXPECT_EQ(log.Text(),
            Lines(Joined(FieldLines(),
                         {"C++ Exception:  St13runtime_error, fault of PluginNewInstance"})));
}

TEST_F(Dates, LogAnExceptionWithoutATypeName) {
  StartEmailWithFault("PluginNewInstance", {standin::Fault::Kind::kThrowsInt, 1, 1});
  const LogCapture log;
  ParseHeader(kLoggedDate);
  EXPECT_EQ(log.Text(), Lines(Joined(FieldLines(), {"Unknown C++ exception in ParseDate."})));
}

}  // namespace
}  // namespace zqv::test
