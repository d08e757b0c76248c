// Constructors and destructors that the classes share, as templates.
//
// A class that applications can make has an overload of Set(record, parsed), which fills an empty
// record from a value that was parsed.
#pragma once

#include <string>
#include <tuple>

#include "host/errors.h"
#include "host/record.h"
#include "host/text_reader.h"
#include "mime/limits.h"
#include "objects/records.h"

namespace zqv::objects {

// Gives back all locks that the record owns, in the order of its kSlots, and sets its slots to nil.
template <class Record>
void ClearSlots(Record& record) {
  std::apply([&](auto... slot) { ((record.*slot).Clear(), ...); }, kSlots<Record>);
}
template <class Record>
void Clear(Record& record) {
  ClearSlots(record);
}
void Clear(MimeBodyClassData& record);  // gives its parts back without recursion (body.cc)

// The destructor of the class with this record, registered with the host.
template <class Record>
void DestroyRecord(abi::REALobject self) {
  if (Record* record = host::RecordOf<Record>(self)) Clear(*record);
}

// The constructor without arguments, registered with the host. All fields stay nil.
inline void ConstructEmpty(abi::REALobject) {}

// Clears the record of `self` and calls fill(record, utf8) with `text` [borrowed; nil is empty] as
// UTF-8, up to its first NUL. Raises a RuntimeException when `count` (may be null) finds more than
// mime::kMostEntries entries in the text.
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

// The constructor with the declaration "Constructor(TextToParse as String)", registered with the
// host, for a class whose record is filled from a `Parsed`, one of the classes of mime/addresses.h.
// Accepts any text within the limits.
template <class Record, class Parsed>
void ConstructFromText(abi::REALobject self, abi::REALstring text) {
  FillFromText<Record>(self, text, &Parsed::CountMailboxes,
                       [](Record& record, const std::string& utf8) { Set(record, *Parsed(utf8)); });
}

// Creates an object and fills its record by Set(record, parsed...); nil when the host cannot make
// one. [new lock]
template <class Record, class... Parsed>
host::ObjectRef NewFilled(const Parsed&... parsed) {
  host::ObjectRef object = host::NewInstance<Record>();
  if (object) Set(*host::RecordOf<Record>(object.get()), parsed...);
  return object;
}

}  // namespace zqv::objects
