# Makes a shared or module library export REALPluginMain and nothing else, and drop what that one
# function does not reach. Template instances of the standard library stay visible with hidden
# visibility alone; only the list of exported names leaves exactly one.
function(zqv_export_only_the_entry_point target)
  set(exported ${PROJECT_SOURCE_DIR}/cmake/exported)
  if(APPLE)
    target_link_options(${target} PRIVATE
      -Wl,-exported_symbols_list,${exported}.txt -Wl,-dead_strip)
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${exported}.txt)
  elseif(WIN32)
    # What is not declared for export stays inside, and no library but the system's own is needed.
    # Nothing there reads the names of functions, which would tell where the file was built.
    target_link_options(${target} PRIVATE -static -s -Wl,--gc-sections)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      # The file does not say when it was made, and lies at addresses that nobody can foretell.
      # plugin/unloading_windows.cc gives back what the runtime allocates.
      target_link_options(${target} PRIVATE
        -Wl,--exclude-all-symbols -Wl,--no-insert-timestamp -Wl,--wrap=__imp_TlsAlloc
        -Wl,--nxcompat -Wl,--dynamicbase -Wl,--high-entropy-va)
    else()
      # The other linker does the rest of itself, but has no switch for the time.
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
    # clang links its sanitizer runtime into the program alone, so the names stay open there.
    if(NOT ((ZQV_SANITIZE OR ZQV_FUZZER) AND CMAKE_CXX_COMPILER_ID MATCHES Clang))
      target_link_options(${target} PRIVATE -Wl,-z,defs)
    endif()
  endif()
endfunction()
