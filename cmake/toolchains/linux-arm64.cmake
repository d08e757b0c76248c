# Cross-builds for Linux on arm64 with Debian's compiler, and runs the result with qemu.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_STRIP aarch64-linux-gnu-strip)
# qemu uses this system's arm64 libraries: packages libc6:arm64 and libstdc++6:arm64.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)

# Libraries come from the cross compiler only. Packages of headers only may come from this system.
set(CMAKE_FIND_ROOT_PATH /usr/aarch64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
