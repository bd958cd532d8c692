#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""code_blocks.py CC CXX INCLUDE_FOLDER LIBRARY PAGE...

Compiles and runs every block of C and C++ of these pages. A block without a main function is the body of one. A block of
text right behind it is what it has to print."""
import os
import pathlib
import subprocess
import sys
import tempfile

HEADERS = "".join(f"#include <{name}>\n" for name in
                  ("limits.h", "stdint.h", "stdio.h", "stdlib.h", "string.h", "zelt/zelt.h"))
STRICT = ["-Wall", "-Wextra", "-pedantic", "-Werror"]


def blocks(page):
    """Language, line, text and the text that is expected of each block, or None"""
    found, language, lines, closed = [], None, [], 0
    for number, line in enumerate(page.read_text().splitlines(), 1):
        if language is None and line.startswith("```"):
            language, lines, start = line[3:] or "text", [], number
        elif language is not None and line == "```":
            if language in ("c", "cpp"):
                found.append([language, start, lines, None])
            elif language == "text" and found and start == closed + 1:
                found[-1][3] = "".join(f"{line}\n" for line in lines)
            closed = number if language in ("c", "cpp") else 0
            language = None
        elif language is not None:
            lines.append(line)
    assert language is None, f"{page}: a block without end"
    return found


def run(language, text, compilers, include, library, scratch):
    """What a block prints, or what is wrong"""
    source, program = scratch / f"block.{language}", scratch / "block"
    if "int main(" not in text:
        text = f"int main(void) {{\n{text}\nreturn 0;\n}}"
    source.write_text(f"{HEADERS}{text}\n")
    standard = "-std=c99" if language == "c" else "-std=c++11"
    built = subprocess.run([compilers[language], standard, *STRICT, f"-I{include}", source, library, "-o", program],
                           capture_output=True, text=True)
    if built.returncode:
        return None, built.stderr
    environment = os.environ | {"LD_LIBRARY_PATH": str(library.parent)}
    ran = subprocess.run([program], capture_output=True, text=True, env=environment, timeout=20)
    return ran.stdout, f"status {ran.returncode}: {ran.stderr}" if ran.returncode else None


def main(cc, cxx, include, library, *pages):
    count, wrong = 0, []
    with tempfile.TemporaryDirectory() as scratch:
        for page in map(pathlib.Path, pages):
            for language, line, lines, expected in blocks(page):
                said, problem = run(language, "\n".join(lines), {"c": cc, "cpp": cxx}, include, pathlib.Path(library),
                                    pathlib.Path(scratch))
                if problem is None and expected is not None and said != expected:
                    problem = f"prints\n{said}and not\n{expected}"
                if problem is not None:
                    wrong.append(f"{page.name}, line {line}: {problem}")
                count += 1
    if wrong or not count:
        sys.exit("\n".join(wrong) or "no block of code")
    print(f"{count} blocks")


if __name__ == "__main__":
    main(*sys.argv[1:])
