# Applies the patches to a copy, in `folder`, of a source that has them already. `change` says what
# is done to the copy before:
#   none      nothing
#   unmarked  it no longer says by which patches it was patched
#   marked    it names other patches
#   moved     the last patch is taken back, and an empty line inserted above its lines
include(${CMAKE_CURRENT_LIST_DIR}/../../third_party/mimetic/patch.cmake)

file(REMOVE_RECURSE ${folder})
file(COPY ${source}/mimetic DESTINATION ${folder})
if(change STREQUAL "unmarked")
  file(REMOVE ${folder}/mimetic/patched)
elseif(change STREQUAL "marked")
  file(WRITE ${folder}/mimetic/patched "others")
elseif(change STREQUAL "moved")
  find_program(ZQV_PATCH NAMES patch REQUIRED)
  zqv_mimetic_patches(patches)
  list(GET patches -1 last)
  execute_process(COMMAND ${ZQV_PATCH} -R -p1 -F0 -s -d ${folder} -i ${last}
    COMMAND_ERROR_IS_FATAL ANY)
  file(READ ${folder}/mimetic/strutils.cxx text)
  file(WRITE ${folder}/mimetic/strutils.cxx "\n${text}")
  zqv_apply_patch(${ZQV_PATCH} ${folder} ${last})
endif()
zqv_patch_mimetic(${folder})
message(STATUS "The source is patched")
