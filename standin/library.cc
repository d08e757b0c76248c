#include "standin/library.h"

#include <stdexcept>

#include "standin/invoke.h"
#include "standin/loader.h"

namespace zqv::standin {
namespace {

// The one symbol that a plug-in exports.
constexpr const char* kMainName = "REALPluginMain";

[[noreturn]] void FailToLoad(const std::string& path) {
  throw std::runtime_error("cannot load " + path + ": " + WhyNotLoaded());
}

abi::REALproc OpenBySystem(const std::string& path) { return LoadFunction(path, kMainName); }

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
