# Builds for 64-bit Windows on Linux, with posix threads and the compiler's shared runtime. Exceptions and
# down-casts cross the libraries' borders, so they need one runtime in common.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

set(OSTREL_RUNTIME_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_CXX_COMPILER ${OSTREL_RUNTIME_COMPILER})
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Tests run under Wine, in a prefix of the build's own.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine;${CMAKE_BINARY_DIR}/wine)
