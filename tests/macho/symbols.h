// Tables of replacements for symbols of macOS's libraries.
#pragma once

#include <cstddef>
#include <string>

namespace zqv::macho {

struct Symbol {
  const char* name;  // as in the file for macOS, with an underscore first
  void* address;
};

template <class Function>
void* At(Function* function) {
  return reinterpret_cast<void*>(function);
}

// The address for a name; null when the table does not have it.
template <std::size_t kCount>
void* FindSymbol(const Symbol (&symbols)[kCount], const std::string& name) {
  for (const Symbol& symbol : symbols) {
    if (name == symbol.name) return symbol.address;
  }
  return nullptr;
}

}  // namespace zqv::macho
