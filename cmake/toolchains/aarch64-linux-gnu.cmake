# SPDX-License-Identifier: MIT
# 64-bit ARM
set(triple aarch64-linux-gnu)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/cross.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR "qemu-aarch64;-L;/usr/${triple}")
