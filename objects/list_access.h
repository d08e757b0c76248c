// Getters and list members, as templates on the slot of a record that they read. A list has four
// members: the array, the array as a Variant, one element, and the number of elements.
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

// The slot in the record of `self`; null when `self` is nil or its class was not registered.
template <auto Field>
auto* SlotOf(abi::REALobject self) {
  using Record = decltype(RecordOfMember(Field));
  Record* record = host::RecordOf<Record>(self);
  return record != nullptr ? &(record->*Field) : nullptr;
}

}  // namespace internal

// A getter: the value of the slot, or nil. [new lock for the application]
template <auto Field>
auto GetStored(abi::REALobject self) {
  return host::Guard([self] {
    const auto* slot = internal::SlotOf<Field>(self);
    return slot != nullptr ? slot->Share() : decltype(slot->Share())();
  });
}

// The members of one list. Each `self` is [borrowed].
template <auto Field>
struct ListAccess {
  // The array itself, not a copy; nil when there is none. [new lock for the application]
  static abi::REALarray Whole(abi::REALobject self) { return GetStored<Field>(self); }
  static abi::REALobject Variant(abi::REALobject self) {
    return host::AsObject(GetStored<Field>(self));
  }

  // The element at `index`, counted from 0. Raises an OutOfBoundsException and returns nil when
  // there is none; nil without an exception when there is no array. [new lock for the application]
  static abi::REALobject At(abi::REALobject self, abi::RBInteger index) {
    return host::Guard([=] { return host::REALGetArrayObject(Array(self), index); });
  }

  // The number of elements; 0 when there is no array.
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
