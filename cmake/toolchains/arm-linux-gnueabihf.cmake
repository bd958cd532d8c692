# SPDX-License-Identifier: MIT
# ARMv7-A with NEON, hard-float calling convention: Linux boards
set(triple arm-linux-gnueabihf)
set(float_abi hard)
include(${CMAKE_CURRENT_LIST_DIR}/armv7.cmake)
