// Functions with a variable number of arguments. Intel macOS and this system pass these arguments
// in the same way. Apple silicon passes all of them on the stack, and a va_list is their address;
// on this system for arm64 the first ones are in registers.
#pragma once

#include <cstdarg>
#include <string>

namespace zqv::macho {

// The replacement of a symbol; null for any other symbol.
void* FindVariadicFunction(const std::string& name);

// Reads pointers from the variable arguments, as the library passed them.
class VariadicPointers {
 public:
#if defined(__aarch64__)
  explicit VariadicPointers(void* const* stack) : stack_(stack) {}
  const void* Next() { return *stack_++; }

 private:
  void* const* stack_;
#else
  explicit VariadicPointers(std::va_list& list) : list_(&list) {}
  const void* Next() { return va_arg(*list_, const void*); }

 private:
  std::va_list* list_;
#endif
};

}  // namespace zqv::macho
