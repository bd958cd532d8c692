#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""docs.py filter FILE.md        the page as Doxygen reads it: its anchors, links, figures and names
docs.py check HTML_FOLDER     what leads nowhere: links of the pages as they are in the repository, and of the site"""
import html.parser
import pathlib
import re
import sys
import urllib.parse

ROOT = pathlib.Path(__file__).resolve().parent.parent
LINK = re.compile(r"(!?)\[([^\]]*)\]\(([^)\s]+)\)")
CODE = re.compile(r"(`[^`]+`)")
HEADING = re.compile(r"(#{1,6}) +(.*)")
# Paths that prose names
PATH = re.compile(r"`((?:bench|cmake|docs|examples|fuzz|include|samples|scripts|src|tests|tools)/[\w./-]*\w)`")
WIDE = 800  # pixels, from which on a figure is scrolled on small screens


def page_id(path):
    return "_".join(path.relative_to(ROOT).with_suffix("").parts)


def parts(text):
    """The lines of a page, each with whether it is prose: not in a fenced or indented block of code."""
    fenced, before = False, ""
    for line in text.splitlines():
        fence = line.lstrip().startswith("```")
        indented = line.startswith("    ") and (not before.strip() or before.startswith("    "))
        yield line, not (fenced or fence or indented)
        fenced ^= fence
        before = line


def anchors(path):
    """The headings of a page with the anchors that they have in the repository's own view of it"""
    seen, found = {}, []
    for line, prose in parts(path.read_text()):
        match = prose and HEADING.fullmatch(line)
        if match:
            slug = re.sub(r"[^\w\- ]", "", match[2].lower()).replace(" ", "-")
            count = seen[slug] = seen.get(slug, -1) + 1
            found.append((match[1], match[2], slug + f"-{count}" * bool(count)))
    return found


def in_site(path):
    return path.suffix == ".md" and (path.parent == ROOT or ROOT / "docs" in path.parents)


# ------------------------------------------------------------------------------------------------------------- filter

def reference(path, anchor):
    """The name of a page or section within the site"""
    if anchor:
        return f"{page_id(path)}_{anchor}"
    return "index" if path == ROOT / "README.md" else page_id(path)


def picture(path, words):
    width = re.search(r'<svg [^>]*\bwidth="(\d+)', path.read_text()) if path.suffix == ".svg" else None
    wide = ' class="wide"' if width and int(width[1]) >= WIDE else ""
    return f'@htmlonly <figure><img src="{path.name}" alt="{html.escape(words)}"{wide}></figure> @endhtmlonly'


def linked(line, path):
    def replace(match):
        is_picture, words, target = match.groups()
        if ":" in target:
            return match[0]
        name, _, anchor = target.partition("#")
        to = (path.parent / name).resolve() if name else path
        if is_picture:
            return picture(to, words)
        words = words.replace("`", "")
        if to == ROOT / "docs/try/index.html":
            return f'<a href="try/index.html">{html.escape(words)}</a>'
        return f'@ref {reference(to, anchor)} "{words}"' if in_site(to) else words
    return LINK.sub(replace, line)


def names():
    """What the headers declare: functions, records, and their own groups"""
    exported = {line.split()[1] for line in (ROOT / "abi/symbols.txt").read_text().splitlines()}
    headers = "".join(path.read_text() for path in (ROOT / "include/zelt").glob("*.h"))
    return exported | set(re.findall(r"(?:typedef struct|@defgroup) (\w+)", headers))


def with_names(line, known):
    def link(code):
        name = code.strip("`")
        group = re.sub(r"^zelt/(\w+)\.h$", r"zelt_\1", name)
        return f"<code>@ref {group} \"{name}\"</code>" if code[0] == "`" and group in known else code
    return "".join(link(code) for code in CODE.split(line) if code)


def filtered(path):
    sections, known, title = iter(anchors(path)), names(), True
    for line, prose in parts(path.read_text()):
        if prose and HEADING.fullmatch(line):
            level, words, slug = next(sections)
            # The front page's headings get none: they would stand among the pages in the list of contents.
            label = "" if path == ROOT / "README.md" else f" {{#{page_id(path)}{'' if title else '_' + slug}}}"
            yield f"{level} {words}{label}"
            title = False
        else:
            yield with_names(linked(line, path), known) if prose else line


# -------------------------------------------------------------------------------------------------------------- check

def sources():
    return sorted(ROOT.glob("*.md")) + sorted((ROOT / "docs").rglob("*.md"))


def dead_in_sources():
    slugs = {path: {slug for _, _, slug in anchors(path)} for path in sources()}
    for path in slugs:
        prose = [line for line, is_prose in parts(path.read_text()) if is_prose]
        for _, _, target in (match for line in prose for match in LINK.findall(line)):
            if ":" in target:
                continue
            name, _, anchor = target.partition("#")
            to = (path.parent / name).resolve() if name else path
            if not to.exists() or (anchor and anchor not in slugs.get(to, ())):
                yield f"{path.relative_to(ROOT)}: {target}"
        for name in (match for line in prose for match in PATH.findall(line)):
            if not (ROOT / name).exists():
                yield f"{path.relative_to(ROOT)}: no {name}"


class Page(html.parser.HTMLParser):
    def __init__(self, text):
        super().__init__()
        self.links, self.anchors = [], set()
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("href", "src") and value:
                self.links.append(value)
            elif name == "id" or (name == "name" and tag == "a"):
                self.anchors.add(value)


def dead_in_site(folder):
    pages = {path: Page(path.read_text()) for path in folder.glob("*.html")}
    if not pages:
        yield f"no pages in {folder}"
    for path, page in pages.items():
        for link in set(page.links):
            if ":" in link or link.startswith("//"):
                continue
            name, _, anchor = link.partition("#")
            to = path.parent / urllib.parse.unquote(name) if name else path
            if not to.exists() or (anchor and to in pages and urllib.parse.unquote(anchor) not in pages[to].anchors):
                yield f"{path.name}: {link}"


def main(arguments):
    if len(arguments) != 2 or arguments[0] not in ("filter", "check"):
        sys.exit(__doc__)
    kind, path = arguments[0], pathlib.Path(arguments[1]).resolve()
    if kind == "filter":
        print("\n".join(filtered(path)))
        return
    dead = [*dead_in_sources(), *dead_in_site(path)]
    sys.exit("\n".join(["These lead nowhere:", *sorted(dead)]) if dead else 0)


if __name__ == "__main__":
    main(sys.argv[1:])
