// When a message was sent and received, as the host's Date objects in local time.
#pragma once

#include <cstdint>

#include "host/ref.h"
#include "mime/header.h"
#include "objects/records.h"

namespace zqv::objects {

// Stores the dates of the header's Date and Received fields in `record`. With several, the last
// Date wins, and the last Received that holds "; ". A text that is no date gives one all the same,
// of the zeros that were read for it; only one whose reading throws is skipped. Raises nothing.
void ParseDate(MimeEntityClassData& record, const mime::Header& header);

// A new Date of the host with these fields [new lock]; nil when the host cannot make one. Fields
// out of range roll over as the host has it.
host::ObjectRef NewDate(std::int64_t year, std::int64_t month, std::int64_t day, std::int64_t hour,
                        std::int64_t minute, std::int64_t second);

// Seconds east of UTC of a zone written as a number of the form hhmm, such as -130.
double ZoneOffset(int zone);

}  // namespace zqv::objects
