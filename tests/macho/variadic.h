// Functions with any number of arguments. On Intel macOS and this system pass those alike. On Apple
// silicon they all lie on the stack, and a list of them is its address; here the first ones travel
// in registers.
#pragma once

#include <cstdarg>
#include <string>

namespace zqv::macho {

// Null for every other function.
void* FindVariadicFunction(const std::string& name);

// Reads pointers one after the other, as macOS has passed them.
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
