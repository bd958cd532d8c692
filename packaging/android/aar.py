#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Makes and checks an Android archive (AAR) that holds the library for prefab, by which Gradle's projects get it.

aar.py make ARCHIVE NDK FOLDER   of the libraries FOLDER/ABI/libzelt.so, which were made with this release of the NDK
aar.py check ARCHIVE             says what is wrong with one
"""
import json
import re
import sys
import zipfile
from io import BytesIO
from pathlib import Path
from xml.etree import ElementTree

from elftools.elf.elffile import ELFFile

root = Path(__file__).resolve().parents[2]
api = 21
abis = {  # what prefab wants a library of an ABI to be
    "armeabi-v7a": (32, "EM_ARM"),
    "arm64-v8a": (64, "EM_AARCH64"),
    "x86": (32, "EM_386"),
    "x86_64": (64, "EM_X86_64"),
}
manifest = f"""<?xml version="1.0" encoding="utf-8"?>
<manifest xmlns:android="http://schemas.android.com/apk/res/android" package="zelt.libzelt" android:versionCode="1"
    android:versionName="%s">
    <uses-sdk android:minSdkVersion="{api}"/>
</manifest>
"""


def version():
    text = (root / "include/zelt/common.h").read_text()
    return ".".join(re.findall(r"^#define ZELT_VERSION_\w+ (\d+)$", text, re.M))


def make(archive, ndk, folder):
    files = {
        "AndroidManifest.xml": manifest % version(),
        "META-INF/LICENSE": (root / "LICENSE").read_bytes(),
        "prefab/prefab.json": {"schema_version": 2, "name": "zelt", "version": version(), "dependencies": []},
        "prefab/modules/zelt/module.json": {"export_libraries": [], "library_name": "libzelt"},
    }
    for header in (root / "include").rglob("*.h"):
        files[f"prefab/modules/zelt/include/{header.relative_to(root / 'include')}"] = header.read_bytes()
    for library in Path(folder).glob("*/libzelt.so"):
        abi = library.parent.name
        place = f"prefab/modules/zelt/libs/android.{abi}"
        # No C++ library, so that programs with any, and with any release of the NDK, may use it
        files[f"{place}/abi.json"] = {"abi": abi, "api": api, "ndk": int(ndk), "stl": "none", "static": False}
        files[f"{place}/libzelt.so"] = library.read_bytes()
    with zipfile.ZipFile(archive, "w", zipfile.ZIP_DEFLATED) as out:
        for name, content in sorted(files.items()):
            if isinstance(content, dict):
                content = json.dumps(content, indent=2) + "\n"
            entry = zipfile.ZipInfo(name)  # of 1980, whenever it is made
            entry.external_attr = 0o644 << 16
            entry.compress_type = zipfile.ZIP_DEFLATED
            out.writestr(entry, content)


def check_library(abi, library):
    bits, machine = abis[abi]
    elf = ELFFile(BytesIO(library))
    if (elf.elfclass, elf["e_machine"]) != (bits, machine):
        yield f"is {elf.elfclass} bits of {elf['e_machine']}"
    tags = list(elf.get_section_by_name(".dynamic").iter_tags())
    names = [tag.soname for tag in tags if tag.entry.d_tag == "DT_SONAME"]
    if names != ["libzelt.so"]:
        yield f"has the soname {names}"
    needed = [tag.needed for tag in tags if tag.entry.d_tag == "DT_NEEDED"]
    if not set(needed) <= {"libc.so", "libm.so", "libdl.so"}:
        yield f"needs {needed}"
    if any(tag.entry.d_tag == "DT_TEXTREL" for tag in tags):
        yield "has text relocations"
    aligned = [segment["p_align"] for segment in elf.iter_segments() if segment["p_type"] == "PT_LOAD"]
    if any(align % 0x4000 for align in aligned):
        yield f"has segments that do not fit pages of 16 KiB: {aligned}"


def check(archive):
    """What is wrong with an archive"""
    files = {}
    with zipfile.ZipFile(archive) as file:
        for name in file.namelist():
            if name in files or name.startswith("/") or ".." in name:
                yield f"{name}: twice, or outside the archive"
            files[name] = file.read(name)

    problems = []

    def described(name, types, parse=json.loads):
        """The fields of a description; one that is missing or of another type is a problem."""
        try:
            fields = parse(files[name])
        except (KeyError, ValueError, ElementTree.ParseError) as error:
            problems.append(f"{name}: {error!r}")
            return {}
        bad = [key for key, kind in types.items() if type(fields.get(key)) is not kind]
        problems.extend(f"{name}: {key} is {fields.get(key)!r}" for key in bad)
        return fields

    def attributes(text):
        tree = ElementTree.fromstring(text)
        return tree.attrib | tree.find("uses-sdk").attrib

    least_api = "{http://schemas.android.com/apk/res/android}minSdkVersion"
    manifested = described("AndroidManifest.xml", {"package": str, least_api: str}, attributes)
    if not re.fullmatch(r"[A-Za-z]\w*(\.[A-Za-z]\w*)+", manifested.get("package", "")):
        yield f"AndroidManifest.xml: no package's name: {manifested.get('package')}"

    package = described("prefab/prefab.json",
                        {"schema_version": int, "name": str, "version": str, "dependencies": list})
    if package.get("schema_version") != 2 or not re.fullmatch(r"\d+(\.\d+){0,3}", package.get("version", "")):
        yield f"prefab/prefab.json: {package}"

    module = "prefab/modules/zelt"
    fields = described(f"{module}/module.json", {"export_libraries": list, "library_name": str})
    umbrella = files.get(f"{module}/include/zelt/zelt.h", b'#include "zelt/zelt.h"').decode()
    for header in re.findall('#include "(.*)"', umbrella):
        if f"{module}/include/{header}" not in files:
            yield f"{module}/include/{header}: missing"

    folders = {name.split("/")[4] for name in files if name.startswith(f"{module}/libs/")}
    if not folders:
        yield f"{module}: no libraries"
    for folder in sorted(folders):
        place = f"{module}/libs/{folder}"
        built = described(f"{place}/abi.json", {"abi": str, "api": int, "ndk": int, "stl": str, "static": bool})
        library = f"{place}/{fields.get('library_name')}.so"
        if f"android.{built.get('abi')}" != folder or built["abi"] not in abis:
            yield f"{place}/abi.json: of {built.get('abi')}"
        elif built.get("api", 0) > int(manifested.get(least_api, 0)):
            yield f"{place}: for Android {built['api']}, the archive for {manifested.get(least_api)}"
        elif library not in files:
            yield f"{library}: missing"
        else:
            yield from (f"{library}: {problem}" for problem in check_library(built["abi"], files[library]))
    yield from problems


if __name__ == "__main__":
    if sys.argv[1] == "make":
        make(*sys.argv[2:])
    problems = list(check(sys.argv[2]))
    print("\n".join(problems) or f"{sys.argv[2]} is sound")
    sys.exit(bool(problems))
