# Applies the mendings to an unpacked source. A text that is not found exactly as often as
# expected stops the configure run: a half-mended library must never be built.

function(mend file count fault old new)
  set(path ${mimetic_root}/${file})
  if(NOT EXISTS ${path})
    message(FATAL_ERROR "mimetic: cannot mend ${file} (${fault}): no such file")
  endif()
  file(READ ${path} text)
  string(LENGTH "${text}" length_before)
  string(REPLACE "${old}" "" without "${text}")
  string(LENGTH "${without}" length_without)
  string(LENGTH "${old}" length_old)
  math(EXPR found "(${length_before} - ${length_without}) / ${length_old}")
  if(NOT found EQUAL count)
    message(FATAL_ERROR "mimetic: cannot mend ${file} (${fault}): "
      "text found ${found} times instead of ${count}:\n${old}")
  endif()
  string(REPLACE "${old}" "${new}" text "${text}")
  file(WRITE ${path} "${text}")
endfunction()

# Mends the source below `root` (the folder that holds mimetic/) in place.
function(zqv_mend_mimetic root)
  set(mimetic_root ${root})
  include(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/mendings.cmake)
endfunction()
