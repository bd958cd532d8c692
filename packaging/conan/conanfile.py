# SPDX-License-Identifier: MIT
"""Recipe for Conan 2: conan create packaging/conan [-o libzelt/*:shared=True]"""
import os
import re

from conan import ConanFile
from conan.errors import ConanInvalidConfiguration
from conan.tools.cmake import CMake, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load, rmdir

required_conan_version = ">=2.0"


class LibzeltConan(ConanFile):
    name = "libzelt"
    description = "Low-level media-processing building blocks"
    license = "MIT"
    topics = ("video", "colour-conversion", "resizing", "motion-search", "codec")
    package_type = "library"
    settings = "os", "arch", "compiler", "build_type"
    options = {"shared": [True, False]}
    default_options = {"shared": False}

    @property
    def _sources(self):
        return os.path.join(self.recipe_folder, "..", "..")

    def set_version(self):
        common = load(self, os.path.join(self._sources, "include", "zelt", "common.h"))
        self.version = ".".join(re.findall(r"^#define ZELT_VERSION_\w+ (\d+)$", common, re.MULTILINE))

    def export_sources(self):
        for pattern in ("CMakeLists.txt", "LICENSE", "abi/*", "cmake/*", "include/*", "src/*"):
            copy(self, pattern, self._sources, self.export_sources_folder)

    def configure(self):
        # The interface is C, and no C++ library is needed at run time.
        self.settings.rm_safe("compiler.cppstd")
        self.settings.rm_safe("compiler.libcxx")

    def validate(self):
        if self.settings.os not in ("Linux", "Android", "FreeBSD", "Windows") or self.settings.compiler == "msvc":
            raise ConanInvalidConfiguration("libzelt needs gcc or clang, and ELF or mingw-w64")

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)  # which sets BUILD_SHARED_LIBS by the option
        for part in ("TESTS", "TOOL", "BENCH", "GSTREAMER"):
            toolchain.cache_variables[f"ZELT_{part}"] = False
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        copy(self, "LICENSE", self.source_folder, os.path.join(self.package_folder, "licenses"))
        CMake(self).install()
        for made_anew in ("cmake", "pkgconfig"):  # by Conan's generators, of package_info()
            rmdir(self, os.path.join(self.package_folder, "lib", made_anew))

    def package_info(self):
        self.cpp_info.libs = ["zelt"]
        self.cpp_info.set_property("cmake_file_name", "zelt")
        self.cpp_info.set_property("cmake_target_name", "zelt::zelt")
        self.cpp_info.set_property("pkg_config_name", "zelt")
        if not self.options.shared:
            self.cpp_info.defines = ["ZELT_STATIC"]
