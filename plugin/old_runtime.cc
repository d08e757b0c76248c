// What newer compilers call in the C++ runtime that older systems do not have yet: defined here,
// the library runs with the runtime of GCC 10. It stays inside, as everything but the entry point
// does. The file for Windows has the whole runtime in it.
#include <new>

#if defined(__GLIBCXX__) && !defined(_WIN32)
namespace std {  // NOLINT(cert-dcl58-cpp): the runtime's own name

// GCC 11 and later call it, instead of throwing in place, when an array's size overflows.
[[noreturn]] void __throw_bad_array_new_length();  // NOLINT: the runtime's name
[[noreturn]] void __throw_bad_array_new_length() { throw bad_array_new_length(); }

}  // namespace std
#endif
