# SPDX-License-Identifier: MIT
# Flags of the library, whatever the level. Variables of this folder: a parent project keeps its own.
set(CMAKE_C_STANDARD 99)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_EXTENSIONS OFF)

# 64-bit code for x86, which a 32-bit compiler on such a processor does not make
set(ZELT_X86_64 OFF)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$" AND CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(ZELT_X86_64 ON)
endif()

# The levels that the library holds, the lowest first. On x86-64 each processor gets the best one that it can run;
# Android's have all that v2 asks for. A level's options are the features that src/simd/export.h asks for.
if(ZELT_X86_64 AND NOT ZELT_SCALAR)
  set(levels baseline v2 v3)
  set(default ${levels})
  if(ANDROID)
    set(default v2)
  endif()
  set(ZELT_LEVELS "${default}" CACHE STRING "Levels of x86-64 that the library holds: ${levels}")
  foreach(level IN LISTS ZELT_LEVELS)
    if(NOT level IN_LIST levels)
      message(FATAL_ERROR "ZELT_LEVELS has ${level}, which is none of ${levels}")
    endif()
  endforeach()
  list(SORT ZELT_LEVELS)
  foreach(level v2 v3)
    string(TOUPPER ${level} upper)
    file(STRINGS src/simd/export.h needs REGEX "^#define ZELT_NEEDS_${upper}")
    string(REGEX MATCHALL "\"[^\"]+\"" ZELT_FLAGS_${level} "${needs}")
    list(TRANSFORM ZELT_FLAGS_${level} REPLACE "\"(.+)\"" "-m\\1")
  endforeach()
  if(WIN32 AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # The stack there is aligned to 16 bytes, and gcc accesses vectors of 32 on it as if it were to 32 (its bug 54412),
    # unless a distribution has changed it.
    list(APPEND ZELT_FLAGS_v3 -Wa,-muse-unaligned-vector-move)
  endif()
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS src/simd/export.h)
elseif(EMSCRIPTEN AND NOT ZELT_SCALAR)
  set(ZELT_LEVELS simd128)
  set(ZELT_FLAGS_simd128 -msimd128)
else()
  set(ZELT_LEVELS native)
endif()
get_property(ZELT_SHARED GLOBAL PROPERTY TARGET_SUPPORTS_SHARED_LIBS)

set(ZELT_WARNINGS -Wall -Wextra)
if(ZELT_WERROR)
  list(APPEND ZELT_WARNINGS -Werror)
endif()
# No C++ runtime: no exceptions, no RTTI, no guarded statics, and nothing but libc on the library's link line, so that
# a stray container or `new` is a link error.
set(CMAKE_CXX_IMPLICIT_LINK_LIBRARIES "")
set(ZELT_LIBRARY_FLAGS -fno-exceptions -fno-rtti -fno-threadsafe-statics -Wmissing-declarations
  # clang would take a function's own address where a program that is not position independent has another for it.
  $<$<CXX_COMPILER_ID:GNU>:-fno-semantic-interposition>
  $<$<BOOL:${ZELT_SCALAR}>:-DZELT_SCALAR>)
# clang for 32-bit ARM would load all of a long piece of straight code first, for which there are not the registers.
if(CMAKE_CXX_COMPILER_ID MATCHES Clang AND CMAKE_SYSTEM_PROCESSOR MATCHES "^arm" AND CMAKE_SIZEOF_VOID_P EQUAL 4)
  list(APPEND ZELT_LIBRARY_FLAGS "SHELL:-mllvm -pre-RA-sched=source")
endif()
if(WIN32)
  set(ZELT_LINK_FLAGS -static-libgcc)
else()
  set(ZELT_LINK_FLAGS -Wl,--as-needed -Wl,-z,text -Wl,-z,max-page-size=16384)
endif()
if(ZELT_SANITIZE)
  # -O1 compiles in half the time of -O3.
  add_compile_options(-fsanitize=${ZELT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -O1)
  add_link_options(-fsanitize=${ZELT_SANITIZE})
else()
  # Kernels gain up to 1.4x from -O3; packages, which are built with flags of their own (-O2), get it too.
  list(APPEND ZELT_LIBRARY_FLAGS $<$<NOT:$<CONFIG:Debug,MinSizeRel>>:-O3>)
  list(APPEND ZELT_LINK_FLAGS -Wl,--no-undefined)  # sanitizers leave symbols to the executable
endif()

# Programs that node runs, over the system's own files
if(EMSCRIPTEN)
  set(ZELT_PROGRAM_LINK_FLAGS -sENVIRONMENT=node -sNODERAWFS -sEXIT_RUNTIME -sALLOW_MEMORY_GROWTH
    --pre-js ${PROJECT_SOURCE_DIR}/tests/wasm/node.js)
endif()
