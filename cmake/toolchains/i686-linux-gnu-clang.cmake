# SPDX-License-Identifier: MIT
# The same with clang, which has the fuzzer for it
include(${CMAKE_CURRENT_LIST_DIR}/i686-linux-gnu.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/clang.cmake)
