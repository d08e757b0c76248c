// Loads the file of a built plug-in as a host does, and calls its one exported function.
#pragma once

#include <string>

#include "abi/records.h"
#include "standin/host.h"

namespace zqv::standin {

// Opens a file and returns its exported function; null when it exports none.
using Opener = abi::REALproc (*)(const std::string& path);

// Replaces the system's loader by `opener`. Tests use it to run libraries that were built for other
// systems.
void UseOpener(Opener opener);

class Library {
 public:
  // Loads the file. All its symbols are bound at once and are not visible to other libraries. It
  // stays loaded until the process ends. Throws std::runtime_error, naming file and reason, when
  // the file cannot be loaded or does not export "REALPluginMain".
  explicit Library(const std::string& path);

  // Calls the exported function with the host's resolver, then checks the registered classes.
  void Enter(const Host& host) const;
  // Calls the exported function with any resolver. Null is allowed.
  void EnterWith(abi::Resolver resolver) const;

 private:
  abi::REALproc main_ = nullptr;
};

}  // namespace zqv::standin
