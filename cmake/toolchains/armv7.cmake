# SPDX-License-Identifier: MIT
# ARMv7-A with NEON, Thumb-2; triple and float_abi are the including file's
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(flags "-march=armv7-a -mfpu=neon -mfloat-abi=${float_abi} -mthumb")
include(${CMAKE_CURRENT_LIST_DIR}/cross.cmake)
set(CMAKE_CXX_FLAGS_INIT "${flags} -Wno-psabi")
set(CMAKE_CROSSCOMPILING_EMULATOR "qemu-arm;-L;/usr/${triple}")
