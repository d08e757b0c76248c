#include "standin/library.h"

#include <dlfcn.h>

#include <stdexcept>

#include "standin/invoke.h"

namespace zqv::standin {
namespace {

// The one symbol that a plug-in exports.
constexpr const char* kMainName = "REALPluginMain";

[[noreturn]] void FailToLoad(const std::string& path) {
  const char* const reason = dlerror();
  throw std::runtime_error("cannot load " + path + ": " +
                           (reason == nullptr ? "no reason given" : reason));
}

// A path without a slash would be searched for in the system's folders.
std::string AsPath(const std::string& path) {
  return path.find('/') == std::string::npos ? "./" + path : path;
}

}  // namespace

Library::Library(const std::string& path) {
  void* const file = dlopen(AsPath(path).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (file == nullptr) FailToLoad(path);
  dlerror();
  void* const symbol = dlsym(file, kMainName);
  if (symbol == nullptr) FailToLoad(path);
  main_ = reinterpret_cast<abi::REALproc>(symbol);
}

void Library::Enter(const Host& host) const {
  EnterWith(host.resolver());
  host.FinishRegistration();
}

void Library::EnterWith(abi::Resolver resolver) const {
  CallArguments arguments;
  arguments.Add(reinterpret_cast<const void*>(resolver));
  CallNothing(main_, arguments, kMainName);
}

}  // namespace zqv::standin
