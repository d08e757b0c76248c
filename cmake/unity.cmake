# Tests include large headers (GoogleTest, nlohmann-json). Several of their files given to the
# compiler as one take less than half the time of a full build. The library's own files are always
# compiled one by one, and so is everything in preset dev, which finds includes that a file forgot.
option(ZQV_UNITY "Compile the files of tests several at a time" ON)

#   zqv_unity(target [ALONE a_test.cc ...])   ALONE: files whose local names another file has, too
function(zqv_unity target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "ALONE")
  if(ZQV_UNITY AND NOT CMAKE_CXX_CLANG_TIDY)  # which reads each file by itself
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 10)
    set_source_files_properties(${arg_ALONE} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endif()
endfunction()
