#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Counts lines of code, neither blank nor comment, in C, C++, Python, JavaScript, shell and CMake, and the tests' share.
#   --check A B  fails if the tests are more than A % of all code, or more than B % of themselves and what they test
# Tests are what lies below a folder named tests or fuzz; corpora, data and the catalogue of faults do not count.
set -euo pipefail
cd "$(dirname "$0")/.."

exec python3 - "$@" 3< <(git ls-files -z) <<'EOF_PYTHON'
import collections, io, re, sys, tokenize

LANGUAGES = [  # by name; a script without an ending goes by its first line
    ("c", r"\.(c|h|cc|cpp|hpp|cxx|inc|js|mjs|cjs)$"),
    ("python", r"\.py$|^#!.*\bpython"),
    ("cmake", r"(^|/)CMakeLists\.txt$|\.cmake(\.in)?$"),
    ("hash", r"\.(sh|bash)$|^#!.*\b(ba|da)?sh\b"),
]
# Literals are matched so that what looks like a comment in one is not taken for it.
COMMENTS = {
    "c": r'R"([^(\n]*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|(?<![0-9a-fA-F])\'(?:\\.|[^\'\\\n])+\'|`(?:\\.|[^`\\])*`'
         r'|(?P<comment>//(?:\\\n|[^\n])*|/\*.*?\*/)',
    "cmake": r'"(?:\\.|[^"\\])*"|(?P<comment>#\[(?P<e>=*)\[.*?\](?P=e)\]|#[^\n]*)',
    "hash": r"(?P<comment>(?m:^[ \t]*#(?!!)[^\n]*))",
}

def python_lines(text):
    """Lines with code, those of a string that is a statement by itself left out."""
    lines, statement = set(), []
    for token in tokenize.generate_tokens(io.StringIO(text).readline):
        if token.type in (tokenize.NEWLINE, tokenize.ENDMARKER):
            if any(t.type != tokenize.STRING for t in statement):
                lines.update(n for t in statement for n in range(t.start[0], t.end[0] + 1))
            statement = []
        elif token.type not in (tokenize.COMMENT, tokenize.NL, tokenize.INDENT, tokenize.DEDENT):
            statement.append(token)
    rows = text.split("\n")
    return sum(1 for n in lines if rows[n - 1].strip())

def count(language, text):
    if language == "python":
        return python_lines(text) + text.startswith("#!")
    code = re.sub(COMMENTS[language], lambda m: m[0] if m["comment"] is None else "\n" * m[0].count("\n"), text,
                  flags=re.S)
    return sum(1 for line in code.split("\n") if line.strip())

def area(path):
    folders = path.split("/")[:-1]
    if "tests" in folders or "fuzz" in folders:
        return "fuzz targets" if "fuzz" in folders else "tests"
    return {"src": "library", "include": "headers", "tools": "tool", "bindings": "bindings",
            "integrations": "integrations", "bench": "benchmark", "examples": "examples", "docs": "page"}.get(
                folders[0] if folders else "", "scripts, build")

areas = collections.Counter()
for path in filter(None, open(3, "rb").read().decode().split("\0")):
    if path == "scripts/faults.py" or re.search(r"(^|/)(corpus|data|samples)/", path):
        continue
    if not re.search(r"(^|/)[^./]+$|" + "|".join(pattern for _, pattern in LANGUAGES), path):
        continue
    try:
        text = open(path, encoding="utf-8").read()
    except (FileNotFoundError, UnicodeDecodeError, IsADirectoryError):
        continue
    first = text.split("\n", 1)[0]
    name = path if "." in path.rsplit("/", 1)[-1] else first
    for language, pattern in LANGUAGES:
        if re.search(pattern, path) or name == first and re.search(pattern, first):
            areas[area(path)] += count(language, text)
            break

def share(of):
    return 100 * tests / sum(areas[a] for a in of)

tests = areas["tests"] + areas["fuzz targets"]
for name in ("library", "headers", "tool", "bindings", "integrations", "benchmark", "examples", "page", "scripts, build", "tests",
             "fuzz targets"):
    print(f"{name:15} {areas[name]:6}")
print(f"{'all':15} {sum(areas.values()):6}")
product = ("library", "headers", "tool", "bindings", "integrations")
shares = {"all code": share(areas), f"{', '.join(product)} and tests": share(product + ("tests", "fuzz targets"))}
for of, percent in shares.items():
    print(f"tests in {of}: {percent:.1f} %")
if len(sys.argv) > 1:
    if len(sys.argv) != 4 or sys.argv[1] != "--check":
        sys.exit("lines.sh [--check A B]")
    for (of, percent), limit in zip(shares.items(), sys.argv[2:]):
        if percent > float(limit):
            sys.exit(f"tests are {percent:.2f} % of {of}, more than {limit} %")
EOF_PYTHON
