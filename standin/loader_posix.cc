#include <dlfcn.h>

#include "standin/loader.h"

namespace zqv::standin {
namespace {

// A path without a slash would be searched for in the system's folders.
std::string AsPath(const std::string& path) {
  return path.find('/') == std::string::npos ? "./" + path : path;
}

}  // namespace

abi::REALproc LoadFunction(const std::string& path, const char* name) {
  void* const file = dlopen(AsPath(path).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (file == nullptr) return nullptr;
  dlerror();
  return reinterpret_cast<abi::REALproc>(dlsym(file, name));
}

std::string WhyNotLoaded() {
  const char* const reason = dlerror();
  return reason == nullptr ? "no reason given" : reason;
}

}  // namespace zqv::standin
