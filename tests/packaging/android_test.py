#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""android_test.py BUILD ARCHIVE: Android.mk beside CMake's commands in BUILD/ABI, and what the check of archives sees."""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest
import zipfile

here = pathlib.Path(__file__).resolve().parent
root = here.parents[1]
sys.path.insert(0, str(root / "packaging/android"))
import aar  # noqa: E402


def code_flags(words):
    """The flags of a command that are neither the target's nor one file's"""
    return {word for word in words if word.startswith(("-f", "-std", "-O", "-mllvm", "-pre"))} - {"-fPIC", "-fno-vectorize"}


class AndroidMk(unittest.TestCase):
    def test_same_as_cmake(self):
        for abi in ("armeabi-v7a", "arm64-v8a", "x86_64"):
            commands = json.loads((BUILD / abi / "compile_commands.json").read_text())
            expected = {entry["file"]: code_flags(entry["command"].split()) for entry in commands}
            make = ["make", "-s", "-f", here / "ndk_build.mk", f"TARGET_ARCH_ABI={abi}", "all"]
            modules = subprocess.run(make, check=True, capture_output=True, text=True).stdout.splitlines()
            self.assertEqual([module.split(";")[0] for module in modules], ["zelt", "zelt_static"])
            for module in modules:
                _, path, sources, flags, _ = module.split(";")
                path = pathlib.Path(path).resolve()
                said = {str(path / source): code_flags(flags.split()) for source in sources.split()}
                self.assertEqual(said, expected)
                for word in flags.split():
                    if word.startswith("-I"):
                        self.assertTrue(pathlib.Path(word[2:]).is_dir(), word)


class Archive(unittest.TestCase):
    def problems(self, change=lambda name, content: content):
        with tempfile.NamedTemporaryFile(suffix=".aar") as changed:
            with zipfile.ZipFile(ARCHIVE) as old, zipfile.ZipFile(changed.name, "w") as new:
                for name in old.namelist():
                    content = change(name, old.read(name))
                    if content is not None:
                        new.writestr(name, content)
            return "\n".join(aar.check(changed.name))

    def test_says_what_is_wrong(self):
        self.assertEqual(self.problems(), "")
        libs = "prefab/modules/zelt/libs/android."
        with zipfile.ZipFile(ARCHIVE) as archive:
            other = archive.read(libs + "arm64-v8a/libzelt.so")
        for file, old, new, complaint in (
            ("AndroidManifest.xml", b"package=", b"name=", "AndroidManifest.xml: package is None"),
            ("AndroidManifest.xml", b".libzelt", b"", "AndroidManifest.xml: no package's name: zelt"),
            ("AndroidManifest.xml", b'"21"', b'"19"', "for Android 21, the archive for 19"),
            ("prefab/prefab.json", b": 2", b": 3", "prefab/prefab.json: {"),
            ("prefab/prefab.json", b"1.", b"v1.", "prefab/prefab.json: {"),
            ("prefab/modules/zelt/module.json", b"libzelt", b"zelt", "arm64-v8a/zelt.so: missing"),
            ("prefab/modules/zelt/include/zelt/bsr.h", None, None, "include/zelt/bsr.h: missing"),
            (libs + "x86_64/abi.json", b"x86_64", b"x86", "x86_64/abi.json: of x86"),
            (libs + "x86_64/abi.json", b"{", b"", "abi.json: JSONDecodeError"),
            (libs + "x86_64/libzelt.so", None, other, "x86_64/libzelt.so: is 64 bits of EM_AARCH64"),
            (libs + "armeabi-v7a/libzelt.so", None, None, "armeabi-v7a/libzelt.so: missing"),
            (libs + "arm64-v8a/libzelt.so", b"\0libzelt.so", b"\0libother.a", "has the soname ['libother.a']"),
            (libs + "arm64-v8a/libzelt.so", b"\0libc.so\0", b"\0libz.so\0", "needs ['libz.so']"),
        ):
            with self.subTest(complaint):
                def change(name, content):
                    if name != file:
                        return content
                    return content.replace(old, new) if old else new

                self.assertIn(complaint, self.problems(change))


if __name__ == "__main__":
    ARCHIVE, BUILD = sys.argv.pop(), pathlib.Path(sys.argv.pop())
    unittest.main()
