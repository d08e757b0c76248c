# Makes the locales that tests use, in the build folder, from the sources in Debian's package
# `locales`. So no locale needs to be installed. Without these sources the folder stays empty and
# the tests are skipped.
function(zqv_use_test_locales target)
  set(folder ${PROJECT_BINARY_DIR}/tests/locales)
  file(MAKE_DIRECTORY ${folder})
  target_compile_definitions(${target} PRIVATE ZQV_LOCALES="${folder}")
  find_program(ZQV_LOCALEDEF NAMES localedef)
  if(NOT ZQV_LOCALEDEF OR NOT EXISTS /usr/share/i18n/locales/tr_TR)
    message(STATUS "No sources of locales: the tests of locales will be skipped")
    return()
  endif()
  if(NOT TARGET test_locales)
    foreach(name tr_TR.UTF-8 tr_TR.ISO-8859-9 de_DE.ISO-8859-1)
      string(REGEX MATCH "^([^.]+)\\.(.+)$" ignored ${name})
      # A locale has several files; the rule names one of them for all.
      add_custom_command(OUTPUT ${folder}/${name}/LC_IDENTIFICATION
        COMMAND ${ZQV_LOCALEDEF} --no-archive -i ${CMAKE_MATCH_1} -f ${CMAKE_MATCH_2}
          ${folder}/${name}
        COMMENT "Making the locale ${name}" VERBATIM)
      list(APPEND made ${folder}/${name}/LC_IDENTIFICATION)
    endforeach()
    add_custom_target(test_locales DEPENDS ${made})
  endif()
  add_dependencies(${target} test_locales)
endfunction()
