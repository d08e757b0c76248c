# Cross-builds the plug-in for macOS with clang 19 and an SDK-shaped folder (scripts/macos-sdk).
# ZQV_MAC_ARCH: x86_64 or arm64. Not used for builds on a Mac.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 20)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZQV_MAC_ARCH ZQV_MAC_SDK)
set(CMAKE_SYSTEM_PROCESSOR ${ZQV_MAC_ARCH})

if(ZQV_MAC_ARCH STREQUAL "arm64")
  set(oldest 11.0)
elseif(ZQV_MAC_ARCH STREQUAL "x86_64")
  set(oldest 10.13)
else()
  message(FATAL_ERROR "ZQV_MAC_ARCH is \"${ZQV_MAC_ARCH}\", not x86_64 or arm64")
endif()
set(CMAKE_OSX_DEPLOYMENT_TARGET ${oldest} CACHE STRING "Oldest macOS")
set(CMAKE_OSX_ARCHITECTURES ${ZQV_MAC_ARCH} CACHE STRING "Processor")
set(CMAKE_OSX_SYSROOT ${ZQV_MAC_SDK} CACHE PATH "Headers and link stubs")

set(CMAKE_CXX_COMPILER clang++-19)
set(CMAKE_CXX_COMPILER_TARGET ${ZQV_MAC_ARCH}-apple-macos${oldest})
# GoogleTest's build asks for one.
set(CMAKE_C_COMPILER clang-19)
set(CMAKE_C_COMPILER_TARGET ${CMAKE_CXX_COMPILER_TARGET})
foreach(kind SHARED MODULE EXE)
  # clang recognises the kind of linker, and so its options, by this name; a path would hide it.
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-fuse-ld=lld")
endforeach()
find_program(CMAKE_AR llvm-ar-19)
find_program(CMAKE_RANLIB llvm-ranlib-19)
find_program(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool-19)
find_program(CMAKE_OTOOL llvm-otool-19)
find_program(CMAKE_STRIP llvm-strip-19)

set(CMAKE_FIND_ROOT_PATH ${ZQV_MAC_SDK})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()
