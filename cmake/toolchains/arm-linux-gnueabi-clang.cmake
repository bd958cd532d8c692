# SPDX-License-Identifier: MIT
# The same as arm-linux-gnueabi with clang, as Android's kit does
include(${CMAKE_CURRENT_LIST_DIR}/arm-linux-gnueabi.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/clang.cmake)
