#include <windows.h>

#include "standin/loader.h"

namespace zqv::standin {

abi::REALproc LoadFunction(const std::string& path, const char* name) {
  const HMODULE file = LoadLibraryA(path.c_str());
  if (file == nullptr) return nullptr;
  return reinterpret_cast<abi::REALproc>(GetProcAddress(file, name));
}

std::string WhyNotLoaded() { return "error " + std::to_string(GetLastError()); }

}  // namespace zqv::standin
