# SPDX-License-Identifier: MIT
# ARMv7-A with NEON, soft-float calling convention: the kind of Android's armeabi-v7a
set(triple arm-linux-gnueabi)
set(float_abi softfp)
include(${CMAKE_CURRENT_LIST_DIR}/armv7.cmake)
