# Applies the patches in patches/ to an unpacked source: first those that fix a fault, then those
# that make it faster, each in the order of their numbers. A patch that does not apply exactly stops
# the configure run: a source with some of the patches must never be built.

# The patch files, in their order.
function(zqv_mimetic_patches result)
  set(folder ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/patches)
  file(GLOB fixes ${folder}/fixes/*.patch)
  file(GLOB speed ${folder}/speed/*.patch)
  set(${result} ${fixes} ${speed} PARENT_SCOPE)
endfunction()

# One hash of all patches.
function(zqv_mimetic_patches_hash result)
  zqv_mimetic_patches(patches)
  set(hashes "")
  foreach(patch IN LISTS patches)
    file(SHA256 ${patch} hash)
    string(APPEND hashes "${hash}\n")
  endforeach()
  string(SHA256 hash "${hashes}")
  set(${result} ${hash} PARENT_SCOPE)
endfunction()

# Applies one patch below `root`. No line may be missing or lie elsewhere.
function(zqv_apply_patch program root patch)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C ${program} -p1 -F0 -f -d ${root} -i ${patch}
    RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0 OR output MATCHES "Hunk #[0-9]+ succeeded at [^\n]*(offset|fuzz)")
    string(REGEX MATCH "[^/]+/[^/]+$" name ${patch})
    message(FATAL_ERROR "mimetic: ${name} does not apply exactly: the source in ${root} is not "
      "that of mimetic 0.9.8 with the patches before it.\n${output}")
  endif()
endfunction()

# Patches the source below `root` (the folder that holds mimetic/) in place, and leaves the hash of
# the patches there. A copy of a source that has been patched by the same patches stays as it is.
function(zqv_patch_mimetic root)
  set(mark ${root}/mimetic/patched)
  zqv_mimetic_patches_hash(hash)
  if(EXISTS ${mark})
    file(READ ${mark} patched)
    if(patched STREQUAL hash)
      return()
    endif()
    message(FATAL_ERROR "mimetic: the source in ${root} was patched by other patches than these; "
      "set ZQV_MIMETIC_SOURCE to the tarball or to a folder with the original source")
  endif()
  find_program(ZQV_PATCH NAMES patch REQUIRED)
  zqv_mimetic_patches(patches)
  if(NOT patches)
    message(FATAL_ERROR "mimetic: there are no patches")
  endif()
  foreach(patch IN LISTS patches)
    zqv_apply_patch(${ZQV_PATCH} ${root} ${patch})
  endforeach()
  file(WRITE ${mark} ${hash})
endfunction()
