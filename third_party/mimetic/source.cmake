# Where the source of mimetic comes from: the tarball or folder named by ZQV_MIMETIC_SOURCE, or the
# distribution's source package, fetched once into the cache that all presets share. Whatever the
# way, a private copy is made in this build folder, and only that copy is patched.

set(zqv_mimetic_sha256 3a07d68d125f5e132949b078c7275d5eb0078dd649079bd510dd12b969096700)
set(zqv_mimetic_tarball mimetic_0.9.8.orig.tar.gz)

set(ZQV_MIMETIC_SOURCE "" CACHE PATH
  "Tarball or unpacked folder of mimetic 0.9.8; empty: fetch the distribution's source package")
set(ZQV_CACHE_DIR "${PROJECT_SOURCE_DIR}/build/cache" CACHE PATH
  "Downloads, shared by all build folders")

# The path of the tarball in the cache, fetched if it is not there yet or is not the right one.
function(zqv_fetch_mimetic result)
  set(tarball ${ZQV_CACHE_DIR}/${zqv_mimetic_tarball})
  file(MAKE_DIRECTORY ${ZQV_CACHE_DIR})
  file(LOCK ${ZQV_CACHE_DIR}/lock GUARD FUNCTION TIMEOUT 300)
  if(EXISTS ${tarball})
    file(SHA256 ${tarball} hash)
  endif()
  if(NOT hash STREQUAL zqv_mimetic_sha256)
    message(STATUS "Fetching the source of mimetic 0.9.8")
    execute_process(
      COMMAND bash ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/fetch.sh ${tarball} ${zqv_mimetic_sha256}
      RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
      message(FATAL_ERROR "mimetic: the source package could not be fetched (see above). "
        "Set ZQV_MIMETIC_SOURCE to ${zqv_mimetic_tarball} or to an unpacked folder of it.")
    endif()
  endif()
  set(${result} ${tarball} PARENT_SCOPE)
endfunction()

# What the prepared copy is made from, as one hash: the source, the patches, and what applies them.
function(zqv_mimetic_fingerprint source result)
  set(parts "")
  if(IS_DIRECTORY ${source})
    file(GLOB_RECURSE files ${source}/mimetic/*)
  else()
    set(files ${source})
  endif()
  zqv_mimetic_patches(patches)
  foreach(file IN LISTS files ITEMS
      ${patches} ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/patch.cmake)
    file(SHA256 ${file} hash)
    string(APPEND parts "${file} ${hash}\n")
  endforeach()
  string(SHA256 hash "${parts}")
  set(${result} ${hash} PARENT_SCOPE)
endfunction()

# Unpacks or copies `source` to `root`, so that `root`/mimetic holds the library.
function(zqv_unpack_mimetic source root)
  file(REMOVE_RECURSE ${root})
  if(IS_DIRECTORY ${source})
    file(COPY ${source}/mimetic DESTINATION ${root})
  else()
    file(ARCHIVE_EXTRACT INPUT ${source} DESTINATION ${root} PATTERNS */mimetic/*)
    file(RENAME ${root}/mimetic-0.9.8/mimetic ${root}/mimetic)
    file(REMOVE_RECURSE ${root}/mimetic-0.9.8)
  endif()
endfunction()

# Leaves the patched source in `root`; does nothing when it is there already.
function(zqv_prepare_mimetic root)
  set(source "${ZQV_MIMETIC_SOURCE}")
  if(source STREQUAL "")
    zqv_fetch_mimetic(source)
  elseif(NOT EXISTS ${source})
    message(FATAL_ERROR "mimetic: ZQV_MIMETIC_SOURCE names nothing that exists: ${source}")
  elseif(NOT IS_DIRECTORY ${source})
    file(SHA256 ${source} hash)
    if(NOT hash STREQUAL zqv_mimetic_sha256)
      message(FATAL_ERROR "mimetic: ${source} is not the tarball of 0.9.8 (SHA-256 ${hash})")
    endif()
  endif()
  zqv_mimetic_fingerprint(${source} fingerprint)
  set(stamp ${root}/prepared)
  if(EXISTS ${stamp})
    file(READ ${stamp} prepared)
  endif()
  if(NOT fingerprint STREQUAL "${prepared}")
    zqv_unpack_mimetic(${source} ${root})
    zqv_patch_mimetic(${root})
    file(WRITE ${stamp} ${fingerprint})
  endif()
endfunction()
