# Builds 64-bit Windows programs on Debian with the posix-threads flavour of mingw-w64.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# The libraries that scripts/setup builds and stages, and nothing of the build machine's own.
get_filename_component(VRUTILS_DEPS "${CMAKE_CURRENT_LIST_DIR}/../build/deps" ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 "${VRUTILS_DEPS}")
set(CMAKE_PREFIX_PATH /)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

get_filename_component(CMAKE_CROSSCOMPILING_EMULATOR
  "${CMAKE_CURRENT_LIST_DIR}/../scripts/wine" ABSOLUTE)
