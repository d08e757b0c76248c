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

abi::REALproc OpenBySystem(const std::string& path) {
  void* const file = dlopen(AsPath(path).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (file == nullptr) return nullptr;
  dlerror();
  return reinterpret_cast<abi::REALproc>(dlsym(file, kMainName));
}

Opener g_opener = &OpenBySystem;

}  // namespace

void UseOpener(Opener opener) { g_opener = opener; }

Library::Library(const std::string& path) : main_(g_opener(path)) {
  if (main_ == nullptr) FailToLoad(path);
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
