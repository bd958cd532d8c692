# SPDX-License-Identifier: MIT
# In place of the NDK's toolchain file where there is no NDK, to see that the library can be built with one: clang for
# Android's targets, libc++'s headers, for C the headers of Debian's cross compilers, and a libc.so that has the names
# which the library may take from Android's. scripts/android.sh makes it, in STAND_IN. What is built does not run there.
set(CMAKE_SYSTEM_NAME Android)
set(CMAKE_SYSTEM_VERSION 1)  # or CMake looks for an NDK
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ANDROID_ABI STAND_IN)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

if(ANDROID_ABI STREQUAL armeabi-v7a)
  set(CMAKE_SYSTEM_PROCESSOR armv7-a)
  set(target armv7a-linux-androideabi21)
  set(debian arm-linux-gnueabi)
  set(flags "-mthumb -mfpu=neon")
  set(headers /usr/${debian}/include)
elseif(ANDROID_ABI STREQUAL arm64-v8a)
  set(CMAKE_SYSTEM_PROCESSOR aarch64)
  set(target aarch64-linux-android21)
  set(debian aarch64-linux-gnu)
  set(headers /usr/${debian}/include)
else()
  set(CMAKE_SYSTEM_PROCESSOR x86_64)
  set(target x86_64-linux-android21)
  set(debian x86_64-linux-gnu)
  set(headers "/usr/include -isystem /usr/include/${debian}")
endif()
file(GLOB libgcc /usr/lib/gcc*/${debian}/12/libgcc.a)

set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET ${target})
set(CMAKE_CXX_COMPILER_TARGET ${target})
set(CMAKE_C_FLAGS_INIT "${flags} -Qunused-arguments -nostdlibinc -isystem ${headers}")
set(CMAKE_CXX_FLAGS_INIT "${flags} -nostdinc++ -nostdlibinc -isystem ${STAND_IN}/usr/lib/llvm-14/include/c++/v1 \
-isystem ${headers}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-fuse-ld=lld -nostdlib")
set(CMAKE_C_STANDARD_LIBRARIES "${STAND_IN}/${ANDROID_ABI}/libc/libc.so ${libgcc}")
