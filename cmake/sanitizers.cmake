# Instrumentation by sanitizers, fuzzer and coverage. It applies to all code, mimetic included:
# faults in code without instrumentation are not detected.
set(ZQV_SANITIZE "" CACHE STRING "Sanitizers for all code, e.g. address,undefined")
option(ZQV_FUZZER "Instrument all code for libFuzzer (clang only)" OFF)
option(ZQV_COVERAGE "Count executed lines (g++ only)" OFF)

# Instrumented code has larger stack frames and takes longer; tests need to know.
if(ZQV_SANITIZE OR ZQV_FUZZER)
  add_compile_definitions(ZQV_INSTRUMENTED)
endif()

if(ZQV_SANITIZE)
  # The check `function` is off, because hosts, including the stand-in host, call the registered
  # functions through pointers of other types.
  add_compile_options(
    -fsanitize=${ZQV_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    $<$<CXX_COMPILER_ID:Clang>:-fno-sanitize=function>)
  add_link_options(-fsanitize=${ZQV_SANITIZE})
endif()

if(ZQV_FUZZER)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES Clang)
    message(FATAL_ERROR "ZQV_FUZZER needs clang++ (preset fuzz)")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(ZQV_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
