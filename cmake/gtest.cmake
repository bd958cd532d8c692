# SPDX-License-Identifier: MIT
# GTest::gtest: as it is installed, or out of Debian's sources for other targets and sanitizers.
if(NOT CMAKE_CROSSCOMPILING AND NOT ZELT_SANITIZE)
  find_package(GTest QUIET)
endif()
if(NOT TARGET GTest::gtest AND EXISTS /usr/src/googletest/CMakeLists.txt)
  set(CMAKE_POLICY_DEFAULT_CMP0077 NEW)  # its options take the values of these variables
  set(INSTALL_GTEST OFF)
  set(BUILD_GMOCK OFF)
  add_subdirectory(/usr/src/googletest gtest EXCLUDE_FROM_ALL SYSTEM)
  target_compile_options(gtest PRIVATE -O1 -g0 -Wno-psabi)
endif()
