# SPDX-License-Identifier: MIT
# 64-bit Windows by mingw-w64; its programs run in wine
set(triple x86_64-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/lib/wine/wine64)
