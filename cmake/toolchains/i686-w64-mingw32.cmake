# SPDX-License-Identifier: MIT
# 32-bit Windows by mingw-w64
set(triple i686-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR i686)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
