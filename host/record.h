// Finds the record inside an instance. The host reserves space for a class's record inside each
// instance, and stores the record's offset in the class definition when the class is registered. So
// each record type is bound to one class definition, at registration.
//
// A subclass without data of its own uses the record, and the definition, of its super class.
#pragma once

#include "abi/records.h"
#include "host/ref.h"

namespace zqv::host {

// The class definition that `Record` is bound to; null before BindRecord. Set once, in
// REALPluginMain.
template <class Record>
inline const abi::REALclassDefinition* g_record_definition = nullptr;

// Binds `Record` to a class definition. [borrowed: for the life of the process]
template <class Record>
void BindRecord(const abi::REALclassDefinition* definition) {
  g_record_definition<Record> = definition;
}

// The record inside `instance` [borrowed: as long as the instance lives]. Null when the instance is
// nil or the class was not registered.
template <class Record>
Record* RecordOf(abi::REALobject instance) {
  const abi::REALclassDefinition* definition = g_record_definition<Record>;
  if (instance == nullptr || definition == nullptr) return nullptr;
  return reinterpret_cast<Record*>(reinterpret_cast<char*>(instance) + definition->forSystemUse);
}

// Creates an instance of the class with this record [new lock]. No constructor runs; the record is
// filled with zeros. Nil when the class was not registered or the host cannot make one.
template <class Record>
ObjectRef NewInstance() {
  const abi::REALclassDefinition* definition = g_record_definition<Record>;
  if (definition == nullptr) return {};
  return ObjectRef::Adopt(entry::PluginNewInstance(definition->name));
}

}  // namespace zqv::host
