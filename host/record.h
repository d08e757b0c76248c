// From an instance to its record. The host lays a class's record somewhere inside each instance and
// writes the offset into the class definition when it registers the class, so every record type is
// bound to one definition, at registration.
//
// A subclass without data of its own uses the record of its super class, found through the super
// class's definition.
#pragma once

#include "abi/records.h"
#include "host/ref.h"

namespace zqv::host {

// The definition whose record is `Record`; null until BindRecord.
template <class Record>
inline const abi::REALclassDefinition* g_record_definition = nullptr;

// Names the definition that says where `Record` lies. Keeps the pointer.
template <class Record>
void BindRecord(const abi::REALclassDefinition* definition) {
  g_record_definition<Record> = definition;
}

// The record inside `instance` [borrowed: it lives as long as the instance]; null when the instance
// is nil or the class was never registered.
template <class Record>
Record* RecordOf(abi::REALobject instance) {
  const abi::REALclassDefinition* definition = g_record_definition<Record>;
  if (instance == nullptr || definition == nullptr) return nullptr;
  return reinterpret_cast<Record*>(reinterpret_cast<char*>(instance) + definition->forSystemUse);
}

// A new instance of the class whose record is `Record` [new lock], without running a constructor;
// nil when the class was never registered or the host cannot make one.
template <class Record>
ObjectRef NewInstance() {
  const abi::REALclassDefinition* definition = g_record_definition<Record>;
  if (definition == nullptr) return {};
  return ObjectRef::Adopt(entry::PluginNewInstance(definition->name));
}

}  // namespace zqv::host
