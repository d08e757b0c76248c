# The locales that tests set, made in the build folder from the sources of Debian's package
# `locales`: no locale needs to be installed. Without these sources there is an empty folder, and
# the tests say so and are skipped.
function(zqv_use_test_locales target)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/locales)
  file(MAKE_DIRECTORY ${folder})
  target_compile_definitions(${target} PRIVATE ZQV_LOCALES="${folder}")
  find_program(ZQV_LOCALEDEF NAMES localedef)
  if(NOT ZQV_LOCALEDEF OR NOT EXISTS /usr/share/i18n/locales/tr_TR)
    message(STATUS "No sources of locales: the tests of locales will be skipped")
    return()
  endif()
  foreach(name tr_TR.UTF-8 tr_TR.ISO-8859-9 de_DE.ISO-8859-1)
    string(REGEX MATCH "^([^.]+)\\.(.+)$" ignored ${name})
    # LC_IDENTIFICATION is written like the other files; one of them stands for all.
    add_custom_command(OUTPUT ${folder}/${name}/LC_IDENTIFICATION
      COMMAND ${ZQV_LOCALEDEF} --no-archive -i ${CMAKE_MATCH_1} -f ${CMAKE_MATCH_2}
        ${folder}/${name}
      COMMENT "Making the locale ${name}" VERBATIM)
    list(APPEND made ${folder}/${name}/LC_IDENTIFICATION)
  endforeach()
  add_custom_target(test_locales DEPENDS ${made})
  add_dependencies(${target} test_locales)
endfunction()
