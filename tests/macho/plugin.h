// The library for macOS that is compiled into these tests, with the C++ library that is compiled in
// beside it.
#pragma once

#include "abi/records.h"
#include "tests/macho/image.h"

namespace zqv::macho {

// Loads the library's file and runs its initialisers. At the end what it has registered runs, and
// the library is gone; the C++ library, which all share, stays.
class Plugin {
 public:
  Plugin();
  ~Plugin();
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  // The one function that it exports.
  abi::REALproc entry() const;

 private:
  Image image_;
};

}  // namespace zqv::macho
