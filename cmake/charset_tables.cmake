# Makes the charset tables of the stand-in host for systems without iconv, from the iconv of the
# building machine. The names of the charsets are taken from standin/convert.cc. The encoding forms
# of Unicode need no table. The other excluded charsets are not used by any test on such a system.
function(zqv_use_charset_tables target)
  find_program(ZQV_BUILD_CXX NAMES g++ c++ REQUIRED)
  set(source ${PROJECT_SOURCE_DIR}/standin)
  file(STRINGS ${source}/convert.cc rows REGEX "Row{0x[0-9A-F]+, \"")
  foreach(row IN LISTS rows)
    string(REGEX REPLACE ".*\"([^\"]+)\".*" "\\1" name "${row}")
    if(NOT name MATCHES "^(UTF-.*|US-ASCII|ISO-2022-CN.*)$")
      list(APPEND names ${name})
    endif()
  endforeach()
  list(REMOVE_DUPLICATES names)
  set(maker ${CMAKE_CURRENT_BINARY_DIR}/make_charset_tables)
  set(tables ${CMAKE_CURRENT_BINARY_DIR}/charsets.tables)
  add_custom_command(OUTPUT ${maker}
    COMMAND ${ZQV_BUILD_CXX} -std=c++17 -O2 -I ${PROJECT_SOURCE_DIR}
      ${source}/make_charset_tables.cc -o ${maker}
    DEPENDS ${source}/make_charset_tables.cc ${source}/charset_tables.h VERBATIM)
  add_custom_command(OUTPUT ${tables} COMMAND ${maker} ${tables} ${names}
    DEPENDS ${maker} ${source}/convert.cc VERBATIM)
  add_custom_target(charset_tables DEPENDS ${tables})
  add_dependencies(${target} charset_tables)
  target_compile_definitions(${target} PRIVATE ZQV_CHARSET_TABLES="${tables}")
endfunction()
