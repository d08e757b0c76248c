// The dates on which a message was sent and received, as Date objects of the host in local time.
#pragma once

#include <cstdint>
#include <optional>

#include "host/ref.h"
#include "mime/header.h"
#include "objects/records.h"

namespace zqv::objects {

// How far local time is ahead of UTC, in seconds. Determined at the first use and cached, so that
// all dates of a message use the same value. QUIRK: the offset is today's, not that of the
// message's date; when daylight saving time began or ended in between, dates differ by its amount.
// Part of the interface's contract; changing it is a major version. Test:
// Dates.UsesTheOffsetOfTheMoment.
class LocalOffset {
 public:
  // Nullopt when the system cannot tell local time.
  std::optional<std::int64_t> Get();

 private:
  std::optional<std::int64_t> offset_;
  bool is_known_ = false;
};

// Stores the dates of a header's Date and Received fields in `record`. When a header has several,
// the last Date and the last Received with "; " in it are used. Unparsable text still gives a Date,
// with the numbers that email::ReadDateText returns, mostly 0. A field whose parsing throws is
// skipped. No host exception is raised.
void ParseDate(MimeEntityClassData& record, const mime::Header& header, LocalOffset& local_offset);

// Creates a Date of the host; nil when the host cannot make one. The host decides what a number out
// of range means, such as day 31 in June. [new lock]
host::ObjectRef NewDate(std::int64_t year, std::int64_t month, std::int64_t day, std::int64_t hour,
                        std::int64_t minute, std::int64_t second);

// Converts a time zone given as the number hhmm, such as -130 for -01:30, to seconds ahead of UTC.
double ZoneOffset(int zone);

}  // namespace zqv::objects
