// Defines a function of the C++ runtime that newer compilers call and the runtime of GCC 10 lacks,
// so that the library runs on systems that have that one. The function is not exported. Not needed
// on Windows, where the runtime is linked into the library.
#include <new>

#if defined(__GLIBCXX__) && !defined(_WIN32)
namespace std {  // NOLINT(cert-dcl58-cpp): the runtime's own name

// GCC 11 and later call it when the size of a new[] overflows.
[[noreturn]] void __throw_bad_array_new_length();  // NOLINT: the runtime's name
[[noreturn]] void __throw_bad_array_new_length() { throw bad_array_new_length(); }

}  // namespace std
#endif
