#include "objects/dates.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <typeinfo>

#include "base/log.h"
#include "email/date_text.h"
#include "host/platform.h"
#include "mime/field_name.h"

namespace zqv::objects {
namespace {

using host::ObjectRef;

using SixArguments = void (*)(abi::REALobject, abi::RBInteger year, abi::RBInteger month,
                              abi::RBInteger day, abi::RBInteger hour, abi::RBInteger minute,
                              abi::RBInteger second);
using SevenArguments = void (*)(abi::REALobject, abi::RBInteger year, abi::RBInteger month,
                                abi::RBInteger day, abi::RBInteger hour, abi::RBInteger minute,
                                abi::RBInteger second, double gmt_offset);

// The declarations by which the constructors of the host's Date are looked up. They must match
// exactly.
constexpr char kSevenArguments[] =
    "Constructor(Year as Integer, Month as Integer, Day as Integer, Hour as Integer, "
    "Minute as Integer, Second as Integer, GMTOffset as Double)";
constexpr char kSixArguments[] =
    "Constructor(Year as Integer, Month as Integer, Day as Integer, hour as Integer, "
    "minute as Integer, second as Integer)";

// The value of GMTOffset that tells the host that no offset is given.
constexpr double kNoOffset = -10000.0;

email::DateFields ReadFields(std::string_view text) {
  const email::DateFields fields = email::ReadDateText(text);
  ZQV_LOG("day %d", static_cast<int>(fields.day));
  ZQV_LOG("month %d", static_cast<int>(fields.month));
  ZQV_LOG("year %d", static_cast<int>(fields.year));
  ZQV_LOG("hour %d", static_cast<int>(fields.hour));
  ZQV_LOG("minute %d", static_cast<int>(fields.minute));
  ZQV_LOG("second %d", static_cast<int>(fields.second));
  ZQV_LOG("zone %d", fields.zone);
  return fields;
}

// Sets the properties of a Date one by one. QUIRK: the day is set to 3 before year and month are
// set, because otherwise the day of the new Date, such as 31, may be invalid in that month. Test:
// Dates.PropertyPathSetsTheDayTo3First.
void SetProperties(abi::REALobject date, const email::DateFields& fields) {
  const struct {
    const char* name;
    std::int64_t value;
  } steps[] = {{"Day", 3},
               {"Year", fields.year},
               {"Month", fields.month},
               {"Day", fields.day},
               {"Hour", fields.hour},
               {"Minute", fields.minute},
               {"Second", fields.second}};
  for (const auto& step : steps) host::entry::REALSetPropValueInteger(date, step.name, step.value);
}

// Converts a date text to a Date in local time. A Date with the numbers of the text is made first;
// then its TotalSeconds are changed: minus the zone of the text, plus the offset of local time.
ObjectRef ConvertDate(std::string_view text, LocalOffset& local_offset) {
  const email::DateFields fields = ReadFields(text);
  ObjectRef date =
      NewDate(fields.year, fields.month, fields.day, fields.hour, fields.minute, fields.second);
  double seconds = 0.0;
  if (date) host::entry::REALGetPropValueDouble(date.get(), "TotalSeconds", &seconds);
  ZQV_LOG("GetDateTotalSeconds %f", seconds);
  ZQV_LOG("seconds %f", seconds);
  if (fields.zone != 0) {
    const double offset = ZoneOffset(fields.zone);
    ZQV_LOG("zoneOffset %f", offset);
    seconds -= offset;
  }
  if (const std::optional<std::int64_t> offset = local_offset.Get()) {
    ZQV_LOG("tm_gmtoff %lld", static_cast<long long>(*offset));
    seconds += static_cast<double>(*offset);
  }
  ZQV_LOG("seconds %f", seconds);
  if (date) host::entry::REALSetPropValueDouble(date.get(), "TotalSeconds", seconds);
  return date;
}

void ParseField(MimeEntityClassData& record, const mime::Header& header, std::size_t index,
                LocalOffset& local_offset) {
  const mime::Field& field = header[index];
  if (field.known == mime::FieldName::kDate) {
    record.SentDate.Put(ConvertDate(field.value, local_offset));
  }
  if (field.known != mime::FieldName::kReceived) return;
  if (const std::optional<std::string_view> date = email::ReceivedDateText(field.value)) {
    record.ReceivedDate.Put(ConvertDate(*date, local_offset));
  }
}

}  // namespace

std::optional<std::int64_t> LocalOffset::Get() {
  if (!is_known_) {
    offset_ = host::LocalTimeOffset();
    is_known_ = true;
  }
  return offset_;
}

double ZoneOffset(int zone) {
  const int hours = zone / 100;
  const int minutes = zone - 100 * hours;
  return 3600.0 * hours + 60.0 * minutes;
}

ObjectRef NewDate(std::int64_t year, std::int64_t month, std::int64_t day, std::int64_t hour,
                  std::int64_t minute, std::int64_t second) {
  ZQV_LOG("NewDate %lld, %lld, %lld, %lld, %lld, %lld", static_cast<long long>(year),
          static_cast<long long>(month), static_cast<long long>(day), static_cast<long long>(hour),
          static_cast<long long>(minute), static_cast<long long>(second));
  auto date = ObjectRef::Adopt(host::entry::PluginNewInstance("Date"));
  if (!date) return {};
  void* seven = host::entry::REALLoadObjectMethod(date.get(), kSevenArguments);
  ZQV_LOG("f1 %p", seven);
  if (seven != nullptr) {
    host::ProcedureAt<SevenArguments>(seven)(date.get(), year, month, day, hour, minute, second,
                                             kNoOffset);
    return date;
  }
  void* six = host::entry::REALLoadObjectMethod(date.get(), kSixArguments);
  ZQV_LOG("f2 %p", six);
  if (six != nullptr) {
    host::ProcedureAt<SixArguments>(six)(date.get(), year, month, day, hour, minute, second);
    return date;
  }
  ZQV_LOG("Date Constructor 3 missing!?");
  SetProperties(date.get(), {year, month, day, hour, minute, second, 0});
  return date;
}

void ParseDate(MimeEntityClassData& record, const mime::Header& header, LocalOffset& local_offset) {
  if (!header.Has(mime::FieldName::kDate) && !header.Has(mime::FieldName::kReceived)) return;
  for (std::size_t i = 0; i < header.size(); ++i) {
    try {
      ParseField(record, header, i, local_offset);
    } catch (const std::exception& e) {
      ZQV_LOG("C++ Exception:  %s, %s", typeid(e).name(), e.what());
    } catch (...) {
      ZQV_LOG("Unknown C++ exception in ParseDate.");
    }
  }
}

}  // namespace zqv::objects
