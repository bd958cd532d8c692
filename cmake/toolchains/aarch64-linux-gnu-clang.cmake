# SPDX-License-Identifier: MIT
# The same as aarch64-linux-gnu with clang, as Android's kit does
include(${CMAKE_CURRENT_LIST_DIR}/aarch64-linux-gnu.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/clang.cmake)
