# SPDX-License-Identifier: MIT
# In place of ndk-build: prints what Android.mk says of each module.
my-dir = $(patsubst %/,%,$(dir $(lastword $(MAKEFILE_LIST))))
CLEAR_VARS := /dev/null
BUILD_SHARED_LIBRARY := $(my-dir)/ndk_module.mk
BUILD_STATIC_LIBRARY := $(BUILD_SHARED_LIBRARY)
include $(my-dir)/../../packaging/android/Android.mk
all: ;
