# Cross-builds for Windows on x86-64 with Debian's compiler, and runs the result with Wine.
# ZQV_MINGW_THREADS is win32, which needs no library for threads, or posix, whose C++ standard
# library supports threads.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZQV_MINGW_THREADS)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-${ZQV_MINGW_THREADS})  # needed by GoogleTest
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-${ZQV_MINGW_THREADS})
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_STRIP x86_64-w64-mingw32-strip)
set(CMAKE_CROSSCOMPILING_EMULATOR wine)

# Libraries come from the cross compiler only. Packages of headers only may come from this system.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
