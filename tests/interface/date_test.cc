// The dates of a message in several time zones, and in hosts that offer different ways to make a
// date.
//
// The library uses the machine's present offset from UTC, so zones without summer time are used
// here.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

#include "tests/interface/child.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"
#include "tests/support/zone.h"

namespace zqv::interface_test {
namespace {

using standin::DateFlavour;

constexpr const char* kUtc = "UTC0";
constexpr const char* kOneHourEast = "<+01>-1";
constexpr const char* kIndia = "IST-5:30";        // five and a half hours east
constexpr const char* kNewfoundland = "NST3:30";  // three and a half hours west

class Dates : public InterfaceTest {};

// Runs `body` in a session of its own, in this time zone.
template <typename Body>
void InZone(const char* zone, Body body, const Capabilities& capabilities = {}) {
  LoadLibraryFile();
  if (!test::SetZone(zone)) return;
  InChild(zone, [&] {
    Session session(capabilities);
    body(session.host());
  });
}

// Shows a date property with the host's Date; "nil" for nil.
std::string DateOf(const Object& message, const char* property) {
  const Object date = ObjectOf(Get(message, property));
  if (date.IsNil()) return "nil";
  const auto field = [&](const char* name) {
    return static_cast<long long>(std::get<std::int64_t>(Get(date, name)));
  };
  std::array<char, 128> text{};
  std::snprintf(text.data(), text.size(), "%04lld-%02lld-%02lld %02lld:%02lld:%02lld",
                field("Year"), field("Month"), field("Day"), field("Hour"), field("Minute"),
                field("Second"));
  return text.data();
}

std::string Sent(const std::string& date) {
  return DateOf(Parse("Date: " + date + "\n\nText\n"), "Date");
}
std::string Received(const std::string& fields) {
  return DateOf(Parse(fields + "\nText\n"), "ReceivedDate");
}

// A date field, and the expected property in four zones: UTC, one hour east, five and a half hours
// east, three and a half hours west.
struct ZoneRow {
  const char* date;
  const char* utc;
  const char* one_hour_east;
  const char* india;
  const char* newfoundland;
};

constexpr ZoneRow kZoneRows[] = {
    {"Tue, 1 Jan 2019 10:00:00 +0200", "2019-01-01 08:00:00", "2019-01-01 09:00:00",
     "2019-01-01 13:30:00", "2019-01-01 04:30:00"},
    {"Tue, 1 Jan 2019 10:00:00 +0000", "2019-01-01 10:00:00", "2019-01-01 11:00:00",
     "2019-01-01 15:30:00", "2019-01-01 06:30:00"},
    {"Tue, 1 Jan 2019 10:00:00 GMT", "2019-01-01 10:00:00", "2019-01-01 11:00:00",
     "2019-01-01 15:30:00", "2019-01-01 06:30:00"},
    {"Tue, 1 Jan 2019 10:00:00", "2019-01-01 10:00:00", "2019-01-01 11:00:00",
     "2019-01-01 15:30:00", "2019-01-01 06:30:00"},
    {"Tue, 1 Jan 2019 10:00:00 -0130", "2019-01-01 11:30:00", "2019-01-01 12:30:00",
     "2019-01-01 17:00:00", "2019-01-01 08:00:00"},
    // Zones of half an hour and of a quarter of an hour.
    {"Tue, 1 Jan 2019 10:00:00 -0030", "2019-01-01 10:30:00", "2019-01-01 11:30:00",
     "2019-01-01 16:00:00", "2019-01-01 07:00:00"},
    {"Tue, 1 Jan 2019 10:00:00 +0545", "2019-01-01 04:15:00", "2019-01-01 05:15:00",
     "2019-01-01 09:45:00", "2019-01-01 00:45:00"},
    // The year changes, in both directions.
    {"Mon, 31 Dec 2018 22:00:05 -0500", "2019-01-01 03:00:05", "2019-01-01 04:00:05",
     "2019-01-01 08:30:05", "2018-12-31 23:30:05"},
    {"Tue, 1 Jan 2019 00:30:00 +0530", "2018-12-31 19:00:00", "2018-12-31 20:00:00",
     "2019-01-01 00:30:00", "2018-12-31 15:30:00"},
    // The day after 28 February is the 29th in 2020 and 1 March in 2019.
    {"Fri, 28 Feb 2020 23:30:00 +0000", "2020-02-28 23:30:00", "2020-02-29 00:30:00",
     "2020-02-29 05:00:00", "2020-02-28 20:00:00"},
    {"Thu, 28 Feb 2019 23:30:00 +0000", "2019-02-28 23:30:00", "2019-03-01 00:30:00",
     "2019-03-01 05:00:00", "2019-02-28 20:00:00"},
};

struct Zone {
  const char* name;
  const char* ZoneRow::*expected;
};

constexpr Zone kZones[] = {
    {kUtc, &ZoneRow::utc},
    {kOneHourEast, &ZoneRow::one_hour_east},
    {kIndia, &ZoneRow::india},
    {kNewfoundland, &ZoneRow::newfoundland},
};

TEST_F(Dates, ShowTheTimeOfTheMessageInLocalTime) {
  for (const Zone& zone : kZones) {
    InZone(zone.name, [&](Host&) {
      for (const ZoneRow& row : kZoneRows) {
        EXPECT_EQ(Sent(row.date), row.*zone.expected) << row.date;
        EXPECT_EQ(Received(std::string("Received: from a by b; ") + row.date + "\n"),
                  row.*zone.expected)
            << row.date;
      }
    });
  }
}

Capabilities WithDates(DateFlavour flavour) {
  Capabilities capabilities;
  capabilities.date_flavour = flavour;
  return capabilities;
}

// A new date of this host is the 31st of a month. Without a constructor, setting a shorter month
// would roll over into the next one if the day were not set to 3 first.
TEST_F(Dates, AreTheSameForEachWayToMakeADate) {
  for (const DateFlavour flavour :
       {DateFlavour::kSevenArguments, DateFlavour::kSixArguments, DateFlavour::kNoConstructor}) {
    for (const Zone& zone : kZones) {
      InZone(
          zone.name,
          [&](Host&) {
            for (const ZoneRow& row : kZoneRows) {
              EXPECT_EQ(Sent(row.date), row.*zone.expected) << row.date;
            }
          },
          WithDates(flavour));
    }
  }
}

TEST_F(Dates, AreSetFieldByFieldWithoutAConstructor) {
  InZone(
      kUtc,
      [](Host& host) {
        EXPECT_EQ(Sent("Thu, 28 Feb 2019 04:05:06 +0000"), "2019-02-28 04:05:06");
        EXPECT_EQ(host.CallCount("REALSetPropValueInteger"), 7U)
            << "six fields, and the day a second time";
        EXPECT_EQ(Sent("Tue, 30 Apr 2019 04:05:06 +0000"), "2019-04-30 04:05:06");
        EXPECT_EQ(Sent("Tue, 31 Dec 2019 23:59:59 +0000"), "2019-12-31 23:59:59");
      },
      WithDates(DateFlavour::kNoConstructor));
}

TEST_F(Dates, AreMadeWithTheConstructorThatThereIs) {
  for (const DateFlavour flavour : {DateFlavour::kSevenArguments, DateFlavour::kSixArguments}) {
    InZone(
        kUtc,
        [](Host& host) {
          EXPECT_EQ(Sent("Thu, 28 Feb 2019 04:05:06 +0000"), "2019-02-28 04:05:06");
          EXPECT_EQ(host.CallCount("REALSetPropValueInteger"), 0U);
        },
        WithDates(flavour));
  }
}

TEST_F(Dates, AreNilInAHostWithoutThem) {
  Capabilities capabilities;
  capabilities.unknown_classes.insert("Date");
  InZone(
      kOneHourEast,
      [](Host&) {
        EXPECT_EQ(Sent("Tue, 1 Jan 2019 10:00:00 +0200"), "nil");
        EXPECT_EQ(Received("Received: a; Tue, 1 Jan 2019 10:00:00 +0200\n"), "nil");
      },
      capabilities);
}

TEST_F(Dates, OfReceivedFollowTheFirstSemicolonAndBlank) {
  InZone(kUtc, [](Host&) {
    const std::string date = "Tue, 1 Jan 2019 10:00:00 +0000\n";
    EXPECT_EQ(Received("Received: from a by b; " + date), "2019-01-01 10:00:00");
    EXPECT_EQ(Received("Received: from a by b;\n\t" + date), "2019-01-01 10:00:00")
        << "a folded line counts as a blank";
    EXPECT_EQ(Received("Received: from a by b;" + date), "nil") << "no blank";
    EXPECT_EQ(Received("Received: from a by b " + date), "nil") << "no semicolon";
    EXPECT_NE(Received("Received: from a (b; c); " + date), "2019-01-01 10:00:00");
  });
}

TEST_F(Dates, OfTheLowestReceivedWithADateWins) {
  InZone(kUtc, [](Host&) {
    const std::string upper = "Received: from c by d; Wed, 2 Jan 2019 10:00:00 +0000\n";
    const std::string lower = "Received: from a by b; Tue, 1 Jan 2019 10:00:00 +0000\n";
    EXPECT_EQ(Received(upper + lower), "2019-01-01 10:00:00");
    EXPECT_EQ(Received(lower + upper), "2019-01-02 10:00:00")
        << "the lowest field in the header, whatever its date";
    EXPECT_EQ(Received(upper + "Received: from a by b\n"), "2019-01-02 10:00:00");
  });
}

TEST_F(Dates, OfTheLowestDateFieldWins) {
  InZone(kUtc, [](Host&) {
    EXPECT_EQ(Sent("Wed, 2 Jan 2019 10:00:00 +0000\nDATE: Tue, 1 Jan 2019 10:00:00 +0000"),
              "2019-01-01 10:00:00");
  });
}

TEST_F(Dates, AreNilWithoutTheirFields) {
  InZone(kUtc, [](Host&) {
    const Object message = Parse("X-Date: Tue, 1 Jan 2019 10:00:00 +0000\n\nText\n");
    EXPECT_EQ(DateOf(message, "Date"), "nil");
    EXPECT_EQ(DateOf(message, "ReceivedDate"), "nil");
    const Object sent = Parse("Date: Tue, 1 Jan 2019 10:00:00 +0000\n\nText\n");
    EXPECT_EQ(DateOf(sent, "ReceivedDate"), "nil");
    const Object received = Parse("Received: a; Tue, 1 Jan 2019 10:00:00 +0000\n\nText\n");
    EXPECT_EQ(DateOf(received, "Date"), "nil");
  });
}

TEST_F(Dates, AreMadeOnceAndReturnedEachTime) {
  InZone(kUtc, [](Host&) {
    const Object message = Parse("Date: Tue, 1 Jan 2019 10:00:00 +0000\n\nText\n");
    const Object first = ObjectOf(Get(message, "Date"));
    EXPECT_TRUE(first == ObjectOf(Get(message, "Date")));
    EXPECT_EQ(first.locks(), 2) << "one held by the message, one by this test";
  });
}

TEST_F(Dates, OutliveTheirMessage) {
  InZone(kUtc, [](Host&) {
    Object date;
    {
      const Object message = Parse("Date: Tue, 1 Jan 2019 10:00:00 +0000\n\nText\n");
      date = ObjectOf(Get(message, "Date"));
    }
    EXPECT_EQ(date.locks(), 1);
    EXPECT_EQ(std::get<std::int64_t>(Get(date, "Hour")), 10);
  });
}

// The number of live objects for a message with these header fields.
std::int64_t ObjectsWith(Host& host, const std::string& fields) {
  const Object message = Parse(fields + "\nText\n");
  return host.ledger().Live().objects;
}

TEST_F(Dates, ThatAreReplacedAreGivenBack) {
  InZone(kUtc, [](Host& host) {
    const std::string date = "Tue, 1 Jan 2019 10:00:00 +0000\n";
    const auto fields = [&](const std::string& sent, const std::string& received) {
      return "Date: " + date + sent + ": " + date + sent + ": " + date + "Received: a; " + date +
             received + ": b; " + date;
    };
    const std::int64_t of_two = ObjectsWith(host, fields("X-Date", "X-Received"));
    EXPECT_EQ(ObjectsWith(host, fields("Date", "Received")), of_two);
    EXPECT_EQ(host.ledger().Live().objects, 0);
  });
}

std::string WithAttachedMessage(const std::string& fields, const std::string& inner_fields) {
  return fields + "Content-Type: multipart/mixed; boundary=b\n\n--b\n" +
         "Content-Type: message/rfc822\n\n" + inner_fields + "\nInner\n--b--\n";
}

// The dates of an attached message belong to its own header and to the entity of the attached
// message, not to the message around it.
TEST_F(Dates, OfAnAttachedMessageAreItsOwn) {
  InZone(kUtc, [](Host& host) {
    const std::string inner =
        "Date: Wed, 2 Jan 2019 10:00:00 +0000\nReceived: a; Wed, 2 Jan 2019 11:00:00 +0000\n";
    const Object without = Parse(WithAttachedMessage("", inner));
    EXPECT_EQ(DateOf(without, "Date"), "nil");
    EXPECT_EQ(DateOf(without, "ReceivedDate"), "nil");
    const Object with = Parse(WithAttachedMessage(
        "Date: Tue, 1 Jan 2019 10:00:00 +0000\nReceived: b; Tue, 1 Jan 2019 11:00:00 +0000\n",
        inner));
    EXPECT_EQ(DateOf(with, "Date"), "2019-01-01 10:00:00");
    EXPECT_EQ(DateOf(with, "ReceivedDate"), "2019-01-01 11:00:00");
    EXPECT_EQ(host.CallCount("REALSetPropValueDouble"), 6U)
        << "two dates in the first message, four in the second";
  });
}

// A message parsed from the data of an attachment has its date in local time.
TEST_F(Dates, OfAMessageSentAsAFile) {
  InZone(kIndia, [](Host&) {
    const std::string inner = "Date: Wed, 2 Jan 2019 10:00:00 +0200\n\nInner\n";
    const Object outer = Parse(
        "Content-Type: multipart/mixed; boundary=b\n\n--b\nContent-Type: application/x\n"
        "Content-Transfer-Encoding: 7bit\n\n" +
        inner + "\n--b--\n");
    const Object record = ObjectOf(Call(outer, "Attachments", 0));
    const Object message =
        standin::Construct("MimeEmailZQV", "Constructor(Content as string)", Get(record, "Data"));
    EXPECT_EQ(DateOf(message, "Date"), "2019-01-02 13:30:00");
  });
}

// The property of a date that cannot be read is not specified, but nothing is raised and the rest
// is parsed.
TEST_F(Dates, ThatCannotBeReadRaiseNothing) {
  InZone(kOneHourEast, [](Host&) {
    for (const char* date : {"", " ", "yesterday", "99999999 Foo 99999999 99:99:99 +9999",
                             "2019-01-01T10:00:00Z", "\xFF\xFE", ",,,,", "-1 Jan -1 -1:-1:-1 -1"}) {
      const Constructed constructed = ConstructFromString(
          std::string("Date: ") + date + "\nReceived: a; " + date + "\nSubject: Hi\n\nText\n");
      EXPECT_EQ(constructed.raised, "") << date;
      EXPECT_EQ(ShowProperty(constructed.message, "Subject"), "0x600 Hi") << date;
    }
  });
}

}  // namespace
}  // namespace zqv::interface_test
