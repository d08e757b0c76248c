// Loads a built plug-in file as a host does and runs its one exported function.
#pragma once

#include <string>

#include "abi/records.h"
#include "standin/host.h"

namespace zqv::standin {

// How a file becomes its exported function; null when it exports none.
using Opener = abi::REALproc (*)(const std::string& path);

// From now on files are opened in this way instead of by the system's loader: for tests that run
// libraries made for other systems.
void UseOpener(Opener opener);

class Library {
 public:
  // Loads the file with all its symbols bound at once and kept to itself; it stays loaded for the
  // life of the process. Throws std::runtime_error, naming file and reason, when the file cannot
  // be loaded or does not export "REALPluginMain".
  explicit Library(const std::string& path);

  // Runs the exported function with the host's resolver, then checks what was registered.
  void Enter(const Host& host) const;
  // Runs the exported function with any resolver, null included.
  void EnterWith(abi::Resolver resolver) const;

 private:
  abi::REALproc main_ = nullptr;
};

}  // namespace zqv::standin
