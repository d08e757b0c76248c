// What the classes have in common from birth to death: filled from a parsed value or from a text,
// cleared when the host frees them.
//
// Each record type has two functions beside it, found by its type: Set(record, parsed), which fills
// a fresh record, and Clear(record), which gives back everything in the stated order.
#pragma once

#include <string>

#include "host/errors.h"
#include "host/record.h"
#include "host/text_reader.h"
#include "mime/limits.h"

namespace zqv::objects {

// Destructor of the class with this record; registered with the host.
template <class Record>
void DestroyRecord(abi::REALobject self) {
  if (Record* record = host::RecordOf<Record>(self)) Clear(*record);
}

// "Constructor" without arguments, which leaves every field nil; registered with the host.
inline void ConstructEmpty(abi::REALobject) {}

// Fills the record of `self` by `fill(record, utf8)` from a text [borrowed; nil is empty], up to
// its first NUL. Raises "RuntimeException" for a text that would give more entries than the limit.
template <class Record, class Fill>
void FillFromText(abi::REALobject self, abi::REALstring text, mime::CountEntries count, Fill fill) {
  host::Guard([=] {
    Record* record = host::RecordOf<Record>(self);
    if (record == nullptr) return;
    Clear(*record);
    const std::string utf8 = host::ReadUtf8(text);
    mime::AdmitText(count, utf8);
    fill(*record, utf8);
  });
}

// "Constructor(TextToParse as String)" of a class whose record is filled from what a `Parsed` of
// mime/addresses.h reads: any text within the limits is accepted, and whatever was parsed of it is
// stored. Registered with the host.
template <class Record, class Parsed>
void ConstructFromText(abi::REALobject self, abi::REALstring text) {
  FillFromText<Record>(self, text, &Parsed::CountMailboxes,
                       [](Record& record, const std::string& utf8) { Set(record, *Parsed(utf8)); });
}

// A new object filled from `parsed` by Set [new lock]; nil when the host cannot make one.
template <class Record, class... Parsed>
host::ObjectRef NewFilled(const Parsed&... parsed) {
  host::ObjectRef object = host::NewInstance<Record>();
  if (object) Set(*host::RecordOf<Record>(object.get()), parsed...);
  return object;
}

}  // namespace zqv::objects
