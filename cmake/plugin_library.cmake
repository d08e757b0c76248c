# Makes a shared or module library export REALPluginMain only, and removes code that this function
# does not reach. Hidden visibility is not enough, since instances of templates of the standard
# library would stay visible. The list of exported names hides them, too.
function(zqv_export_only_the_entry_point target)
  set(exported ${PROJECT_SOURCE_DIR}/cmake/exported)
  if(APPLE)
    target_link_options(${target} PRIVATE
      -Wl,-exported_symbols_list,${exported}.txt -Wl,-dead_strip)
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${exported}.txt)
  elseif(WIN32)
    # Only declared functions are exported. With static linking, the system's libraries are the
    # only dependencies. -s removes symbols, which contain the path of the build.
    target_link_options(${target} PRIVATE -static -s -Wl,--gc-sections)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      # Reproducible: no time stamp. Safe: no executable data, random addresses. --wrap is for
      # plugin/unloading_windows.cc, which frees the runtime's thread-local storage.
      target_link_options(${target} PRIVATE
        -Wl,--exclude-all-symbols -Wl,--no-insert-timestamp -Wl,--wrap=__imp_TlsAlloc
        -Wl,--nxcompat -Wl,--dynamicbase -Wl,--high-entropy-va)
    else()
      # This linker does the same by default, but has no option to omit the time stamp.
      find_program(ZQV_PYTHON NAMES python3 REQUIRED)
      add_custom_command(TARGET ${target} POST_BUILD
        COMMAND ${ZQV_PYTHON} -B ${PROJECT_SOURCE_DIR}/scripts/forget_link_time.py
          $<TARGET_FILE:${target}>
        VERBATIM)
    endif()
  else()
    target_link_options(${target} PRIVATE
      -Wl,--version-script=${exported}.map -Wl,--exclude-libs,ALL -Wl,--gc-sections
      -Wl,--as-needed)
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${exported}.map)
    # clang links its sanitizer runtime into programs only, so a library has undefined symbols.
    if(NOT ((ZQV_SANITIZE OR ZQV_FUZZER) AND CMAKE_CXX_COMPILER_ID MATCHES Clang))
      target_link_options(${target} PRIVATE -Wl,-z,defs)
    endif()
  endif()
endfunction()
