// The library for macOS whose path is compiled in, and the C++ library that it needs.
#pragma once

#include "abi/records.h"
#include "tests/macho/image.h"

namespace zqv::macho {

// Loads the library's file and runs its initialisers. The destructor runs the functions that the
// library registered for its end, and unloads it. The C++ library is shared, and stays loaded.
class Plugin {
 public:
  Plugin();
  ~Plugin();
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  // The exported function.
  abi::REALproc entry() const;

 private:
  Image image_;
};

}  // namespace zqv::macho
