# Tests and the program include large headers (GoogleTest, nlohmann-json, CLI11). Several of their
# files given to the compiler as one take less than half the time of a full build, and without
# optimisation again half of that. Tests that then take longer than was saved are optimised. The
# library's own files are always compiled one by one and as they ship. Preset dev compiles
# everything one by one, which finds includes that a file forgot.
option(ZQV_UNITY "Compile the files of tests and of the program several at a time" ON)

#   zqv_fast_build(target [ALONE a.cc ...])   ALONE: files with a local name that another file has, too
function(zqv_fast_build target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "ALONE")
  if(ZQV_UNITY AND NOT CMAKE_CXX_CLANG_TIDY)  # which reads each file by itself
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 10)
    set_source_files_properties(${arg_ALONE} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endif()
endfunction()

# Compiles a target's files without optimisation with AddressSanitizer and in release builds.
#   zqv_without_optimisation(target [UNLESS_RELEASE])
function(zqv_without_optimisation target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "UNLESS_RELEASE" "" "")
  if(ZQV_SANITIZE MATCHES "address"
      OR (CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT arg_UNLESS_RELEASE))
    target_compile_options(${target} PRIVATE -O0)
  endif()
endfunction()
