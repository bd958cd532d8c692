#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""check_conan.py FOLDER: runs the recipe with stand-ins for Conan's modules, which do with cmake what those do. The
packages are FOLDER/static and FOLDER/shared, and their files flags have what their users compile with."""
import fnmatch
import pathlib
import shutil
import subprocess
import sys
import types

recipe = pathlib.Path(__file__).resolve().parents[2] / "packaging/conan/conanfile.py"


class ConanFile:
    recipe_folder = str(recipe.parent)


class InvalidConfiguration(Exception):
    pass


class Settings(types.SimpleNamespace):
    def rm_safe(self, name):
        self.__dict__.pop(name, None)


class Information(types.SimpleNamespace):
    def set_property(self, name, value):
        assert name in ("cmake_file_name", "cmake_target_name", "pkg_config_name"), name
        setattr(self, name, value)


class CMakeToolchain:
    def __init__(self, conanfile):
        self.conanfile, self.cache_variables = conanfile, {"BUILD_SHARED_LIBS": conanfile.options.shared}

    def generate(self):
        self.conanfile.cache = [f"-D{name}={'ON' if value else 'OFF'}" for name, value in self.cache_variables.items()]


class CMake:
    def __init__(self, conanfile):
        self.conanfile, self.built = conanfile, conanfile.build_folder

    def run(self, *words):
        subprocess.run(["cmake", *words], check=True, stdout=subprocess.DEVNULL)

    def configure(self):
        self.run("-S", self.conanfile.source_folder, "-B", self.built, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
                 "-DZELT_LEVELS=baseline", f"-DCMAKE_INSTALL_PREFIX={self.conanfile.package_folder}",
                 "-DCMAKE_INSTALL_LIBDIR=lib", *self.conanfile.cache)

    def build(self):
        self.run("--build", self.built)

    def install(self):
        self.run("--install", self.built)


def copy(_, pattern, src, dst):
    found = [path for path in pathlib.Path(src).rglob("*") if fnmatch.fnmatch(str(path.relative_to(src)), pattern)]
    for path in found:
        if path.is_file():
            to = pathlib.Path(dst) / path.relative_to(src)
            to.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(path, to)
    assert found, pattern


def module(name, **members):
    sys.modules[name] = types.ModuleType(name)
    vars(sys.modules[name]).update(members)


def package(folder, shared):
    conanfile = sys.modules["recipe"].LibzeltConan()
    conanfile.settings = Settings(os="Linux", arch="x86_64", compiler="gcc", build_type="Release")
    assert set(conanfile.options) == set(conanfile.default_options) == {"shared"}
    conanfile.options = types.SimpleNamespace(shared=shared)
    conanfile.cpp_info = Information(defines=[])
    conanfile.package_folder, conanfile.build_folder = str(folder), f"{folder}.build"
    conanfile.source_folder = conanfile.export_sources_folder = f"{folder}.sources"
    for step in "set_version export_sources configure validate layout generate build package package_info".split():
        getattr(conanfile, step)()
    assert (folder / "licenses/LICENSE").is_file() and not (folder / "lib/cmake").exists()
    assert sorted(path.suffix for path in (folder / "lib").iterdir() if not path.is_symlink()) == [".0" if shared else ".a"]
    info = conanfile.cpp_info
    defines, libs = [f"-D{name}" for name in info.defines], [f"-l{lib}" for lib in info.libs]
    flags = [f"-I{folder}/include", *defines, f"-L{folder}/lib", *libs]
    (folder / "flags").write_text(" ".join(flags))
    print(f"libzelt/{conanfile.version}: {folder.name}")

    for os, compiler in (("Macos", "apple-clang"), ("Windows", "msvc")):
        conanfile.settings.os, conanfile.settings.compiler = os, compiler
        try:
            conanfile.validate()
        except InvalidConfiguration:
            continue
        raise AssertionError(f"valid for {os} with {compiler}")


module("conan", ConanFile=ConanFile)
module("conan.errors", ConanInvalidConfiguration=InvalidConfiguration)
module("conan.tools")
module("conan.tools.build", can_run=lambda _: True)
module("conan.tools.cmake", CMake=CMake, CMakeToolchain=CMakeToolchain, cmake_layout=lambda _: None)
module("conan.tools.files", copy=copy, load=lambda _, path: pathlib.Path(path).read_text(),
       rmdir=lambda _, path: shutil.rmtree(path, ignore_errors=True))
module("recipe", __file__=str(recipe))
exec(compile(recipe.read_text(), recipe, "exec"), vars(sys.modules["recipe"]))
compile((recipe.parent / "test_package/conanfile.py").read_text(), "test_package/conanfile.py", "exec")

top = pathlib.Path(sys.argv[1]).resolve()
shutil.rmtree(top, ignore_errors=True)
for kind in ("static", "shared"):
    package(top / kind, kind == "shared")
