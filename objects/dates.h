// When a message was sent and received, as the host's Date objects in local time.
#pragma once

#include <cstdint>
#include <optional>

#include "host/ref.h"
#include "mime/header.h"
#include "objects/records.h"

namespace zqv::objects {

// Seconds that this machine's local time is ahead of UTC, asked for once for all dates of a
// message. QUIRK: now, not at the message's date, so that across a change of daylight saving time
// the result is off by the difference. Part of the interface's contract; changing it is a major
// version. Test: Dates.UsesTheOffsetOfTheMoment.
class LocalOffset {
 public:
  // Nothing when the local time cannot be had.
  std::optional<std::int64_t> Get();

 private:
  std::optional<std::int64_t> offset_;
  bool is_known_ = false;
};

// Stores the dates of the header's Date and Received fields in `record`. With several, the last
// Date wins, and the last Received that holds "; ". A text that is no date gives one all the same,
// of the zeros that were read for it; only one whose reading throws is skipped. Raises nothing.
void ParseDate(MimeEntityClassData& record, const mime::Header& header, LocalOffset& local_offset);

// A new Date of the host with these fields [new lock]; nil when the host cannot make one. Fields
// out of range roll over as the host has it.
host::ObjectRef NewDate(std::int64_t year, std::int64_t month, std::int64_t day, std::int64_t hour,
                        std::int64_t minute, std::int64_t second);

// Seconds east of UTC of a zone written as a number of the form hhmm, such as -130.
double ZoneOffset(int zone);

}  // namespace zqv::objects
