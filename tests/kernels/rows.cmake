# SPDX-License-Identifier: MIT
# The registry of kernels, a file per family. The checker, the benchmark and the instruction counter walk it.
set(ZELT_KERNEL_ROWS
  ${CMAKE_CURRENT_LIST_DIR}/registry.cpp
  ${CMAKE_CURRENT_LIST_DIR}/converters.cpp
  ${CMAKE_CURRENT_LIST_DIR}/high_depth.cpp
  ${CMAKE_CURRENT_LIST_DIR}/resize.cpp
  ${CMAKE_CURRENT_LIST_DIR}/metrics.cpp
  ${CMAKE_CURRENT_LIST_DIR}/memory.cpp
  ${CMAKE_CURRENT_LIST_DIR}/video.cpp
  ${CMAKE_CURRENT_LIST_DIR}/video_place.cpp
)
