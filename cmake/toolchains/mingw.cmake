# SPDX-License-Identifier: MIT
# Windows by mingw-w64; triple and CMAKE_SYSTEM_PROCESSOR are the including file's. Of its two kinds that with the C++
# library's threads, which GoogleTest needs, linked into the tests.
include(${CMAKE_CURRENT_LIST_DIR}/cross.cmake)
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
