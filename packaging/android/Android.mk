# SPDX-License-Identifier: MIT
# The library for ndk-build: include this file, and name zelt in LOCAL_SHARED_LIBRARIES or zelt_static in
# LOCAL_STATIC_LIBRARIES. It needs no C++ library at run time but, to be compiled, the headers of one:
# APP_STL := c++_static.
LOCAL_PATH := $(call my-dir)/../..

zelt_sources := $(patsubst $(LOCAL_PATH)/%,%,$(sort $(wildcard $(LOCAL_PATH)/src/*/*.cpp)))
zelt_flags := -std=c++20 -O3 -DNDEBUG -fvisibility=hidden -fvisibility-inlines-hidden -fno-exceptions -fno-rtti \
    -fno-threadsafe-statics
# clang would load all of a long piece of straight code first, for which there are not the registers.
zelt_flags_armeabi-v7a := -mllvm -pre-RA-sched=source

include $(CLEAR_VARS)
LOCAL_MODULE := zelt
LOCAL_SRC_FILES := $(zelt_sources)
LOCAL_CPPFLAGS := $(zelt_flags) $(zelt_flags_$(TARGET_ARCH_ABI))
LOCAL_C_INCLUDES := $(LOCAL_PATH)/include $(LOCAL_PATH)/src
LOCAL_EXPORT_C_INCLUDES := $(LOCAL_PATH)/include
LOCAL_LDFLAGS := -Wl,--version-script=$(LOCAL_PATH)/abi/zelt.map -Wl,-z,text -Wl,-z,max-page-size=16384
include $(BUILD_SHARED_LIBRARY)

include $(CLEAR_VARS)
LOCAL_MODULE := zelt_static
LOCAL_MODULE_FILENAME := libzelt
LOCAL_SRC_FILES := $(zelt_sources)
LOCAL_CPPFLAGS := $(zelt_flags) $(zelt_flags_$(TARGET_ARCH_ABI))
LOCAL_C_INCLUDES := $(LOCAL_PATH)/include $(LOCAL_PATH)/src
LOCAL_EXPORT_C_INCLUDES := $(LOCAL_PATH)/include
include $(BUILD_STATIC_LIBRARY)
