# Makes a shared or module library export REALPluginMain and nothing else, and drop what that one
# function does not reach. Template instances of the standard library stay visible with hidden
# visibility alone; only the list of exported names leaves exactly one.
function(zqv_export_only_the_entry_point target)
  set(exported ${PROJECT_SOURCE_DIR}/cmake/exported)
  if(APPLE)
    target_link_options(${target} PRIVATE
      -Wl,-exported_symbols_list,${exported}.txt -Wl,-dead_strip)
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${exported}.txt)
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
