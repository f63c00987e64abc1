# Builds for Windows on x86-64, on a Debian machine with the package g++-mingw-w64-x86-64-posix.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(triplet x86_64-w64-mingw32)
# The variant with C++ threads; the win32 variant has none.
set(CMAKE_CXX_COMPILER ${triplet}-g++-posix)
set(CMAKE_C_COMPILER ${triplet}-gcc-posix)
set(CMAKE_RC_COMPILER ${triplet}-windres)

# Libraries that Debian does not have for Windows are built into the second folder.
set(CMAKE_FIND_ROOT_PATH /usr/${triplet} "${CMAKE_CURRENT_LIST_DIR}/../../build/windows-libraries")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# Packages may be anywhere, for example in the build folder.
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
