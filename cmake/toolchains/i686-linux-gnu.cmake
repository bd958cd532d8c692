# SPDX-License-Identifier: MIT
# 32-bit x86, run natively: the 32-bit record layouts under sanitizers
set(triple i686-linux-gnu)
set(CMAKE_SYSTEM_PROCESSOR i686)
include(${CMAKE_CURRENT_LIST_DIR}/cross.cmake)
# Through its own loader: the one that the system may have for 32-bit programs can be of another release than this libc,
# and then threads do not start.
set(CMAKE_CROSSCOMPILING_EMULATOR "/usr/${triple}/lib/ld-linux.so.2;--library-path;/usr/${triple}/lib")
