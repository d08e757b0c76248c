# Cross-builds for Windows on arm64 with the compiler that scripts/windows-arm64-compiler fetches.
# The result cannot be run on the building machine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR arm64)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZQV_WINDOWS_COMPILER)
set(CMAKE_CXX_COMPILER ${ZQV_WINDOWS_COMPILER}/c++)
set(CMAKE_AR ${ZQV_WINDOWS_COMPILER}/ar CACHE FILEPATH "Archiver")
set(CMAKE_RANLIB ${ZQV_WINDOWS_COMPILER}/ranlib CACHE FILEPATH "Archiver")
find_program(CMAKE_STRIP llvm-strip-19)

set(CMAKE_FIND_ROOT_PATH ${ZQV_WINDOWS_COMPILER})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()
