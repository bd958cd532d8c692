# SPDX-License-Identifier: MIT
# WebAssembly with emscripten, which has a toolchain file of its own; programs are run by node
execute_process(COMMAND em-config EMSCRIPTEN_ROOT OUTPUT_VARIABLE root OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)
set(EMSCRIPTEN_SYSTEM_PROCESSOR wasm32)
include(${root}/cmake/Modules/Platform/Emscripten.cmake)
# Linking asks for node's packages, which a node that is not Debian's does not look for where Debian has them.
foreach(language C CXX)
  set(CMAKE_${language}_LINKER_LAUNCHER ${CMAKE_COMMAND} -E env NODE_PATH=/usr/share/nodejs)
endforeach()
