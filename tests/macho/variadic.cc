#include "tests/macho/variadic.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tests/macho/core_foundation.h"
#include "tests/macho/symbols.h"

namespace zqv::macho {
namespace {

#if defined(__aarch64__)

// A va_list of this system whose arguments are all on the stack, from `stack` on.
class List {
 public:
  explicit List(void* stack) {
    struct {
      void *stack, *general_end, *vector_end;
      int general_offset, vector_offset;
    } layout = {stack, nullptr, nullptr, 0, 0};
    static_assert(sizeof layout == sizeof list_);
    std::memcpy(&list_, &layout, sizeof layout);
  }
  std::va_list& get() { return list_; }

 private:
  std::va_list list_;
};

}  // namespace

// Called by the assembler code below, which adds the address of the stack as the last argument.
extern "C" {
int ZqvSnprintf(char* text, std::size_t size, const char* format, void* stack) {
  return std::vsnprintf(text, size, format, List(stack).get());
}
int ZqvSnprintfL(char* text, std::size_t size, void*, const char* format, void* stack) {
  return std::vsnprintf(text, size, format, List(stack).get());
}
int ZqvAsprintfL(char** text, void*, const char* format, void* stack) {
  return vasprintf(text, format, List(stack).get());
}
int ZqvSscanf(const char* text, const char* format, void* stack) {
  return std::vsscanf(text, format, List(stack).get());
}
int ZqvSscanfL(const char* text, void*, const char* format, void* stack) {
  return std::vsscanf(text, format, List(stack).get());
}
int ZqvFprintf(std::FILE* file, const char* format, void* stack) {
  return std::vfprintf(file, format, List(stack).get());
}
void ZqvNSLog(const void* format, void* stack) {
  WriteLog(format, VariadicPointers(static_cast<void* const*>(stack)));
}

void ZqvPassSnprintf();
void ZqvPassSnprintfL();
void ZqvPassAsprintfL();
void ZqvPassSscanf();
void ZqvPassSscanfL();
void ZqvPassFprintf();
void ZqvPassNSLog();
}

// The named arguments stay in their registers. The next register gets the address of the stack.
#define ZQV_PASS(name, next) \
  __asm__(".text\n.global ZqvPass" #name "\nZqvPass" #name ": mov " #next ", sp\n b Zqv" #name "\n")
ZQV_PASS(Snprintf, x3);
ZQV_PASS(SnprintfL, x4);
ZQV_PASS(AsprintfL, x3);
ZQV_PASS(Sscanf, x2);
ZQV_PASS(SscanfL, x3);
ZQV_PASS(Fprintf, x2);
ZQV_PASS(NSLog, x1);

namespace {

int FormatText(char* text, std::size_t size, const char* format, void* list) {
  return std::vsnprintf(text, size, format, List(list).get());
}
int FormatToFile(std::FILE* file, const char* format, void* list) {
  return std::vfprintf(file, format, List(list).get());
}
// On Apple silicon a long double is a double.
double ToLargest(const char* text, char** end, void*) { return std::strtod(text, end); }

const Symbol kRows[] = {
    {"_snprintf", reinterpret_cast<void*>(&ZqvPassSnprintf)},
    {"_snprintf_l", reinterpret_cast<void*>(&ZqvPassSnprintfL)},
    {"_asprintf_l", reinterpret_cast<void*>(&ZqvPassAsprintfL)},
    {"_sscanf", reinterpret_cast<void*>(&ZqvPassSscanf)},
    {"_sscanf_l", reinterpret_cast<void*>(&ZqvPassSscanfL)},
    {"_fprintf", reinterpret_cast<void*>(&ZqvPassFprintf)},
    {"_NSLog", reinterpret_cast<void*>(&ZqvPassNSLog)},
    {"_vsnprintf", reinterpret_cast<void*>(&FormatText)},
    {"_vfprintf", reinterpret_cast<void*>(&FormatToFile)},
    {"_strtold_l", reinterpret_cast<void*>(&ToLargest)},
};

#else

int SnprintfL(char* text, std::size_t size, void*, const char* format, ...) {
  std::va_list list;
  va_start(list, format);
  const int result = std::vsnprintf(text, size, format, list);
  va_end(list);
  return result;
}
int AsprintfL(char** text, void*, const char* format, ...) {
  std::va_list list;
  va_start(list, format);
  const int result = vasprintf(text, format, list);
  va_end(list);
  return result;
}
int SscanfL(const char* text, void*, const char* format, ...) {
  std::va_list list;
  va_start(list, format);
  const int result = std::vsscanf(text, format, list);
  va_end(list);
  return result;
}
void NSLog(const void* format, ...) {
  std::va_list list;
  va_start(list, format);
  WriteLog(format, VariadicPointers(list));
  va_end(list);
}
long double ToLargest(const char* text, char** end, void*) { return std::strtold(text, end); }

const Symbol kRows[] = {
    {"_snprintf_l", reinterpret_cast<void*>(&SnprintfL)},
    {"_asprintf_l", reinterpret_cast<void*>(&AsprintfL)},
    {"_sscanf_l", reinterpret_cast<void*>(&SscanfL)},
    {"_NSLog", reinterpret_cast<void*>(&NSLog)},
    {"_strtold_l", reinterpret_cast<void*>(&ToLargest)},
};

#endif

}  // namespace

void* FindVariadicFunction(const std::string& name) { return FindSymbol(kRows, name); }

}  // namespace zqv::macho
