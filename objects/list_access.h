// What applications call on a stored field: the value itself, or the members that hand out a list
// as a whole, as a Variant, element by element and by number. One pattern for every class.
#pragma once

#include "abi/records.h"
#include "host/arrays.h"
#include "host/errors.h"
#include "host/record.h"
#include "objects/records.h"

namespace zqv::objects {

namespace internal {

template <class Record, class Traits>
Record RecordOfMember(host::Slot<Traits> Record::*);

// The slot of `self`, or null when there is no record.
template <auto Field>
auto* SlotOf(abi::REALobject self) {
  using Record = decltype(RecordOfMember(Field));
  Record* record = host::RecordOf<Record>(self);
  return record != nullptr ? &(record->*Field) : nullptr;
}

}  // namespace internal

// Getter of a stored field: what it holds with one lock for the application, or nil.
template <auto Field>
auto GetStored(abi::REALobject self) {
  return host::Guard([self] {
    const auto* slot = internal::SlotOf<Field>(self);
    return slot != nullptr ? slot->Share() : decltype(slot->Share())();
  });
}

// The members of one list. The array is the record's own, never a copy.
template <auto Field>
struct ListAccess {
  // The array with one lock for the application; nil when there is none.
  static abi::REALarray Whole(abi::REALobject self) { return GetStored<Field>(self); }
  static abi::REALobject Variant(abi::REALobject self) {
    return host::AsObject(GetStored<Field>(self));
  }

  // The element with one lock for the application; raises when `index` is outside.
  static abi::REALobject At(abi::REALobject self, abi::RBInteger index) {
    return host::Guard([=] { return host::REALGetArrayObject(Array(self), index); });
  }

  // 0 when there is no array.
  static abi::RBInteger Count(abi::REALobject self) {
    return host::Guard([=] { return host::ArrayCount(Array(self)); });
  }

 private:
  static abi::REALarray Array(abi::REALobject self) {
    const auto* slot = internal::SlotOf<Field>(self);
    return slot != nullptr ? slot->get() : nullptr;
  }
};

}  // namespace zqv::objects
