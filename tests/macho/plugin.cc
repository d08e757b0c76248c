#include "tests/macho/plugin.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "tests/macho/operators.h"
#include "tests/macho/system.h"

namespace zqv::macho {
namespace {

// Bound to functions that the plug-in does not use: parts of the C++ library call them.
[[noreturn]] void FailToCall() {
  std::fputs("a function is called that this system lacks\n", stderr);
  std::abort();
}

void* FindForRuntime(const std::string& name) {
  void* const found = FindSystemSymbol(name);
  return found != nullptr ? found : reinterpret_cast<void*>(&FailToCall);
}

const Image& LoadRuntime() {
  static const Image kRuntime(ZQV_MACHO_RUNTIME, &FindForRuntime, &FindOperator);
  AddImage(kRuntime);
  kRuntime.Initialise();
  ThrowBadAllocBy(kRuntime.Find("__ZSt17__throw_bad_allocv"));
  return kRuntime;
}

const Image& TheRuntime() {
  static const Image& kRuntime = LoadRuntime();
  return kRuntime;
}

void* FindForPlugin(const std::string& name) {
  if (void* const found = TheRuntime().Find(name)) return found;
  if (void* const found = FindSystemSymbol(name)) return found;
  throw std::runtime_error("the library needs " + name + ", which is not there");
}

}  // namespace

Plugin::Plugin() : image_(ZQV_MACHO_LIBRARY, &FindForPlugin, &FindOperator) {
  AddImage(image_);
  image_.Initialise();
}

Plugin::~Plugin() { RemoveImage(image_); }

abi::REALproc Plugin::entry() const {
  return reinterpret_cast<abi::REALproc>(image_.Find("_REALPluginMain"));
}

}  // namespace zqv::macho
