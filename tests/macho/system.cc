#include "tests/macho/system.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <cwchar>
#include <vector>

#include "standin/invoke.h"
#include "tests/macho/core_foundation.h"
#include "tests/macho/image.h"
#include "tests/macho/symbols.h"
#include "tests/macho/variadic.h"

namespace zqv::macho {
namespace {

std::vector<const Image*> g_images;

// A function that runs when the library with the address `owner` is unloaded.
struct Ending {
  void (*function)(void*);
  void* argument;
  const void* owner;
};
std::vector<Ending> g_endings;

int RunAtEnd(void (*function)(void*), void* argument, const void* owner) {
  g_endings.push_back({function, argument, owner});
  return 0;
}

// The result of a query by the unwinder: the tables of the library that contains an address.
struct UnwindSections {
  const void* header;
  const void* frames;
  std::uintptr_t frames_length;
  const void* compact;
  std::uintptr_t compact_length;
};

int FindUnwindSections(void* address, UnwindSections* sections) {
  for (const Image* image : g_images) {
    if (!image->Contains(address)) continue;
    const UnwindTables& tables = image->unwind_tables();
    *sections = {tables.header, tables.frames, tables.frames_length, tables.compact,
                 tables.compact_length};
    return 1;
  }
  return 0;
}

// The character classes of the C locale, with macOS's layout and bits.
struct RuneLocale {
  char magic[8];
  char encoding[32];
  void* functions[2];
  std::int32_t invalid;
  std::uint32_t kinds[256];
  std::int32_t lower[256];
  std::int32_t upper[256];
  char rest[512];
};

std::uint32_t KindsOf(int c) {
  if (c >= 128) return 0;
  struct Kind {
    int (*is)(int);
    std::uint32_t bit;
  };
  constexpr Kind kKinds[] = {
      {std::isalpha, 0x100},   {std::iscntrl, 0x200},   {std::isdigit, 0x400},
      {std::isgraph, 0x800},   {std::islower, 0x1000},  {std::ispunct, 0x2000},
      {std::isspace, 0x4000},  {std::isupper, 0x8000},  {std::isxdigit, 0x10000},
      {std::isblank, 0x20000}, {std::isprint, 0x40000},
  };
  std::uint32_t bits = 0;
  for (const Kind& kind : kKinds) bits |= kind.is(c) != 0 ? kind.bit : 0;
  return bits;
}

RuneLocale MakeRuneLocale() {
  RuneLocale locale{};
  std::memcpy(locale.magic, "RuneMagA", sizeof locale.magic);
  for (int c = 0; c < 256; ++c) {
    locale.kinds[c] = KindsOf(c);
    locale.lower[c] = c < 128 ? std::tolower(c) : c;
    locale.upper[c] = c < 128 ? std::toupper(c) : c;
  }
  return locale;
}

RuneLocale g_rune_locale = MakeRuneLocale();
std::uint64_t g_stack_guard = 0x9E3779B97F4A7C15;
std::FILE* g_standard_input = stdin;
std::FILE* g_standard_output = stdout;
std::FILE* g_standard_error = stderr;

int* ErrorNumber() { return &errno; }
void ClearBytes(void* bytes, std::size_t length) { std::memset(bytes, 0, length); }
void FillWithPattern16(void* bytes, const void* pattern, std::size_t length) {
  for (std::size_t at = 0; at < length; at += 16) {
    std::memcpy(static_cast<char*>(bytes) + at, pattern, std::min<std::size_t>(16, length - at));
  }
}

// macOS has other numbers for the flags. The library never gives the third argument.
int Open(const char* path, int flags) {
  constexpr int kNonBlocking = 0x4;
  constexpr int kCloseOnExec = 0x1000000;
  if ((flags & ~(kNonBlocking | kCloseOnExec)) != 0) std::abort();
  int own = O_RDONLY;
  if ((flags & kNonBlocking) != 0) own |= O_NONBLOCK;
  if ((flags & kCloseOnExec) != 0) own |= O_CLOEXEC;
  const standin::PluginScope scope(false);
  return open(ComposedPath(path).c_str(), own);
}

// The stack of the calling thread: its lowest address and its size. The library asks about no other
// thread.
struct Stack {
  void* lowest = nullptr;
  std::size_t size = 0;
};
Stack OwnStack() {
  Stack stack;
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) std::abort();
  pthread_attr_getstack(&attributes, &stack.lowest, &stack.size);
  pthread_attr_destroy(&attributes);
  return stack;
}
void* StackAddress(pthread_t) {
  const Stack stack = OwnStack();
  return static_cast<char*>(stack.lowest) + stack.size;
}
std::size_t StackSize(pthread_t) { return OwnStack().size; }

// Locks do nothing, because the tests call the library in one thread at a time.
int Succeed() { return 0; }
void* GiveNothing() { return nullptr; }
int CallOnce(std::uint64_t* control, void (*function)()) {
  constexpr std::uint64_t kDone = 1;
  if (*control != kDone) {
    *control = kDone;
    function();
  }
  return 0;
}
int CreateKey(std::uint64_t* key, void (*destructor)(void*)) {
  pthread_key_t own = 0;
  const int result = pthread_key_create(&own, destructor);
  *key = own;
  return result;
}
int DeleteKey(std::uint64_t key) { return pthread_key_delete(static_cast<pthread_key_t>(key)); }
void* GetSpecific(std::uint64_t key) {
  return pthread_getspecific(static_cast<pthread_key_t>(key));
}
int SetSpecific(std::uint64_t key, const void* value) {
  return pthread_setspecific(static_cast<pthread_key_t>(key), value);
}

// Functions with an argument for a locale; only the C locale is supported.
int KindOfRune(int c, unsigned long kinds) {
  return c >= 0 && c < 256 ? static_cast<int>(g_rune_locale.kinds[c] & kinds) : 0;
}
int LowerRune(int c) { return c >= 0 && c < 256 ? g_rune_locale.lower[c] : c; }
int UpperRune(int c) { return c >= 0 && c < 256 ? g_rune_locale.upper[c] : c; }
int LongestCharacter(void*) { return 1; }
double ToDouble(const char* text, char** end, void*) { return std::strtod(text, end); }
float ToFloat(const char* text, char** end, void*) { return std::strtof(text, end); }
long long ToLong(const char* text, char** end, int base, void*) {
  return std::strtoll(text, end, base);
}
unsigned long long ToUnsigned(const char* text, char** end, int base, void*) {
  return std::strtoull(text, end, base);
}
std::size_t FormatTime(char* text, std::size_t size, const char* format, const std::tm* time,
                       void*) {
  return std::strftime(text, size, format, time);
}
int DescribeError(int number, char* text, std::size_t size) {
  return std::snprintf(text, size, "error %d", number) < 0 ? EINVAL : 0;
}

const Symbol kRows[] = {
    {"___stack_chk_guard", &g_stack_guard},
    {"___stack_chk_fail", At(&std::abort)},
    {"___stdinp", &g_standard_input},
    {"___stdoutp", &g_standard_output},
    {"___stderrp", &g_standard_error},
    {"___error", At(&ErrorNumber)},
    {"___bzero", At(&ClearBytes)},
    {"_bzero", At(&ClearBytes)},
    {"_memset_pattern16", At(&FillWithPattern16)},
    {"_open", At(&Open)},
    {"_pthread_get_stackaddr_np", At(&StackAddress)},
    {"_pthread_get_stacksize_np", At(&StackSize)},
    {"_pthread_mutex_init", At(&Succeed)},
    {"_pthread_mutex_destroy", At(&Succeed)},
    {"_pthread_mutex_lock", At(&Succeed)},
    {"_pthread_mutex_trylock", At(&Succeed)},
    {"_pthread_mutex_unlock", At(&Succeed)},
    {"_pthread_mutexattr_init", At(&Succeed)},
    {"_pthread_mutexattr_destroy", At(&Succeed)},
    {"_pthread_mutexattr_settype", At(&Succeed)},
    {"_pthread_cond_broadcast", At(&Succeed)},
    {"_pthread_cond_destroy", At(&Succeed)},
    {"_pthread_cond_signal", At(&Succeed)},
    {"_pthread_rwlock_rdlock", At(&Succeed)},
    {"_pthread_rwlock_wrlock", At(&Succeed)},
    {"_pthread_rwlock_unlock", At(&Succeed)},
    {"_pthread_mach_thread_np", At(&Succeed)},
    {"_pthread_once", At(&CallOnce)},
    {"_pthread_key_create", At(&CreateKey)},
    {"_pthread_key_delete", At(&DeleteKey)},
    {"_pthread_getspecific", At(&GetSpecific)},
    {"_pthread_setspecific", At(&SetSpecific)},
    {"__DefaultRuneLocale", &g_rune_locale},
    {"___maskrune", At(&KindOfRune)},
    {"___maskrune_l", At(&KindOfRune)},
    {"___tolower", At(&LowerRune)},
    {"____tolower_l", At(&LowerRune)},
    {"___toupper", At(&UpperRune)},
    {"____toupper_l", At(&UpperRune)},
    {"____mb_cur_max_l", At(&LongestCharacter)},
    {"_strtod_l", At(&ToDouble)},
    {"_strtof_l", At(&ToFloat)},
    {"_strtoll_l", At(&ToLong)},
    {"_strtoull_l", At(&ToUnsigned)},
    {"_strftime_l", At(&FormatTime)},
    {"_strerror_r", At(&DescribeError)},
    {"_mbrlen_l", At(&std::mbrlen)},
    {"_mbrtowc_l", At(&std::mbrtowc)},
    {"_mbtowc_l", At(&std::mbtowc)},
    {"_mbsrtowcs_l", At(&std::mbsrtowcs)},
    {"_wcrtomb_l", At(&std::wcrtomb)},
    {"_freelocale", At(&Succeed)},
    {"_catopen", At(&GiveNothing)},
    {"_catgets", At(&GiveNothing)},
    {"_catclose", At(&Succeed)},
    {"___cxa_atexit", At(&RunAtEnd)},
    {"__dyld_find_unwind_sections", At(&FindUnwindSections)},
    {"__dyld_register_func_for_remove_image", At(&Succeed)},
    {"dyld_stub_binder",
     At(&std::abort)},  // never called, because everything is bound when the library is loaded
};

}  // namespace

void AddImage(const Image& image) { g_images.push_back(&image); }

void RemoveImage(const Image& image) {
  for (std::size_t left = g_endings.size(); left > 0; --left) {
    const Ending ending = g_endings[left - 1];
    if (!image.Contains(ending.owner)) continue;
    g_endings.erase(g_endings.begin() + static_cast<std::ptrdiff_t>(left - 1));
    ending.function(ending.argument);
  }
  g_images.erase(std::remove(g_images.begin(), g_images.end(), &image), g_images.end());
}

void* FindSystemSymbol(const std::string& name) {
  if (void* const function = FindVariadicFunction(name)) return function;
  if (void* const function = FindCoreFoundationSymbol(name)) return function;
  if (void* const address = FindSymbol(kRows, name)) return address;
  return name.front() == '_' ? dlsym(RTLD_DEFAULT, name.c_str() + 1) : nullptr;
}

}  // namespace zqv::macho
