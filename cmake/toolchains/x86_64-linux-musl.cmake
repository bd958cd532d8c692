# SPDX-License-Identifier: MIT
# x86-64 with musl as Debian's musl-tools has it, which needs the C++ headers of g++
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER musl-gcc)
set(CMAKE_CXX_COMPILER g++)
execute_process(COMMAND g++ -dumpversion OUTPUT_VARIABLE version OUTPUT_STRIP_TRAILING_WHITESPACE)
set(CMAKE_CXX_FLAGS_INIT "-specs=/usr/lib/x86_64-linux-musl/musl-gcc.specs '-D__GLIBC_PREREQ(a,b)=0' \
-isystem /usr/include/c++/${version} -isystem /usr/include/x86_64-linux-gnu/c++/${version}")
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
