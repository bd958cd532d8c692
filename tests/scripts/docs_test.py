#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""docs_test.py SCRIPTS: what becomes of a page on its way into the site, and which links are found to be dead."""
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, sys.argv.pop())
import docs  # noqa: E402

PAGE = """# A page

## Sizes & strides

## Sizes & strides

See [`the guide`](docs/guide.md#threads), [below](#sizes--strides-1), [far](https://example.org/a), [code](tests/a.py).

    [not](a.md) `zelt_version`

`zelt_version` and `zelt_other`, `zelt/a.h`, `ZELT_A`, `docs/gone.md` and [gone](gone.md)

```c
[not](b.md) # no heading
```

![a plane](docs/plane.svg)
"""


class Docs(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.root = pathlib.Path(scratch.name).resolve()
        self.page = self.root / "page.md"
        texts = {"page.md": PAGE, "docs/guide.md": "# Guide\n\n## Threads\n", "docs/plane.svg": '<svg width="900.0">',
                 "tests/a.py": "", "abi/symbols.txt": "T zelt_version ZELT_1\n", "include/zelt/a.h": "/** @defgroup zelt_a A */\ntypedef struct ZELT_A ZELT_A;"}
        for name, text in texts.items():
            (self.root / name).parent.mkdir(parents=True, exist_ok=True)
            (self.root / name).write_text(text)
        self.addCleanup(setattr, docs, "ROOT", docs.ROOT)
        docs.ROOT = self.root

    def test_a_page_for_the_site(self):
        said = "\n".join(docs.filtered(self.page))
        for expected in ("# A page {#page}", "## Sizes & strides {#page_sizes--strides-1}",
                         '@ref docs_guide_threads "the guide"', '@ref page_sizes--strides-1 "below"',
                         "[far](https://example.org/a), code.", "    [not](a.md) `zelt_version`\n",
                         '<code>@ref zelt_version "zelt_version"</code> and `zelt_other`',
                         '<code>@ref zelt_a "zelt/a.h"</code>, <code>@ref ZELT_A "ZELT_A"</code>', "[not](b.md) # no heading\n",
                         '<img src="plane.svg" alt="a plane" class="wide">'):
            self.assertIn(expected, said)

    def test_the_front_page_keeps_its_title(self):
        front = self.root / "README.md"
        front.write_text("# libzelt\n\n[here](README.md)\n")
        self.assertEqual([*docs.filtered(front)], ["# libzelt", "", '@ref index "here"'])

    def test_dead_links_of_the_sources(self):
        self.assertEqual([*docs.dead_in_sources()], ["page.md: gone.md", "page.md: no docs/gone.md"])
        self.page.write_text("# A\n\n[b](docs/guide.md#thread) [c](#a)\n")
        self.assertEqual([*docs.dead_in_sources()], ["page.md: docs/guide.md#thread"])

    def test_dead_links_of_the_site(self):
        (self.root / "a.html").write_text('<a href="b.html#x"><a href="b.html#y"><img src="c.svg"><a href="https://d">')
        (self.root / "b.html").write_text('<p id="x"><a href="%61.html">')
        self.assertEqual(sorted(docs.dead_in_site(self.root)), ["a.html: b.html#y", "a.html: c.svg"])
        self.assertEqual(len([*docs.dead_in_site(self.root / "docs")]), 1)


if __name__ == "__main__":
    unittest.main()
